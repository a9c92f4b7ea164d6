// The raw input dump and its failures.
//
// SPDX-License-Identifier: MIT
#include "variant/raw_dump.h"

#include <cstdint>
#include <string>

#include "support/console_capture.h"
#include "support/fault_injection.h"
#include "unit/unit_fixture.h"
#include "variant/simulated_input.h"

namespace rgen_test {
namespace {

using rgen::Variant;
using rgen::VariantHint;

class WriteRawInputDump : public UnitTest {
protected:
    std::string dump(const rgen::VariantMap& values) {
        return statusHex(rgen::writeRawInputDump(generator, values, path));
    }

    const std::string path = folder.file("dump.xml");
    const rgen::VariantMap oneValue = {{"speed", Variant(std::int64_t{1200}, VariantHint::Speed)}};
};

TEST_F(WriteRawInputDump, WritesNamesAndTextsWithoutTypeOrHint) {
    EXPECT_EQ(statusHex(RGEN_OK), dump(oneValue));
    EXPECT_EQ(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<data>\n  <properties>\n"
        "    <property name=\"speed\">1200</property>\n"
        "  </properties>\n</data>\n",
        readFile(path));
}

TEST_F(WriteRawInputDump, EveryKindIsWrittenAsItsText) {
    const struct {
        Variant value;
        const char* text;
    } rows[] = {{Variant(std::int64_t{255}, VariantHint::Address), ">0xff<"},
                {Variant(std::string("x"), VariantHint::Generic), ">x<"},
                {Variant(rgen::ByteVector{1, 0xAB}, VariantHint::Dump), ">01 AB <"},
                {Variant(), ">UNINITIALIZED_VARIANT_VALUE<"}};
    for (const auto& row : rows) {
        EXPECT_EQ(statusHex(RGEN_OK), dump({{"a", row.value}}));
        EXPECT_NE(std::string::npos, readFile(path).find(row.text)) << row.text;
    }
}

TEST_F(WriteRawInputDump, EmptyMapGivesEmptyProperties) {
    EXPECT_EQ(statusHex(RGEN_OK), dump({}));
    EXPECT_NE(std::string::npos, readFile(path).find("<properties/>"));
}

TEST_F(WriteRawInputDump, NameIsPlainTextAndContentIsNot) {
    const Variant value(std::string("a&amp;b"), VariantHint::Generic);
    EXPECT_EQ(statusHex(RGEN_OK), dump({{"<\"&amp;>", value}}));
    EXPECT_NE(std::string::npos,
              readFile(path).find("name=\"&lt;&quot;&amp;amp;&gt;\">a&amp;b</property>"));
}

TEST_F(WriteRawInputDump, ReadsBackAsNoValues) {
    EXPECT_EQ(statusHex(RGEN_OK), dump(oneValue));
    rgen::VariantMap values;
    EXPECT_EQ(statusHex(RGEN_E_NO_PERSIST_VALUES),
              statusHex(rgen::readSimulatedRawInput(generator, path.c_str(), values)));
    EXPECT_TRUE(values.empty());
}

TEST_F(WriteRawInputDump, ReplacesAnExistingFileAndAnEmptyFolder) {
    writeFile(path, std::string(5000, 'x'));
    EXPECT_EQ(statusHex(RGEN_OK), dump(oneValue));
    EXPECT_LT(readFile(path).size(), 500U);
    removeAll(path);
    createFolder(path);
    EXPECT_EQ(statusHex(RGEN_OK), dump(oneValue));
    EXPECT_FALSE(isFolder(path));
}

TEST_F(WriteRawInputDump, FolderWithContentCannotBeRemoved) {
    writeFile(path + "/inside", "x");
    EXPECT_EQ(statusHex(RGEN_E_DELETE_DUMP), dump(oneValue));
    EXPECT_EQ("x", readFile(path + "/inside"));
}

TEST_F(WriteRawInputDump, MissingFolderAboveCannotBeWrittenInto) {
    EXPECT_EQ(statusHex(RGEN_E_CREATE_PERSIST),
              statusHex(rgen::writeRawInputDump(generator, oneValue, folder.file("no/dump.xml"))));
}

TEST_F(WriteRawInputDump, FailureHalfWayLeavesNoFile) {
    for (const Call call : {Call::NewOutputBuffer, Call::SaveXmlDocument, Call::NewXmlDocument}) {
        writeFile(path, "previous");
        const FailingCall failure(call);
        EXPECT_EQ(statusHex(RGEN_E_CREATE_PERSIST), dump(oneValue));
        EXPECT_TRUE(failure.reached());
        EXPECT_FALSE(exists(path));
    }
}

TEST_F(WriteRawInputDump, InvalidUtf8RaisesBeforeAnythingIsTouched) {
    EXPECT_THROW(rgen::writeRawInputDump(generator, oneValue, folder.file("a\xFF")),
                 std::range_error);
    EXPECT_TRUE(namesIn(folder.path()).empty());
}

TEST_F(WriteRawInputDump, PrintsNothing) {
    const Variant value(std::string("& &undefined; \xFF"), VariantHint::Generic);
    const ConsoleText console = captureConsole([&] { dump({{"a", value}}); });
    EXPECT_EQ("", console.out + console.err);
}

}  // namespace
}  // namespace rgen_test
