// Delivery: the three output modes, and what survives a failure.
//
// SPDX-License-Identifier: MIT
#include "generate/delivery.h"

#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>

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
using rgen::VariantKind;

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
    const std::string text = std::string("a\n\0\xFF", 4);
    rgen::InputParams request = {};
    rgen::sync::CancellationTokenSource source;
    Variant result;
};

TEST_F(DeliverTest, FileHoldsExactlyTheBytes) {
    for (const char* format : {"html", "txt"}) {
        request.outputFormat = format;
        writeFile(path, "previous and longer");
        EXPECT_EQ(statusHex(RGEN_OK), deliver(0));
        EXPECT_EQ(text, readFile(path));
    }
    EXPECT_FALSE(result.value.hasValue);
}

TEST_F(DeliverTest, FolderAtTheOutputPathIsNotOverwritten) {
    createFolder(path);
    for (const char* format : {"html", "pdf"}) {
        request.outputFormat = format;
        EXPECT_EQ(statusHex(RGEN_E_OVERWRITE_OUTPUT), deliver(0));
        EXPECT_TRUE(isFolder(path));
    }
    EXPECT_EQ(1U, namesIn(folder.path()).size());
}

TEST_F(DeliverTest, FileThatCannotBeCreated) {
    for (const std::string& name : {folder.file("none/out"), std::string()}) {
        request.outputPath = name;
        EXPECT_EQ(statusHex(RGEN_E_CREATE_OUTPUT), deliver(0)) << name;
    }
}

TEST_F(DeliverTest, InvalidUtf8RaisesInFileMode) {
    request.outputPath = folder.file("a\xFF");
    EXPECT_THROW(deliver(0), std::range_error);
    request.outputFormat = "pdf";
    EXPECT_THROW(deliver(0), std::range_error);
    EXPECT_TRUE(namesIn(folder.path()).empty());
}

TEST_F(DeliverTest, SkippedConversionWritesTheBytes) {
    request.outputFormat = "pdf";
    for (const std::uint64_t skip : {std::uint64_t{1}, std::uint64_t{1} << 40U}) {
        request.skipExternalConversion = skip;
        EXPECT_EQ(statusHex(RGEN_OK), deliver(0));
        EXPECT_EQ(text, readFile(path));
        EXPECT_FALSE(exists(html));
    }
}

TEST_F(DeliverTest, ConverterGetsTheBytesAndMakesTheOutput) {
    const ConverterControl control(folder);
    control.obey({{"copy", html, path}});
    request.outputFormat = "pdf";
    writeFile(path, "previous");
    EXPECT_EQ(statusHex(RGEN_OK), deliver(0));
    EXPECT_EQ(text, readFile(path));
    EXPECT_FALSE(exists(html));
}

TEST_F(DeliverTest, OldOutputIsGoneBeforeTheConverterRuns) {
    const ConverterControl control(folder);
    request.outputFormat = "pdf";
    writeFile(path, "previous");
    EXPECT_EQ(statusHex(RGEN_OK), deliver(0));
    EXPECT_FALSE(exists(path));
    EXPECT_FALSE(exists(html));
}

TEST_F(DeliverTest, MissingConverterLeavesNoFile) {
    const ScopedEnvironmentText searchPath("PATH", folder.path());
    request.outputFormat = "pdf";
    writeFile(path, "previous");
    EXPECT_EQ(statusHex(RGEN_E_RUN_EXTERNAL), deliver(0));
    EXPECT_TRUE(namesIn(folder.path()).empty());
}

TEST_F(DeliverTest, UnknownExitCodeLeavesNoTemporaryFile) {
    const ConverterControl control(folder);
    const FailingCall failure(Call::QueryExitCode);
    request.outputFormat = "pdf";
    EXPECT_EQ(statusHex(RGEN_E_EXTERNAL_FAILED), deliver(0));
    EXPECT_TRUE(failure.reached());
    EXPECT_FALSE(exists(html));
}

TEST_F(DeliverTest, TemporaryFileThatCannotBeCreated) {
    const ConverterControl control(folder);
    request.outputFormat = "pdf";
    createFolder(html);
    EXPECT_EQ(statusHex(RGEN_E_CREATE_OUTPUT), deliver(0));
    EXPECT_TRUE(isFolder(html));
    EXPECT_FALSE(exists(path));
}

TEST_F(DeliverTest, CancelledConversionRemovesOutputAndTemporaryFile) {
    const ConverterControl control(folder);
    control.obey({{"write", path, "half"},
                  {"mark", folder.file("written")},
                  {"await", folder.file("go")},
                  {"mark", folder.file("ended")}});
    request.outputFormat = "pdf";
    std::thread canceller([this] {
        waitForFile(folder.file("written"));
        source.cancel();
    });
    EXPECT_EQ(statusHex(RGEN_CANCELED), deliver(0));
    canceller.join();
    EXPECT_FALSE(exists(path));
    EXPECT_FALSE(exists(html));
    writeFile(folder.file("go"), "");
    EXPECT_TRUE(waitForFile(folder.file("ended")));
    rgen::platform::reapAbandonedProcesses();
}

TEST_F(DeliverTest, ConverterArgumentThatIsNotUtf8RaisesAndTheTemporaryFileGoes) {
    request.outputFormat = "pdf";
    request.converterBaseArg = "\xC3";
    EXPECT_THROW(deliver(0), std::range_error);
    EXPECT_TRUE(namesIn(folder.path()).empty());
}

TEST_F(DeliverTest, HandleOfADeleteOnCloseFile) {
    for (const char* format : {"html", "pdf", "none"}) {
        request.outputFormat = format;
        writeFile(path, "previous");
        ASSERT_EQ(statusHex(RGEN_OK), deliver(1));
        EXPECT_EQ(VariantKind::Handle, result.value.kind);
        EXPECT_EQ(VariantHint::Generic, result.hint);
        EXPECT_NE("UNINITIALIZED_VARIANT_VALUE", rgen::variantText(result));
        EXPECT_FALSE(exists(html));
        rgen::platform::closeFile(result.value.as<void*>());
        EXPECT_FALSE(exists(path));
    }
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

TEST_F(DeliverTest, BytesComeInMemoryAndNoPathIsLookedAt) {
    writeFile(path, "previous");
    for (const std::string& name : {path, std::string("\xFF"), std::string()}) {
        request.outputPath = name;
        request.outputFormat = "pdf";
        EXPECT_EQ(statusHex(RGEN_OK), deliver(2));
        EXPECT_EQ(VariantKind::ByteArray, result.value.kind);
        EXPECT_EQ(VariantHint::Dump, result.hint);
        EXPECT_EQ(bytes, result.value.as<ByteVector>());
    }
    EXPECT_EQ("previous", readFile(path));
}

TEST_F(DeliverTest, OtherModesAreRefused) {
    result = Variant(std::string("before"), VariantHint::Date);
    for (const std::uint64_t mode :
         {std::uint64_t{3}, std::uint64_t{1} << 32U, ~std::uint64_t{0}}) {
        EXPECT_EQ(statusHex(RGEN_E_UNKNOWN_OUTPUT_MODE), deliver(mode)) << mode;
    }
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
