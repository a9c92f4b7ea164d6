// Vector registers that a function must keep for its caller, also when it handles an exception.
//
// SPDX-License-Identifier: MIT
#include <array>
#include <functional>

#include "host_library/host_library_fixture.h"

namespace rgen_test {
namespace {

using Register = std::array<std::uint64_t, 2>;
using Registers = std::array<Register, 3>;

// Static, so that the code between the two instructions needs no register for their addresses.
Registers before;
Registers after;

class CallersRegisters : public HostLibraryTest {
protected:
    // Fills three registers, makes the call, and compares them.
    void expectKept(const char* label, const std::function<RgenStatus()>& call) {
        before = {{{0x1122334455667788, 1}, {0x99AABBCCDDEEFF00, 2}, {0x0102030405060708, 3}}};
        asm volatile("movdqu %0, %%xmm6\n movdqu %1, %%xmm7\n movdqu %2, %%xmm15\n"
                     :
                     : "m"(before[0]), "m"(before[1]), "m"(before[2])
                     : "xmm6", "xmm7", "xmm15");
        const RgenStatus status = call();
        asm volatile("movdqu %%xmm6, %0\n movdqu %%xmm7, %1\n movdqu %%xmm15, %2\n"
                     : "=m"(after[0]), "=m"(after[1]), "=m"(after[2]));
        EXPECT_EQ(RGEN_E_UNKNOWN, status) << label;
        EXPECT_EQ(before, after) << label;
    }
};

TEST_F(CallersRegisters, AreKeptByCallsThatMeetExceptions) {
    putTemplate(textStylesheet("x"));
    RgenReportGenerator* const fresh = rgenh_newReportGenerator(&error);
    InputParams request;
    request.variants().addString("v", "x");
    Result result;
    expectKept("no data directory",
               [&] { return rgenh_generateReport(fresh, request.get(), result.get(), &error); });
    request.output(RGEN_OUTPUT_FILE, folder.file("o\xFF"));
    expectKept("output path",
               [&] { return rgenh_generateReport(host, request.get(), result.get(), &error); });
    expectKept("data directory", [&] { return rgenh_setDataDirPath(host, "\xFF", &error); });
    rgenh_freeReportGenerator(fresh, nullptr);
}

}  // namespace
}  // namespace rgen_test
