#pragma once
// The message of the HostError that a host call throws, its exit status checked.
#include <prsm/host/HostError.h>

#include <gtest/gtest.h>

#include <string>

namespace prsm::host {

template <typename Action>
std::string hostFailure(ExitCode expected, Action action) {
    try {
        action();
    } catch (HostError const& e) {
        EXPECT_EQ(e.code(), expected);
        return e.what();
    }
    ADD_FAILURE() << "no HostError thrown";
    return std::string();
}

}  // namespace prsm::host
