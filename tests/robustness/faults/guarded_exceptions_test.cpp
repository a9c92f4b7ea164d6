// What the host library says about exceptions that its calls hardly ever meet.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <boost/system/system_error.hpp>
#include <stdexcept>
#include <string>
#include <system_error>

#include "error/exception_report.h"
#include "platform/host_platform.h"

namespace rgen_test {
namespace {

class GuardedExceptions : public testing::Test {
protected:
    GuardedExceptions() { error.size = sizeof error; }

    // The kind of the error of a call that throws `exception`.
    template <typename Exception>
    std::int32_t kindOf(const Exception& exception) {
        const auto fail = [&](rgenh::ErrorRecord& /*record*/) -> RgenStatus { throw exception; };
        EXPECT_EQ(RGEN_E_UNKNOWN, rgenh::guarded(&error, fail));
        EXPECT_EQ(RGEN_E_UNKNOWN, error.status);
        return error.kind;
    }

    RgenhError error = {};
};

TEST_F(GuardedExceptions, OfTheSystemHaveItsNumberAndText) {
    const int number = static_cast<int>(std::errc::permission_denied);
    const std::string text = rgenh::platform::systemErrorText(number);
    EXPECT_EQ(RGENH_ERROR_UNKNOWN,
              kindOf(std::system_error(std::make_error_code(std::errc::permission_denied))));
    EXPECT_EQ(number, error.systemError);
    EXPECT_EQ(text, error.message);
    EXPECT_EQ(RGENH_ERROR_UNKNOWN,
              kindOf(boost::system::system_error(number, boost::system::generic_category())));
    EXPECT_EQ(number, error.systemError);
    EXPECT_EQ(text, error.message);
}

TEST_F(GuardedExceptions, OfLocksWithoutMemoryAreErrorsOfMemory) {
    for (const std::errc number :
         {std::errc::not_enough_memory, std::errc::resource_unavailable_try_again}) {
        EXPECT_EQ(RGENH_ERROR_MEMORY, kindOf(std::system_error(std::make_error_code(number))));
        EXPECT_EQ(0, error.systemError);
        EXPECT_STREQ("memory is exhausted", error.message);
    }
}

TEST_F(GuardedExceptions, OfOtherTypesHaveTheirText) {
    EXPECT_EQ(RGENH_ERROR_UNKNOWN, kindOf(std::logic_error("two\nlines")));
    EXPECT_STREQ("two lines", error.message);
    EXPECT_EQ(RGENH_ERROR_UNKNOWN, kindOf(1));
    EXPECT_STREQ("an unknown exception", error.message);
}

TEST_F(GuardedExceptions, OfAnEncodingWithoutATextNameAPath) {
    EXPECT_EQ(RGENH_ERROR_ENCODING, kindOf(std::range_error("x")));
    EXPECT_STREQ("a path is not valid UTF-8", error.message);
    EXPECT_EQ(0, error.argument);
}

TEST_F(GuardedExceptions, OfAnEncodingNameTheFirstTextThatIsNotUtf8) {
    const rgenh::PassedText texts[] = {
        {1, "nothing", nullptr}, {2, "good", "g"}, {3, "bad", "\xFF"}, {}};
    const auto fail = [](rgenh::ErrorRecord& /*record*/) -> RgenStatus {
        throw std::range_error("x");
    };
    EXPECT_EQ(RGEN_E_UNKNOWN, rgenh::guarded(&error, texts, fail));
    EXPECT_STREQ("bad is not valid UTF-8", error.message);
    EXPECT_EQ(3, error.argument);
    const rgenh::PassedText none[] = {{1, "good", "g"}, {}};
    EXPECT_EQ(RGEN_E_UNKNOWN, rgenh::guarded(&error, none, fail));
    EXPECT_STREQ("a path is not valid UTF-8", error.message);
}

TEST_F(GuardedExceptions, OfStatusesWithoutANameShowTheNumber) {
    rgenh::ErrorRecord(&error).sayStatus("x", -5);
    EXPECT_STREQ("x: Undescribed error (0xFFFFFFFB)", error.message);
}

TEST_F(GuardedExceptions, OfUnknownNumbersShowTheNumber) {
    EXPECT_EQ("error 1234567", rgenh::platform::systemErrorText(1234567));
}

}  // namespace
}  // namespace rgen_test
