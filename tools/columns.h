#pragma once

#include <string_view>
#include <vector>

namespace tool {

/// What separates the columns of a text. All but blanks leave a column empty when two of them stand
/// side by side.
enum class Separator { SEMICOLON, COMMA, TAB, BLANKS };

const Separator ALL_SEPARATORS[] = {Separator::SEMICOLON, Separator::COMMA, Separator::TAB,
                                    Separator::BLANKS};

/// "semicolons", "commas", …
const char* nameOf(Separator separator);

bool contains(std::string_view line, Separator separator);

/// Cuts a line into its columns, without the blanks and the double quotes around them. What stands
/// in double quotes is not cut.
void cut(std::string_view line, Separator separator, std::vector<std::string_view>& columns);

}  // namespace tool
