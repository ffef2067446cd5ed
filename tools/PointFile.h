#pragma once

#include <dt3Library/Varn_3D.h>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

enum class PointFormat { automatic, text, ply };

/// Reads the points of a file; "-" is standard input. The automatic format goes by the name's
/// ending (.xyz, .txt, .csv, .ply), and by the first line where that says nothing.
/// Throws InputError when the file can't be read, is malformed or holds no point.
std::vector<VARN3D::Point3> readPointFile(const std::string& fileName, PointFormat format);

/// The same for content that is in memory already; fileName names it in messages.
std::vector<VARN3D::Point3> parsePoints(std::string_view content, const std::string& fileName,
                                        PointFormat format);

}  // namespace tool
