// The persistent data store: its maps, failing library calls, its lock. What hosts see of it is
// tested in host/persistent_data_test.cpp.
//
// SPDX-License-Identifier: MIT
#include "store/persistent_data.h"

#include <cstdint>
#include <string>

#include "support/fault_injection.h"
#include "unit/unit_fixture.h"

namespace rgen_test {
namespace {

using rgen::PropertyMap;
using rgen::Variant;
using rgen::VariantHint;

class PersistentDataTest : public UnitTest {
protected:
    PersistentDataTest() { putConfig(); }

    std::string read() {
        return statusHex(rgen::readPersistentData(generator, "data.xml", properties));
    }
    std::string write(const PropertyMap& map) {
        return statusHex(rgen::writePersistentData(generator, "data.xml", map));
    }
    void putProperties(const std::string& text) {
        writeFile(path, "<data><properties>" + text + "</properties></data>");
    }

    const std::string path = folder.dataFile("data.xml");
    PropertyMap properties = {{"before", "x"}};
};

TEST_F(PersistentDataTest, WhatIsWrittenIsReadBack) {
    const PropertyMap map = {{"a", "1"}, {"<&\"", "<b>"}, {"name", "\xD0\x9F two words"}};
    EXPECT_EQ(statusHex(RGEN_OK), write(map));
    EXPECT_EQ(statusHex(RGEN_OK), read());
    EXPECT_EQ(map, properties);
}

TEST_F(PersistentDataTest, ReferencesAreInterpretedOnce) {
    EXPECT_EQ(statusHex(RGEN_OK), write({{"a", "&amp;lt;"}, {"b", "&lt;"}}));
    EXPECT_EQ(statusHex(RGEN_OK), read());
    EXPECT_EQ((PropertyMap{{"a", "&lt;"}, {"b", "<"}}), properties);
}

TEST_F(PersistentDataTest, ReadFailuresLeaveTheMapEmpty) {
    const struct {
        const char* text;
        rgen::Status status;
    } rows[] = {
        {"", RGEN_E_OPEN_PERSIST},
        {"<x/>", RGEN_E_NO_PERSIST_VALUES},
        {"<data><properties/></data>", RGEN_E_NO_PERSIST_VALUES},
        {"<data><properties><property>1</property></properties></data>", RGEN_E_NO_PERSIST_VALUES},
        {"<Data><properties><property name='a'>1</property></properties></Data>",
         RGEN_E_NO_PERSIST_VALUES},
        {"<data><properties><property name='a'/></properties></data>",
         RGEN_E_NO_VALID_PERSIST_VALUES},
        {"<data><properties><property name=' '>1</property></properties></data>",
         RGEN_E_NO_VALID_PERSIST_VALUES},
        {"<data><properties><property name='a'> \n</property></properties></data>",
         RGEN_E_NO_VALID_PERSIST_VALUES},
    };
    for (const auto& row : rows) {
        properties = {{"before", "x"}};
        writeFile(path, row.text);
        EXPECT_EQ(statusHex(row.status), read()) << row.text;
        EXPECT_TRUE(properties.empty()) << row.text;
    }
    properties = {{"before", "x"}};
    removeAll(path);
    EXPECT_EQ(statusHex(RGEN_E_OPEN_PERSIST), read());
    EXPECT_TRUE(properties.empty());
}

TEST_F(PersistentDataTest, XPathFailuresHaveTheirStatus) {
    putProperties("<property name='a'>1</property>");
    {
        const FailingCall failure(Call::NewXPathContext);
        EXPECT_EQ(statusHex(RGEN_E_XPATH_CONTEXT), read());
    }
    EXPECT_TRUE(properties.empty());
    {
        const FailingCall failure(Call::EvaluateXPath);
        EXPECT_EQ(statusHex(RGEN_E_XPATH_SEARCH), read());
    }
    EXPECT_EQ(statusHex(RGEN_OK), read());
}

TEST_F(PersistentDataTest, WriteReplacesTheWholeFile) {
    EXPECT_EQ(statusHex(RGEN_OK), write({{"a", std::string(5000, 'x')}, {"b", "2"}}));
    EXPECT_EQ(statusHex(RGEN_OK), write({{"c", "3"}}));
    EXPECT_EQ(statusHex(RGEN_OK), read());
    EXPECT_EQ((PropertyMap{{"c", "3"}}), properties);
}

TEST_F(PersistentDataTest, SaveThatFailsLeavesNoFile) {
    for (const Call call : {Call::NewXmlDocument, Call::NewOutputBuffer, Call::SaveXmlDocument}) {
        writeFile(path, "previous");
        const FailingCall failure(call);
        EXPECT_EQ(statusHex(RGEN_E_CREATE_PERSIST), write({{"a", "1"}}));
        EXPECT_TRUE(failure.reached());
        EXPECT_FALSE(exists(path));
    }
    EXPECT_EQ(statusHex(RGEN_E_CREATE_PERSIST),
              statusHex(rgen::writePersistentData(generator, "no/data.xml", {{"a", "1"}})));
}

TEST_F(PersistentDataTest, FilesAreReadWithoutTheMutex) {
    putProperties("<property name='a'>1</property>");
    bool unlocked = false;
    {
        const InterceptedCall reading(Call::ReadXmlFile, [&] { unlocked = isUnlocked(generator); });
        EXPECT_EQ(statusHex(RGEN_OK), read());
    }
    EXPECT_TRUE(unlocked);
    unlocked = false;
    const InterceptedCall writing(Call::NewOutputBuffer, [&] { unlocked = isUnlocked(generator); });
    EXPECT_EQ(statusHex(RGEN_OK), write({{"a", "1"}}));
    EXPECT_TRUE(unlocked);
}

TEST_F(PersistentDataTest, EachReportTypeHasItsFile) {
    const PropertyMap first = {{"a", "1"}};
    const PropertyMap second = {{"b", "2"}};
    EXPECT_EQ(RGEN_OK,
              rgen::setPersistentDataFromPairs(generator, rgen::defaultReportTypeGuid, first));
    EXPECT_EQ(RGEN_OK, rgen::setPersistentDataFromPairs(generator, otherGuid, second));
    EXPECT_TRUE(exists(folder.dataFile("persist_data.xml")));
    EXPECT_TRUE(exists(folder.dataFile("other_data.xml")));
    EXPECT_EQ(RGEN_OK, rgen::getPersistentData(generator, rgen::defaultReportTypeGuid, properties));
    EXPECT_EQ(first, properties);
    EXPECT_EQ(RGEN_OK, rgen::getPersistentData(generator, otherGuid, properties));
    EXPECT_EQ(second, properties);
}

TEST_F(PersistentDataTest, ValuesAreStoredAsTheirTexts) {
    const rgen::VariantMap values = {
        {"number", Variant(std::int64_t{255}, VariantHint::Address)},
        {"text", Variant(std::string("abc"), VariantHint::Generic)},
        {"bytes", Variant(rgen::ByteVector{1, 0xAB}, VariantHint::Dump)},
        {"none", Variant()}};
    EXPECT_EQ(RGEN_OK, rgen::setPersistentDataFromValues(generator, otherGuid, values));
    EXPECT_EQ(RGEN_OK, rgen::getPersistentData(generator, otherGuid, properties));
    EXPECT_EQ((PropertyMap{{"number", "0xff"},
                           {"text", "abc"},
                           {"bytes", "01 AB"},
                           {"none", "UNINITIALIZED_VARIANT_VALUE"}}),
              properties);
}

TEST_F(PersistentDataTest, UnknownReportTypeTouchesNoFile) {
    const rgen::Guid unknown = {1, 2, 3, {}};
    EXPECT_EQ(RGEN_E_GUID_NOT_IN_CONFIG,
              rgen::setPersistentDataFromPairs(generator, unknown, {{"a", "1"}}));
    EXPECT_EQ(RGEN_E_GUID_NOT_IN_CONFIG, rgen::setPersistentDataFromValues(generator, unknown, {}));
    EXPECT_EQ(RGEN_E_GUID_NOT_IN_CONFIG, rgen::getPersistentData(generator, unknown, properties));
    EXPECT_EQ(std::vector<std::string>{"config.xml"}, namesIn(folder.dataDir()));
}

}  // namespace
}  // namespace rgen_test
