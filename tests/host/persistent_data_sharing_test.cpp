// Persistent data across report types, generators and threads, and the result record of a get.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "strata_repgenlib/rgen.h"
#include "support/host_records.h"
#include "support/status_printer.h"
#include "support/temp_folder.h"

namespace {

using rgen_test::Generator;
using rgen_test::persistentData;
using rgen_test::statusHex;
using rgen_test::storePairs;
using rgen_test::TempFolder;
using rgen_test::TextMap;

const char* const oneGuid = "00000000-0000-0000-0000-000000000001";
const char* const twoGuid = "00000000-0000-0000-0000-000000000002";
const char* const threeGuid = "00000000-0000-0000-0000-000000000003";

std::string typeElement(const std::string& guid, const std::string& persistDataFile) {
    return "<type guid='" + guid + "'><persistDataFile>" + persistDataFile +
           "</persistDataFile><reportTypeFile>t.xsl</reportTypeFile></type>";
}

// Report types one and two share a file, three has its own.
class SharedPersistentData : public testing::Test {
protected:
    SharedPersistentData() : generator_(folder_.path()) {
        rgen_test::writeFile(folder_.dataFile("config.xml"),
                             "<config><reportTypes>" + typeElement(oneGuid, "shared.xml") +
                                 typeElement(twoGuid, "shared.xml") +
                                 typeElement(threeGuid, "own.xml") + "</reportTypes></config>");
    }
    RgenStatus store(const char* guid, const TextMap& pairs) const {
        return storePairs(generator_, rgen_test::guidFromText(guid), pairs);
    }
    rgen_test::PersistentData get(const char* guid) const {
        return persistentData(generator_, rgen_test::guidFromText(guid));
    }

    TempFolder folder_;
    Generator generator_;
};

TEST_F(SharedPersistentData, ReportTypesOfOneFileSeeEachOthersData) {
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(store(oneGuid, {{"a", "1"}})));
    EXPECT_EQ((TextMap{{"a", "1"}}), get(twoGuid).pairs);
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(store(twoGuid, {{"b", "2"}})));
    EXPECT_EQ((TextMap{{"b", "2"}}), get(oneGuid).pairs);
}

TEST_F(SharedPersistentData, ReportTypesOfTwoFilesDoNot) {
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(store(oneGuid, {{"a", "1"}})));
    EXPECT_EQ(statusHex(RGEN_E_OPEN_PERSIST), statusHex(get(threeGuid).status));
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(store(threeGuid, {{"a", "3"}})));
    EXPECT_EQ((TextMap{{"a", "1"}}), get(oneGuid).pairs);
    EXPECT_EQ((TextMap{{"a", "3"}}), get(threeGuid).pairs);
}

TEST_F(SharedPersistentData, AnUnknownReportTypeTouchesNoFile) {
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(store(oneGuid, {{"a", "1"}})));
    const std::string before = rgen_test::readFile(folder_.dataFile("shared.xml"));
    const rgen_test::PersistentData data = get(rgen_test::defaultGuidText);
    EXPECT_EQ(statusHex(RGEN_E_GUID_NOT_IN_CONFIG), statusHex(data.status));
    EXPECT_TRUE(data.pairs.empty());
    EXPECT_EQ(statusHex(RGEN_E_GUID_NOT_IN_CONFIG),
              statusHex(store(rgen_test::defaultGuidText, {{"b", "2"}})));
    EXPECT_EQ(before, rgen_test::readFile(folder_.dataFile("shared.xml")));
    EXPECT_EQ((std::vector<std::string>{"config.xml", "shared.xml"}),
              rgen_test::namesIn(folder_.dataDir()));
}

TEST_F(SharedPersistentData, ThreadsOnOneGeneratorKeepTheirFilesApart) {
    std::atomic<int> waiting{2};
    std::atomic<int> wrong{0};
    const auto work = [&](const char* guid, const std::string& text) {
        --waiting;
        while (waiting > 0) {
            std::this_thread::yield();
        }
        for (int round = 0; round < 20; ++round) {
            const TextMap pairs{{"name", text + std::to_string(round)}};
            const bool stored = store(guid, pairs) == RGEN_OK;
            wrong += stored && get(guid).pairs == pairs ? 0 : 1;
        }
    };
    std::thread first(work, oneGuid, "one ");
    std::thread second(work, threeGuid, "three ");
    first.join();
    second.join();
    EXPECT_EQ(0, wrong);
}

TEST_F(SharedPersistentData, AnotherGeneratorReadsWhatWasStored) {
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(store(oneGuid, {{"a", "1"}})));
    const Generator other(folder_.path());
    EXPECT_EQ((TextMap{{"a", "1"}}), persistentData(other, rgen_test::guidFromText(oneGuid)).pairs);
}

// ---- The target of a get --------------------------------------------------------------------

TEST_F(SharedPersistentData, ANullTargetGetsTheStatus) {
    const RgenGuid guid = rgen_test::guidFromText(oneGuid);
    EXPECT_EQ(statusHex(RGEN_E_OPEN_PERSIST),
              statusHex(rgen_getPersistentData(generator_.get(), &guid, nullptr)));
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(store(oneGuid, {{"a", "1"}})));
    EXPECT_EQ(statusHex(RGEN_OK),
              statusHex(rgen_getPersistentData(generator_.get(), &guid, nullptr)));
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(store(oneGuid, {})));
    EXPECT_EQ(statusHex(RGEN_E_NO_PERSIST_VALUES),
              statusHex(rgen_getPersistentData(generator_.get(), &guid, nullptr)));
}

TEST_F(SharedPersistentData, AFailureLeavesTheTargetAlone) {
    RgenAnsiString key{};
    RgenAnsiString value{};
    const char* const guids[] = {oneGuid, twoGuid, threeGuid, rgen_test::defaultGuidText};
    rgen_test::writeFile(folder_.dataFile("shared.xml"), "<data/>");
    for (const char* text : guids) {
        const RgenGuid guid = rgen_test::guidFromText(text);
        RgenCAnsiStringPairSet set{&key, &value, 7};
        EXPECT_GT(0, rgen_getPersistentData(generator_.get(), &guid, &set)) << text;
        EXPECT_EQ(&key, set.keys);
        EXPECT_EQ(&value, set.values);
        EXPECT_EQ(7U, set.count);
    }
}

TEST_F(SharedPersistentData, ATargetIsFilledAfresh) {
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(store(oneGuid, {{"a", "one"}, {"b", "three"}})));
    const RgenGuid guid = rgen_test::guidFromText(oneGuid);
    RgenAnsiString unrelated{};
    RgenCAnsiStringPairSet set{&unrelated, &unrelated, 77};
    ASSERT_EQ(statusHex(RGEN_OK), statusHex(rgen_getPersistentData(generator_.get(), &guid, &set)));
    EXPECT_EQ(2U, set.count);
    EXPECT_EQ((TextMap{{"a", "one"}, {"b", "three"}}), rgen_test::toMap(set));
    for (std::uint64_t index = 0; index < set.count; ++index) {
        EXPECT_EQ('\0', set.keys[index].data[set.keys[index].length]);
        EXPECT_EQ('\0', set.values[index].data[set.values[index].length]);
    }
    rgen_freeRgenCAnsiStringSet(&set);
}

}  // namespace
