// Files of unusual sizes: depth, numbers and lengths. Each row is put into all three of
// the files that the library reads, as far as it concerns them.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>

#include "support/file_readers.h"
#include "support/host_records.h"
#include "support/status_printer.h"
#include "support/temp_folder.h"

namespace rgen_test {
namespace {

TEST(HostileSizes, TooDeepElementsEndTheFile) {
    for (const FileReader& reader : fileReaders()) {
        for (const int depth : {255, 300, 100000}) {
            const std::string content = "<" + reader.root + ">" + reader.itemStart + "text" +
                                        reader.itemEnd + repeated("<d>", depth);
            EXPECT_EQ(readText("text"), reader.read(content)) << reader.name << ", " << depth;
        }
    }
}

TEST(HostileSizes, AnElementWithALongNameIsLost) {
    const std::string longName(60000, 'n');
    for (const FileReader& reader : fileReaders()) {
        const std::string content = "<" + reader.root + "><" + longName + "/>" + reader.itemStart +
                                    "text" + reader.itemEnd + reader.end;
        EXPECT_EQ(readText("text"), reader.read(content)) << reader.name;
    }
}

TEST(HostileSizes, ManySmallElementsAreReadOver) {
    const std::string elements = repeated("<x a=\"\"/>", 100000);
    for (const FileReader& reader : fileReaders()) {
        std::string content = reader.document("text");
        content.insert(2 + reader.root.size(), elements);
        EXPECT_EQ(readText("text"), reader.read(content)) << reader.name;
    }
}

TEST(HostileSizes, AStartTagMayHaveManyAttributesButNotTenMegabytes) {
    std::string many;
    for (int index = 0; index < 100000; ++index) {
        many += " a" + std::to_string(index) + "='v'";
    }
    const std::string tooLong = " a='" + std::string(11000000, 'x') + "'";
    for (const FileReader& reader : fileReaders()) {
        std::string content = reader.document("text");
        const std::size_t quote = content.find('\'');
        const std::size_t position = content.find('\'', quote + 1) + 1;
        EXPECT_EQ(readText("text"), reader.read(std::string(content).insert(position, many)))
            << reader.name;
        EXPECT_EQ(failedRead(reader.noItems),
                  reader.read(std::string(content).insert(position, tooLong)))
            << reader.name;
    }
}

TEST(HostileSizes, OfADoubledAttributeTheFirstCounts) {
    EXPECT_EQ(readText("text"),
              fileReaders()[1].read("<data><properties><property name='n' name='other'>text"
                                    "</property></properties></data>"));
}

TEST(HostileSizes, ATextIsReadUpToTenMegabytes) {
    for (const FileReader& reader : {fileReaders()[1], fileReaders()[2]}) {
        const std::string whole(9000000, 'x');
        EXPECT_TRUE(readText(whole) == reader.read(reader.document(whole))) << reader.name;
        const Outcome cut = reader.read(reader.document(std::string(11000000, 'x')));
        EXPECT_EQ(statusHex(RGEN_OK), cut.status) << reader.name;
        EXPECT_NEAR(10000000.0, static_cast<double>(cut.text.size()), 100000.0) << reader.name;
        EXPECT_EQ(std::string::npos, cut.text.find_first_not_of('x')) << reader.name;
    }
}

TEST(HostileSizes, ALargeEntityIsReadUpToAMegabyteOfExpansion) {
    for (const FileReader& reader : {fileReaders()[1], fileReaders()[2]}) {
        const std::string prolog =
            "<!DOCTYPE data [<!ENTITY e '" + std::string(102400, 'x') + "'>]>";
        const Outcome outcome = reader.read(reader.document(repeated("&e;", 1000), prolog));
        EXPECT_EQ(statusHex(RGEN_OK), outcome.status) << reader.name;
        EXPECT_EQ(9U * 102400U, outcome.text.size()) << reader.name;
    }
}

// A persistent data file of that many properties with the same text.
std::string propertiesOf(const std::string& text, int count, const std::string& prolog = "") {
    std::string content = prolog + "<data><properties>";
    for (int number = 0; number < count; ++number)
        content += "<property name='p" + std::to_string(number) + "'>" + text + "</property>";
    return content + "</properties></data>";
}

PersistentData dataOf(const std::string& content) {
    const TempFolder folder;
    writeFile(folder.dataFile("persist_data.xml"), content);
    const Generator generator(folder.path());
    return persistentData(generator, defaultGuid());
}

TEST(HostileSizes, ManyPropertiesAreAllRead) {
    const PersistentData data = dataOf(propertiesOf("text", 100000));
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(data.status));
    EXPECT_EQ(100000U, data.pairs.size());
    EXPECT_EQ("text", data.pairs.at("p99999"));
}

TEST(HostileSizes, OfPropertiesWithALargeEntityTheFirstOnesAreRead) {
    const std::string prolog = "<!DOCTYPE data [<!ENTITY e '" + std::string(102400, 'x') + "'>]>";
    const PersistentData data = dataOf(propertiesOf("&e;", 20000, prolog));
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(data.status));
    EXPECT_EQ(9U, data.pairs.size());
    EXPECT_EQ(102400U, data.pairs.at("p0").size());
}

TEST(HostileSizes, AnItemWithAMillionAttributesIsLost) {
    std::string attributes;
    for (int index = 0; index < 1000000; ++index)
        attributes += " a" + std::to_string(index) + "='v'";
    for (const FileReader& reader : fileReaders()) {
        std::string content = reader.document("text");
        const std::size_t quote = content.find('\'');
        content.insert(content.find('\'', quote + 1) + 1, attributes);
        EXPECT_EQ(failedRead(reader.noItems), reader.read(content)) << reader.name;
    }
}

TEST(HostileSizes, ALongGuidIsNoGuid) {
    std::string content = fileReaders()[0].document("text");
    const std::string guid = "deadbabe-0000-0000-0000-000000000000";
    const std::string longGuid = repeated("0123456789abcdef", 65536);
    EXPECT_EQ(failedRead(RGEN_E_NO_VALID_TYPE_MAP),
              fileReaders()[0].read(content.replace(content.find(guid), guid.size(), longGuid)));
}

TEST(HostileSizes, FourMegabytesOfSmallElementsAreReadOver) {
    for (const std::string element : {"<x/>", "<x a=\"\"/>", "<x/>a"}) {
        const std::string elements =
            repeated(element, static_cast<int>(4 * 1024 * 1024 / element.size()));
        const FileReader& reader = fileReaders()[1];
        std::string content = reader.document("text");
        content.insert(2 + reader.root.size(), elements);
        EXPECT_EQ(readText("text"), reader.read(content)) << element;
    }
}

}  // namespace
}  // namespace rgen_test
