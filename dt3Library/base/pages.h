#pragma once

#include <cstddef>

namespace VARN3D {

/// Asks the system for the pages of so much memory at once, which costs less than a fault for each
/// when it is first touched. A hint: it changes no byte, and does nothing for little memory or
/// where the system knows no such request.
void fetchPages(void* first, std::size_t bytes);

}  // namespace VARN3D
