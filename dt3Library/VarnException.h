#pragma once

#include <exception>

#include "dt3Library/Export.h"

namespace VARN3D {

/// What the library throws when one of its checks fails. The details have then been printed on
/// standard output. Thrown in the thread that called; engines in other threads go on.
class VARN3D_EXPORT VarnException : public std::exception {
  public:
    /// Always the same text, with an address to report faults to.
    const char* what() const noexcept override;
};

}  // namespace VARN3D
