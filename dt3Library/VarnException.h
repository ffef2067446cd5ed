#pragma once

#include <exception>
#include <stdexcept>
#include <string>

#include "dt3Library/Export.h"

namespace VARN3D {

/// What the library throws when one of its checks fails. The details have then been printed on
/// standard output. Thrown in the thread that called; engines in other threads go on.
class VARN3D_EXPORT VarnException : public std::exception {
  public:
    /// For a failed check, with a text for `getReason`.
    // NOLINTNEXTLINE(bugprone-throw-keyword-missing): it is kept here, not thrown.
    explicit VarnException(const std::string& reason = {}) : theReason(reason) {}

    /// What failed, in one line without a line end: what was wrong with the input, where that can
    /// be told, otherwise the condition and its place in the library.
    const char* getReason() const noexcept { return theReason.what(); }
    /// Always the same text, with an address to report faults to.
    const char* what() const noexcept override;

  private:
    /// A text whose copies can't fail.
    std::runtime_error theReason;
};

}  // namespace VARN3D
