// Failures that the functions report as C++ exceptions, and the generator's state afterwards.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <exception>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/conversion_fixture.h"
#include "support/test_platform.h"

namespace rgen_test {
namespace {

struct BadText {
    const char* label;
    std::string bytes;
};

std::vector<BadText> badTexts() {
    return {{"byte FF", "\xFF"},
            {"lone continuation", "\x80"},
            {"cut two-byte sequence", "\xC3"},
            {"cut three-byte sequence", "\xE2\x82"},
            {"cut four-byte sequence", "\xF0\x9F\x93"},
            {"sequence broken by a letter", "\xE2\x82z"},
            {"overlong zero", "\xC0\x80"},
            {"surrogate", "\xED\xA0\x80"},
            {"beyond Unicode", "\xF4\x90\x80\x80"}};
}

class Exceptions : public ConversionTest {
protected:
    Exceptions() { putTemplate(textStylesheet("done"), "html"); }

    RgenStatus generateInto(const std::string& format, const std::string& path) {
        Result result;
        input.format(format).output(RGEN_OUTPUT_FILE, path);
        return rgen_generateReport(generator.get(), input.get(), result.get());
    }

    // The lock is free, nothing is left of earlier calls, and reports can be made.
    void expectUsable() {
        rgen_cancel(generator.get(), nullptr);
        EXPECT_EQ(statusHex(RGEN_OK), statusHex(generateInto("html", folder.file("usable.html"))));
        EXPECT_EQ("done", readFile(folder.file("usable.html")));
        removeAll(folder.file("usable.html"));
    }
};

TEST_F(Exceptions, WithoutADataDirectoryEveryOperationOnAGuidRaises) {
    const Generator fresh;
    const RgenGuid guid = defaultGuid();
    Result result;
    RgenCAnsiStringPairSet target{};
    PairSet pairs;
    VariantSet values;
    input.output(RGEN_OUTPUT_BYTES);
    EXPECT_THROW(rgen_generateReport(fresh.get(), input.get(), result.get()), std::runtime_error);
    EXPECT_THROW(rgen_getPersistentData(fresh.get(), &guid, &target), std::runtime_error);
    EXPECT_THROW(rgen_setPersistentDataFromAnsiStringPairSet(fresh.get(), &guid, pairs.get()),
                 std::runtime_error);
    EXPECT_THROW(rgen_setPersistentDataFromCVariantSet(fresh.get(), &guid, values.get()),
                 std::runtime_error);
    EXPECT_EQ(0U, result.record().type);
    EXPECT_EQ(nullptr, target.keys);
    ASSERT_EQ(RGEN_OK, rgen_setDataDirPath(fresh.get(), folder.path().c_str()));
    EXPECT_EQ(RGEN_OK, rgen_generateReport(fresh.get(), input.get(), result.get()));
}

TEST_F(Exceptions, AnOutputPathThatIsNotUtf8RaisesBeforeAnyFileIsTouched) {
    const std::vector<std::string> before = namesIn(folder.path());
    for (const BadText& bad : badTexts()) {
        for (const std::string format : {"html", "pdf"}) {
            SCOPED_TRACE(bad.label + (" as " + format));
            EXPECT_THROW(generateInto(format, folder.file("a" + bad.bytes)), std::range_error);
            EXPECT_EQ(before, namesIn(folder.path()));
            expectUsable();
        }
    }
}

TEST_F(Exceptions, AConverterArgumentThatIsNotUtf8RaisesAndLeavesNoTemporaryFile) {
    converter.obey({{"mark", folder.file("ran")}});
    for (const BadText& bad : badTexts()) {
        SCOPED_TRACE(bad.label);
        input.converterBaseArg("a" + bad.bytes);
        EXPECT_THROW(generateInto("pdf", output), std::range_error);
        EXPECT_FALSE(exists(html));
        EXPECT_FALSE(exists(output));
        EXPECT_FALSE(exists(folder.file("ran")));
        expectUsable();
    }
}

TEST_F(Exceptions, AConverterArgumentThatIsNotUtf8IsNotLookedAtWithoutConversion) {
    input.converterBaseArg("\xFF");
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(generateInto("html", output)));
    input.skipExternalConversion(1);
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(generateInto("pdf", output)));
}

// A library with a C++ runtime of its own lowers the host's count with each catch without having
// increased it with the throw.
TEST_F(Exceptions, ACaughtOneLeavesTheCountOfUncaughtOnesToASharedRuntime) {
    for (int round = 0; round < 3; ++round) {
        const int before = std::uncaught_exceptions();
        EXPECT_THROW(rgen_setDataDirPath(generator.get(), "\xFF"), std::range_error);
        EXPECT_EQ(librarySharesCppRuntime ? before : before - 1, std::uncaught_exceptions());
    }
}

TEST_F(Exceptions, AFormatThatIsNotUtf8Raises) {
    for (const BadText& bad : badTexts()) {
        SCOPED_TRACE(bad.label);
        EXPECT_THROW(generateInto("a" + bad.bytes, output), std::range_error);
        expectUsable();
    }
}

TEST_F(Exceptions, ADataDirectoryWhoseParentVanishedRaises) {
    const std::string parent = folder.file("vanishing");
    createFolder(parent);
    const Generator other(parent);
    removeAll(parent);
    Result result;
    input.output(RGEN_OUTPUT_BYTES);
    EXPECT_THROW(rgen_generateReport(other.get(), input.get(), result.get()), std::runtime_error);
    createFolder(parent);
    EXPECT_EQ(statusHex(RGEN_E_TEMPLATE_NOT_FOUND),
              statusHex(rgen_generateReport(other.get(), input.get(), result.get())));
}

TEST_F(Exceptions, ARunningConversionIsNotDisturbedByTheExceptionOfAnother) {
    converter.obey(waiting({}, {{"write", output, "converted"}}));
    RunningGeneration conversion(generator, input);
    ASSERT_TRUE(waitForStarted());
    InputParams other;
    request(other, "other\xFF");
    Result result;
    EXPECT_THROW(rgen_generateReport(generator.get(), other.get(), result.get()), std::range_error);
    release();
    EXPECT_EQ(statusHex(RGEN_OK), conversion.status());
    EXPECT_EQ("converted", readFile(output));
}

}  // namespace
}  // namespace rgen_test
