// Delivery when calls of the system fail, and what it does with token and lock. The three output
// modes are tested through the library (host/delivery_test.cpp, host/external_converter_test.cpp).
//
// SPDX-License-Identifier: MIT
#include "generate/delivery.h"

#include <mutex>
#include <string>

#include "platform/child_process.h"
#include "platform/platform.h"
#include "support/converter_control.h"
#include "support/fault_injection.h"
#include "unit/unit_fixture.h"
#include "variant/hinted_convertors.h"

namespace rgen_test {
namespace {

using rgen::ByteVector;
using rgen::Variant;
using rgen::VariantHint;

class DeliverTest : public UnitTest {
protected:
    DeliverTest() {
        request.outputFormat = "html";
        request.outputPath = path;
    }

    std::string deliver(std::uint64_t mode) {
        request.outputMode = mode;
        return statusHex(rgen::deliver(generator, request, bytes, *source.getToken(), result));
    }
    bool isResultUntouched() const {
        return result.hint == VariantHint::Date && rgen::variantText(result) == "before";
    }

    const std::string path = folder.file("out.pdf");
    const std::string html = path + ".html";
    const ByteVector bytes = {'a', '\n', 0, 0xFF};
    rgen::InputParams request = {};
    rgen::sync::CancellationTokenSource source;
    Variant result;
};

TEST_F(DeliverTest, UnknownExitCodeLeavesNoTemporaryFile) {
    const ConverterControl control(folder);
    const FailingCall failure(Call::QueryExitCode);
    request.outputFormat = "pdf";
    EXPECT_EQ(statusHex(RGEN_E_EXTERNAL_FAILED), deliver(0));
    EXPECT_TRUE(failure.reached());
    EXPECT_FALSE(exists(html));
}

TEST_F(DeliverTest, HandleModeFailuresLeaveResultAndFolderAlone) {
    result = Variant(std::string("before"), VariantHint::Date);
    {
        const FailingCall failure(Call::WriteFile);
        EXPECT_EQ(statusHex(RGEN_E_WRITE_OUTPUT), deliver(1));
        EXPECT_TRUE(failure.reached());
        EXPECT_FALSE(exists(path));
    }
    {
        // Linux tries again with the rest, which has to fail.
        const FailingCall secondHalf(Call::WriteFile, nativePath("/") == "/" ? 1 : 2);
        const FailingCall firstHalf(Call::WriteFileShort);
        EXPECT_EQ(statusHex(RGEN_E_WRITE_ALL_OUTPUT), deliver(1));
        EXPECT_FALSE(exists(path));
    }
    request.outputPath = folder.file("none/out");
    EXPECT_EQ(statusHex(RGEN_E_CREATE_OUTPUT), deliver(1));
    request.outputPath = folder.path();
    EXPECT_EQ(statusHex(RGEN_E_CREATE_OUTPUT), deliver(1));
    EXPECT_TRUE(isResultUntouched());
    EXPECT_TRUE(namesIn(folder.path()).empty());
}

TEST_F(DeliverTest, TokenMattersToTheConverterOnly) {
    source.cancel();
    EXPECT_EQ(statusHex(RGEN_OK), deliver(0));
    EXPECT_EQ(statusHex(RGEN_OK), deliver(2));
    EXPECT_EQ(statusHex(RGEN_OK), deliver(1));
    rgen::platform::closeFile(result.value.as<void*>());
}

TEST_F(DeliverTest, MutexIsNotNeeded) {
    const std::lock_guard lock(generator.mutex);
    EXPECT_EQ(statusHex(RGEN_OK), deliver(0));
    EXPECT_EQ(statusHex(RGEN_OK), deliver(2));
}

}  // namespace
}  // namespace rgen_test
