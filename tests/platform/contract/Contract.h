// Contract.h: the base of the platform contract suites. Every case states what the Win32 API
// does; a back-end that differs on purpose lists the case and why in its maker's
// kDifferences, and the case is skipped there with that reason.
#pragma once

#include <gtest/gtest.h>

#include <string_view>

namespace orvex::testing {

struct Difference {
    std::string_view test;
    std::string_view reason;
};

// Makers give a fresh back-end per case; the fixture owns one.
template <class Maker>
class ContractTest : public ::testing::Test {
  protected:
    void SetUp() override {
        if constexpr (requires { Maker::kDifferences; }) {
            const std::string_view name =
                ::testing::UnitTest::GetInstance()->current_test_info()->name();
            for (const Difference& d : Maker::kDifferences)
                if (d.test == name) GTEST_SKIP() << d.reason;
        }
    }

    Maker maker;
};

}  // namespace orvex::testing
