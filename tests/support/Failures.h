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

/// The report of a failed check, up to its line number.
inline std::string checkReport(const std::string& condition, const std::string& file) {
    return "\n      Varn, , ERROR: Condition [ " + condition + " failed ]\n\n      " + file + ":";
}

/// Output that ends in the report of a failed check, and what stands before it.
inline auto endsInCheck(const std::string& before, const std::string& condition,
                        const std::string& file) {
    const auto endsInNumber = [](const std::string& output) {
        const std::size_t lineNumber = output.find_last_of(':') + 1;
        const std::size_t end = output.find_first_not_of("0123456789", lineNumber);
        return end > lineNumber && end + 1 == output.size() && output[end] == '\n';
    };
    return ::testing::AllOf(::testing::StartsWith(before + checkReport(condition, file)),
                            ::testing::ResultOf(endsInNumber, true));
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
