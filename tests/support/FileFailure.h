#pragma once

#include <optional>

#include "platform/FileException.h"

namespace VantorTest {

// The file failure that a call ends in; none when it succeeds.
template <typename Call>
std::optional<Vantor::Platform::FileException> FailureOf(Call call) {
    try {
        call();
    } catch (const Vantor::Platform::FileException& failure) {
        return failure;
    }
    return std::nullopt;
}

// The same for tests that only ask for the cause: EXPECT_EQ(CauseOf([&] { … }), Cause::kDiskFull).
template <typename Call>
std::optional<Vantor::Platform::FileException::Cause> CauseOf(Call call) {
    const auto failure = FailureOf(call);
    return failure ? std::optional(failure->GetCause()) : std::nullopt;
}

}  // namespace VantorTest
