#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iostream>
#include <sstream>
#include <string>

#include "dt3Library/VarnException.h"
#include "tests/support/CaptureOutput.h"

namespace support {

/// What a failing operation writes on standard output. It must throw the library's exception.
template <class Operation>
std::string failureOf(Operation operation) {
    return outputOf([&] { EXPECT_THROW(operation(), VARN3D::VarnException); });
}

/// The report of a failed check; the place is a file and a line number.
inline std::string checkReport(const std::string& condition, const std::string& place) {
    return "\n      Varn, , ERROR: Condition [ " + condition + " failed ]\n\n      " + place + "\n";
}

template <class T>
std::string printed(const T& value) {
    std::ostringstream out;
    out << value;
    return out.str();
}

/// To be called in the process of a death test, which sees standard error only.
inline void printOnStandardError() {
    VARN3D::exchangeMessageStream(&std::cerr);
}

}  // namespace support
