// rgen_dumpRawInputDataToFile: the file it writes, the entries it leaves out, the paths it takes.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include "strata_repgenlib/rgen.h"
#include "support/host_records.h"
#include "support/status_printer.h"
#include "support/temp_folder.h"
#include "support/working_folder.h"

namespace {

using rgen_test::Generator;
using rgen_test::InputParams;
using rgen_test::statusHex;
using rgen_test::TempFolder;

const char* const emptyDump =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<data>\n  <properties/>\n</data>\n";

std::string dumpOf(const std::string& property) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<data>\n  <properties>\n    " + property +
           "\n  </properties>\n</data>\n";
}

class DumpRawInputData : public testing::Test {
protected:
    RgenStatus dumpTo(const std::string& path) {
        return rgen_dumpRawInputDataToFile(generator_.get(), input_.get(), path.c_str());
    }
    // The bytes of a dump of the input.
    std::string dump() {
        const std::string path = folder_.file("dump.xml");
        EXPECT_EQ(statusHex(RGEN_OK), statusHex(dumpTo(path)));
        return rgen_test::readFile(path);
    }

    TempFolder folder_;
    Generator generator_;
    InputParams input_;
};

// ---- The file -------------------------------------------------------------------------------

TEST_F(DumpRawInputData, WritesNameAndDisplayText) {
    input_.variants().addInt64("speed", 1200, RGEN_HINT_SPEED);
    EXPECT_EQ(dumpOf("<property name=\"speed\">1200</property>"), dump());
}

TEST_F(DumpRawInputData, WritesOnePropertyForEachValue) {
    input_.variants().addInt64("a", 255, RGEN_HINT_ADDRESS).addString("b", "x");
    const std::string first = "    <property name=\"a\">0xff</property>\n";
    const std::string second = "    <property name=\"b\">x</property>\n";
    const std::string file = dump();
    const std::string start =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<data>\n  <properties>\n";
    const std::string end = "  </properties>\n</data>\n";
    EXPECT_TRUE(file == start + first + second + end || file == start + second + first + end)
        << file;
}

TEST_F(DumpRawInputData, NoValuesWriteAnEmptyList) {
    EXPECT_EQ(emptyDump, dump());
}

TEST_F(DumpRawInputData, LeavesOutHandlesAndUnknownTypes) {
    input_.variants().addHandle("handle", &input_).addInt64("empty", 1).addInt64("unknown", 1);
    input_.variants().at(1).type = RGEN_TYPE_EMPTY;
    input_.variants().at(2).type = 77;
    EXPECT_EQ(emptyDump, dump());
}

TEST_F(DumpRawInputData, OfTwoValuesOfOneNameTheLaterWins) {
    input_.variants().addString("n", "first").addInt64("n", 2).addHandle("n", nullptr);
    EXPECT_EQ(dumpOf("<property name=\"n\">2</property>"), dump());
}

TEST_F(DumpRawInputData, WritesNeitherPairsNorOutputFields) {
    input_.pairs().add("pair", "text");
    input_.format("html").output(RGEN_OUTPUT_FILE, folder_.file("report.html"));
    EXPECT_EQ(emptyDump, dump());
    EXPECT_EQ(std::vector<std::string>{"dump.xml"}, rgen_test::namesIn(folder_.path()));
}

TEST_F(DumpRawInputData, ReadsTextsUpToTheirZeroByte) {
    input_.variants().addString("name", "text");
    input_.variants().at(0).name.length = 1;
    input_.variants().at(0).value.stringValue.length = 0;
    EXPECT_EQ(dumpOf("<property name=\"name\">text</property>"), dump());
}

TEST_F(DumpRawInputData, ReadsBytesUpToTheirSize) {
    input_.variants().addBytes("bytes", {0, 1, 2, 3});
    input_.variants().at(0).value.byteArrayValue.size = 3;
    EXPECT_EQ(dumpOf("<property name=\"bytes\">00 01 02 </property>"), dump());
}

TEST_F(DumpRawInputData, ANullNameIsTheEmptyName) {
    input_.variants().addInt64("n", 1);
    rgen_freeRgenAnsiString(&input_.variants().at(0).name);
    EXPECT_EQ(dumpOf("<property name=\"\">1</property>"), dump());
}

TEST_F(DumpRawInputData, LeavesItsInputAlone) {
    input_.variants().addInt64("n", 1, RGEN_HINT_DUMP);
    const RgenCVariant before = input_.variants().at(0);
    dump();
    EXPECT_EQ(0, std::memcmp(&before, &input_.variants().at(0), sizeof before));
}

TEST_F(DumpRawInputData, ReadsBackAsNoValues) {
    input_.variants().addInt64("n", 1).addString("s", "text");
    dump();
    const rgen_test::SimulatedData data =
        rgen_test::simulatedData(generator_, folder_.file("dump.xml"));
    EXPECT_EQ(0, data.result);
    EXPECT_EQ(0U, data.count);
}

// ---- The path -------------------------------------------------------------------------------

TEST_F(DumpRawInputData, ReplacesAFile) {
    rgen_test::writeFile(folder_.file("dump.xml"), std::string(5000, 'x'));
    EXPECT_EQ(emptyDump, dump());
}

TEST_F(DumpRawInputData, ReplacesAnEmptyFolder) {
    rgen_test::createFolder(folder_.file("dump.xml"));
    EXPECT_EQ(emptyDump, dump());
}

TEST_F(DumpRawInputData, AFolderWithContentCannotBeReplaced) {
    rgen_test::writeFile(folder_.file("dump.xml/kept.txt"), "kept");
    EXPECT_EQ(statusHex(RGEN_E_DELETE_DUMP), statusHex(dumpTo(folder_.file("dump.xml"))));
    EXPECT_EQ("kept", rgen_test::readFile(folder_.file("dump.xml/kept.txt")));
}

TEST_F(DumpRawInputData, AMissingFolderIsNotCreated) {
    EXPECT_EQ(statusHex(RGEN_E_CREATE_PERSIST), statusHex(dumpTo(folder_.file("none/dump.xml"))));
    EXPECT_TRUE(rgen_test::namesIn(folder_.path()).empty());
}

TEST_F(DumpRawInputData, AnEmptyPathCannotBeWritten) {
    const rgen_test::WorkingFolder current(folder_.path());
    EXPECT_EQ(statusHex(RGEN_E_CREATE_PERSIST), statusHex(dumpTo("")));
    EXPECT_TRUE(rgen_test::namesIn(folder_.path()).empty());
}

TEST_F(DumpRawInputData, WritesTheFileThatIsNamed) {
    for (const char* name : {"a%20b.xml", "a b.xml", "100%.xml", "%2e%2e.xml", "-", "a+b.xml.gz",
                             "\xD0\xB4\xD0\xB0\xD0\xBC\xD0\xBF \xF0\x9F\x98\x80.xml"}) {
        SCOPED_TRACE(name);
        const TempFolder folder;
        EXPECT_EQ(statusHex(RGEN_OK), statusHex(dumpTo(folder.file(name))));
        EXPECT_EQ(std::vector<std::string>{name}, rgen_test::namesIn(folder.path()));
        EXPECT_EQ(emptyDump, rgen_test::readFile(folder.file(name)));
    }
}

TEST_F(DumpRawInputData, TakesARelativePath) {
    const rgen_test::WorkingFolder current(folder_.path());
    for (const char* name : {"plain.xml", "-", "a%20b.xml"}) {
        EXPECT_EQ(statusHex(RGEN_OK), statusHex(dumpTo(name))) << name;
        EXPECT_EQ(emptyDump, rgen_test::readFile(folder_.file(name)));
    }
    EXPECT_EQ((std::vector<std::string>{"-", "a%20b.xml", "plain.xml"}),
              rgen_test::namesIn(folder_.path()));
}

TEST_F(DumpRawInputData, InvalidUtf8RaisesBeforeAFileIsTouched) {
    for (const char* bytes : {"\xFF", "\xC3", "\xE2\x82", "\xED\xA0\x80", "\xF0\x9F\x98"}) {
        EXPECT_THROW(dumpTo(folder_.file(bytes)), std::range_error);
        EXPECT_THROW(dumpTo(folder_.file(std::string("a") + bytes + "b")), std::range_error);
    }
    EXPECT_TRUE(rgen_test::namesIn(folder_.path()).empty());
}

}  // namespace
