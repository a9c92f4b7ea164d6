// The persistent data store: what a set writes, what a get reads, and every status of the two.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "strata_repgenlib/rgen.h"
#include "support/host_records.h"
#include "support/status_printer.h"
#include "support/temp_folder.h"

namespace {

using rgen_test::Generator;
using rgen_test::PairSet;
using rgen_test::PersistentData;
using rgen_test::statusHex;
using rgen_test::TempFolder;
using rgen_test::TextMap;
using rgen_test::VariantSet;

const char* const header = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

class PersistentDataTest : public testing::Test {
protected:
    PersistentDataTest() : generator_(folder_.path()) {}

    std::string dataFile() const { return folder_.dataFile("persist_data.xml"); }
    RgenStatus store(PairSet& pairs) const {
        return rgen_setPersistentDataFromAnsiStringPairSet(generator_.get(), &guid_, pairs.get());
    }
    RgenStatus store(const TextMap& pairs) const {
        return rgen_test::storePairs(generator_, guid_, pairs);
    }
    RgenStatus store(VariantSet& values) const {
        return rgen_setPersistentDataFromCVariantSet(generator_.get(), &guid_, values.get());
    }
    PersistentData get() const { return rgen_test::persistentData(generator_, guid_); }
    // The get on a file with this content.
    PersistentData getFrom(const std::string& content) const {
        rgen_test::writeFile(dataFile(), content);
        return get();
    }
    PersistentData getFromProperties(const std::string& properties) const {
        return getFrom("<data><properties>" + properties + "</properties></data>");
    }
    void expectStored(const TextMap& pairs) const {
        const PersistentData data = get();
        EXPECT_EQ(statusHex(RGEN_OK), statusHex(data.status));
        EXPECT_EQ(pairs, data.pairs);
    }

    TempFolder folder_;
    Generator generator_;
    RgenGuid guid_ = rgen_test::defaultGuid();
};

using SetPersistentData = PersistentDataTest;
using SetPersistentDataFromValues = PersistentDataTest;
using GetPersistentData = PersistentDataTest;

// ---- Pairs ----------------------------------------------------------------------------------

TEST_F(SetPersistentData, WritesAnIndentedFile) {
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(store(TextMap{{"owner", "Ada <ada>"}})));
    EXPECT_EQ(std::string(header) +
                  "<data>\n  <properties>\n"
                  "    <property name=\"owner\">Ada &lt;ada&gt;</property>\n"
                  "  </properties>\n</data>\n",
              rgen_test::readFile(dataFile()));
}

TEST_F(SetPersistentData, AnEmptySetWritesAnEmptyStore) {
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(store(TextMap{})));
    EXPECT_EQ(std::string(header) + "<data>\n  <properties/>\n</data>\n",
              rgen_test::readFile(dataFile()));
    const PersistentData data = get();
    EXPECT_EQ(statusHex(RGEN_E_NO_PERSIST_VALUES), statusHex(data.status));
    EXPECT_TRUE(data.pairs.empty());
}

TEST_F(SetPersistentData, AnEmptyStoreGivesAReportNoProperties) {
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(store(TextMap{})));
    rgen_test::InputParams input;
    rgen_test::Result result;
    EXPECT_EQ(statusHex(RGEN_E_EMPTY_INPUT),
              statusHex(rgen_generateReport(generator_.get(), input.get(), result.get())));
}

TEST_F(SetPersistentData, ReplacesTheWholeSet) {
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(store(TextMap{{"a", "1"}, {"b", "2"}})));
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(store(TextMap{{"b", "3"}, {"c", "4"}})));
    expectStored({{"b", "3"}, {"c", "4"}});
}

TEST_F(SetPersistentData, KeepsManyPairs) {
    TextMap pairs;
    for (int index = 0; index < 500; ++index) {
        pairs["name " + std::to_string(index)] = "text " + std::to_string(index * 7);
    }
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(store(pairs)));
    expectStored(pairs);
}

TEST_F(SetPersistentData, OfTwoPairsOfOneNameTheLaterWins) {
    PairSet pairs;
    pairs.add("name", "first").add("other", "x").add("name", "second");
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(store(pairs)));
    expectStored({{"name", "second"}, {"other", "x"}});
}

TEST_F(SetPersistentData, NamesAreComparedByteForByte) {
    PairSet pairs;
    pairs.add("name", "1").add("Name", "2").add("NAME", "3");
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(store(pairs)));
    expectStored({{"name", "1"}, {"Name", "2"}, {"NAME", "3"}});
}

TEST_F(SetPersistentData, ReadsTextsUpToTheirZeroByte) {
    PairSet pairs;
    pairs.add("name", "text");
    auto* record = const_cast<RgenCAnsiStringPairSet*>(pairs.get());
    record->keys[0].length = 1;
    record->values[0].length = 100;
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(rgen_setPersistentDataFromAnsiStringPairSet(
                                      generator_.get(), &guid_, record)));
    expectStored({{"name", "text"}});
}

TEST_F(SetPersistentData, ANullTextIsTheEmptyText) {
    RgenAnsiString keys[2] = {};
    RgenAnsiString values[2] = {};
    ASSERT_EQ(1, rgen_createRgenAnsiString("kept", &keys[1]));
    ASSERT_EQ(1, rgen_createRgenAnsiString("text", &values[1]));
    const RgenCAnsiStringPairSet set{keys, values, 2};
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(rgen_setPersistentDataFromAnsiStringPairSet(
                                      generator_.get(), &guid_, &set)));
    rgen_freeRgenAnsiString(&keys[1]);
    rgen_freeRgenAnsiString(&values[1]);
    const std::string file = rgen_test::readFile(dataFile());
    EXPECT_NE(std::string::npos, file.find("<property name=\"\"/>")) << file;
    expectStored({{"kept", "text"}});
}

TEST_F(SetPersistentData, NullArraysAreAnEmptySetWhateverTheirCount) {
    const RgenCAnsiStringPairSet set{nullptr, nullptr, 5};
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(rgen_setPersistentDataFromAnsiStringPairSet(
                                      generator_.get(), &guid_, &set)));
    EXPECT_EQ(statusHex(RGEN_E_NO_PERSIST_VALUES), statusHex(get().status));
    const RgenCVariantSet values{nullptr, 5};
    EXPECT_EQ(statusHex(RGEN_OK),
              statusHex(rgen_setPersistentDataFromCVariantSet(generator_.get(), &guid_, &values)));
    EXPECT_EQ(statusHex(RGEN_E_NO_PERSIST_VALUES), statusHex(get().status));
}

TEST_F(SetPersistentData, LeavesItsInputAlone) {
    PairSet pairs;
    pairs.add("name", "text");
    const RgenCAnsiStringPairSet before = *pairs.get();
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(store(pairs)));
    EXPECT_EQ(0, std::memcmp(&before, pairs.get(), sizeof before));
    EXPECT_EQ("name", rgen_test::toText(pairs.get()->keys[0]));
    EXPECT_EQ("text", rgen_test::toText(pairs.get()->values[0]));
}

TEST_F(SetPersistentData, AFolderWithContentCannotBeReplaced) {
    rgen_test::writeFile(folder_.dataFile("persist_data.xml/kept.txt"), "kept");
    EXPECT_EQ(statusHex(RGEN_E_DELETE_PERSIST), statusHex(store(TextMap{{"a", "b"}})));
    VariantSet values;
    values.addInt64("n", 1);
    EXPECT_EQ(statusHex(RGEN_E_DELETE_PERSIST), statusHex(store(values)));
    EXPECT_EQ("kept", rgen_test::readFile(folder_.dataFile("persist_data.xml/kept.txt")));
}

TEST_F(SetPersistentData, AnEmptyFolderIsReplaced) {
    rgen_test::createFolder(dataFile());
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(store(TextMap{{"a", "b"}})));
    expectStored({{"a", "b"}});
}

TEST_F(SetPersistentData, AFailedConfigurationLeavesTheFileAlone) {
    rgen_test::writeFile(folder_.dataFile("config.xml"), "<config/>");
    rgen_test::writeFile(dataFile(), "old");
    EXPECT_EQ(statusHex(RGEN_E_NO_TYPE_MAP), statusHex(store(TextMap{{"a", "b"}})));
    EXPECT_EQ("old", rgen_test::readFile(dataFile()));
}

// ---- Values ---------------------------------------------------------------------------------

TEST_F(SetPersistentDataFromValues, StoresTheTextsOfAReport) {
    VariantSet values;
    values.addString("text", "Ada")
        .addInt64("size", -12, RGEN_HINT_SIZE)
        .addInt64("address", 255, RGEN_HINT_ADDRESS)
        .addInt64("speed", 7, RGEN_HINT_SPEED)
        .addInt64("generic", 8, RGEN_HINT_DUMP)
        .addInt64("bad time", -1, RGEN_HINT_TIME)
        .addBytes("bytes", {0x01, 0xAB});
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(store(values)));
    expectStored({{"text", "Ada"},
                  {"size", "-12"},
                  {"address", "0xff"},
                  {"speed", "7"},
                  {"generic", "8"},
                  {"bad time", "ERROR: BAD TIME_T INPUT"},
                  {"bytes", "01 AB"}});
}

TEST_F(SetPersistentDataFromValues, LeavesOutHandlesAndUnknownTypes) {
    VariantSet values;
    values.addHandle("handle", &values).addInt64("type 0", 1).addInt64("type 5", 1);
    values.addInt64("kept", 1);
    values.at(1).type = 0;
    values.at(2).type = 5;
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(store(values)));
    expectStored({{"kept", "1"}});
}

TEST_F(SetPersistentDataFromValues, HandlesAloneEmptyTheStore) {
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(store(TextMap{{"a", "b"}})));
    VariantSet values;
    values.addHandle("handle", &values);
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(store(values)));
    EXPECT_EQ(statusHex(RGEN_E_NO_PERSIST_VALUES), statusHex(get().status));
}

TEST_F(SetPersistentDataFromValues, OfTwoValuesOfOneNameTheLaterWins) {
    VariantSet values;
    values.addInt64("name", 1).addString("name", "text").addHandle("name", nullptr);
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(store(values)));
    expectStored({{"name", "text"}});
}

TEST_F(SetPersistentDataFromValues, NullBuffersAreEmpty) {
    VariantSet values;
    values.addString("text", "x").addBytes("bytes", {1}).addString("kept", "y");
    rgen_freeRgenAnsiString(&values.at(0).value.stringValue);
    rgen_freeRgenByteArray(&values.at(1).value.byteArrayValue);
    values.at(1).value.byteArrayValue.size = 9;
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(store(values)));
    values.at(1).value.byteArrayValue.size = 0;
    expectStored({{"kept", "y"}});
}

TEST_F(SetPersistentDataFromValues, ReplacesTheWholeSet) {
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(store(TextMap{{"a", "1"}, {"b", "2"}})));
    VariantSet values;
    values.addInt64("b", 3);
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(store(values)));
    expectStored({{"b", "3"}});
}

// ---- Get ------------------------------------------------------------------------------------

TEST_F(GetPersistentData, TrimsNamesAndTexts) {
    EXPECT_EQ(statusHex(RGEN_OK),
              statusHex(store(
                  TextMap{{" name\t", " \t\r\n text with  blanks \r\n"}, {"plain", "text"}})));
    expectStored({{"name", "text with  blanks"}, {"plain", "text"}});
}

TEST_F(GetPersistentData, TrimsNothingButWhiteSpaceOfAscii) {
    const TextMap pairs{{"no-break space", "\xC2\xA0text\xC2\xA0"},
                        {"ends in byte A0", "\xD0\xA0"},
                        {"\xD0\xA0", "\xC3\xA0"},
                        {"line separator", "\xE2\x80\xA8x"}};
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(store(pairs)));
    expectStored(pairs);
}

TEST_F(GetPersistentData, ATextOfWhiteSpaceIsLeftOut) {
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(store(TextMap{{"blank", " \t "}, {"a", "b"}})));
    expectStored({{"a", "b"}});
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(store(TextMap{{"blank", " \t "}})));
    const PersistentData data = get();
    EXPECT_EQ(statusHex(RGEN_E_NO_VALID_PERSIST_VALUES), statusHex(data.status));
    EXPECT_TRUE(data.pairs.empty());
}

TEST_F(GetPersistentData, OfTwoPropertiesOfOneNameTheLastWins) {
    const PersistentData data = getFromProperties(
        "<property name='a'>1</property><property name='b'>2</property>"
        "<property name=' a '>3</property><property name='a'> </property>");
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(data.status));
    EXPECT_EQ((TextMap{{"a", "3"}, {"b", "2"}}), data.pairs);
}

TEST_F(GetPersistentData, LeavesOutWhatHasNoNameOrNoText) {
    const PersistentData data = getFromProperties(
        "<property>1</property><property name=''>2</property><property name='  '>3</property>"
        "<property name='empty'/><property name='blank'> \n </property>"
        "<property name='element'><b>x</b></property><property name='kept'>4</property>");
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(data.status));
    EXPECT_EQ((TextMap{{"kept", "4"}}), data.pairs);
}

TEST_F(GetPersistentData, JoinsTextAndReferences) {
    const PersistentData data = getFromProperties(
        "<property name='a' other='x'>1<!-- c -->2<b>no</b><![CDATA[ <3> ]]>&amp;&#52;</property>");
    EXPECT_EQ((TextMap{{"a", "12 <3> &4"}}), data.pairs);
}

TEST_F(GetPersistentData, AMissingFileCannotBeOpened) {
    const PersistentData data = get();
    EXPECT_EQ(statusHex(RGEN_E_OPEN_PERSIST), statusHex(data.status));
    EXPECT_TRUE(data.pairs.empty());
    EXPECT_FALSE(rgen_test::exists(dataFile()));
}

TEST_F(GetPersistentData, AFileThatIsNoXmlDocumentCannotBeOpened) {
    EXPECT_EQ(statusHex(RGEN_E_OPEN_PERSIST), statusHex(getFrom("").status));
    rgen_test::removeAll(dataFile());
    rgen_test::createFolder(dataFile());
    EXPECT_EQ(statusHex(RGEN_E_OPEN_PERSIST), statusHex(get().status));
}

TEST_F(GetPersistentData, WithoutNamedPropertiesThereAreNoValues) {
    for (const char* content :
         {"<data/>", "<data><properties/></data>",
          "<data><properties><property>x</property></properties></data>",
          "<data><property name='a'>b</property></data>",
          "<data><properties><Property name='a'>b</Property></properties></data>",
          "<data><properties><property Name='a'>b</property></properties></data>",
          "<Data><properties><property name='a'>b</property></properties></Data>",
          "<data><properties><g><property name='a'>b</property></g></properties></data>",
          "<x><data><properties><property name='a'>b</property></properties></data></x>",
          "<data xmlns='urn:x'><properties><property name='a'>b</property></properties></data>"}) {
        const PersistentData data = getFrom(content);
        EXPECT_EQ(statusHex(RGEN_E_NO_PERSIST_VALUES), statusHex(data.status)) << content;
        EXPECT_TRUE(data.pairs.empty()) << content;
    }
}

TEST_F(GetPersistentData, WithoutValidPropertiesThereAreNoValidValues) {
    for (const char* properties :
         {"<property name=''>x</property>", "<property name='a'/>",
          "<property name='a'> </property>", "<property name='a'><b>x</b></property>"}) {
        const PersistentData data = getFromProperties(properties);
        EXPECT_EQ(statusHex(RGEN_E_NO_VALID_PERSIST_VALUES), statusHex(data.status)) << properties;
        EXPECT_TRUE(data.pairs.empty()) << properties;
    }
}

TEST_F(GetPersistentData, ADamagedFileIsReadAsFarAsItCanBeRecovered) {
    const PersistentData data =
        getFrom("<data><properties><property name='a'>1</property><property name='b'>cut he");
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(data.status));
    EXPECT_EQ((TextMap{{"a", "1"}, {"b", "cut he"}}), data.pairs);
}

}  // namespace
