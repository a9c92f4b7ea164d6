// What a host may do with the library after the library's own end.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>

#include "robustness/ending/ending_moments.h"

namespace rgen_test {
namespace {

// The system has ended the library by then, and with it the XML libraries. Windows ends no library
// before one that it was loaded after.
TEST(LateProcessEnd, EverythingWorksAfterTheEndOfTheLibrary) {
    for (const std::string use : {"freed", "held", "unused"}) {
        const std::string moments = momentsOf("loading_host", use, RGEN_LATE_LIBRARY);
        EXPECT_NE(std::string::npos, moments.find("end of a library: right\n")) << moments;
        EXPECT_GT(moments.find("end of a library"), moments.find("end of the program")) << moments;
    }
}

}  // namespace
}  // namespace rgen_test
