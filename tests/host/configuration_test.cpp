// config.xml as a host sees it: the default one, when it is written, and what each operation
// returns for a configuration that cannot be used.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "strata_repgenlib/rgen.h"
#include "support/host_records.h"
#include "support/status_printer.h"
#include "support/temp_folder.h"

namespace {

using rgen_test::Generator;
using rgen_test::InputParams;
using rgen_test::persistentData;
using rgen_test::Result;
using rgen_test::statusHex;
using rgen_test::TempFolder;

const char* const defaultConfiguration =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<config>\n"
    "  <reportTypes>\n"
    "    <type guid=\"deadbabe-0000-0000-0000-000000000000\">\n"
    "      <persistDataFile>persist_data.xml</persistDataFile>\n"
    "      <reportTypeFile>test_stylesheet.xsl</reportTypeFile>\n"
    "    </type>\n"
    "  </reportTypes>\n"
    "</config>\n";

const char* const otherGuidText = "01234567-89ab-cdef-0123-456789abcdef";

std::string configurationFor(const std::string& guid) {
    return "<config><reportTypes><type guid=\"" + guid +
           "\"><persistDataFile>p.xml</persistDataFile><reportTypeFile>t.xsl</reportTypeFile>"
           "</type></reportTypes></config>";
}

// The four operations that load the configuration.
struct Operation {
    const char* name;
    RgenStatus (*run)(const Generator& generator, const RgenGuid& guid);
};

RgenStatus getData(const Generator& generator, const RgenGuid& guid) {
    return rgen_getPersistentData(generator.get(), &guid, nullptr);
}

RgenStatus setPairs(const Generator& generator, const RgenGuid& guid) {
    return rgen_test::storePairs(generator, guid, {{"a", "b"}});
}

RgenStatus setValues(const Generator& generator, const RgenGuid& guid) {
    rgen_test::VariantSet values;
    values.addInt64("n", 1);
    return rgen_setPersistentDataFromCVariantSet(generator.get(), &guid, values.get());
}

RgenStatus generate(const Generator& generator, const RgenGuid& guid) {
    InputParams input;
    input.guid(guid).variants().addInt64("n", 1);
    Result result;
    return rgen_generateReport(generator.get(), input.get(), result.get());
}

const Operation operations[] = {{"rgen_getPersistentData", getData},
                                {"rgen_setPersistentDataFromAnsiStringPairSet", setPairs},
                                {"rgen_setPersistentDataFromCVariantSet", setValues},
                                {"rgen_generateReport", generate}};

// ---- The default configuration --------------------------------------------------------------

TEST(DefaultConfiguration, IsWrittenByTheFirstOperationThatNeedsIt) {
    for (const Operation& operation : operations) {
        SCOPED_TRACE(operation.name);
        const TempFolder folder;
        const Generator generator(folder.path());
        operation.run(generator, rgen_test::defaultGuid());
        EXPECT_EQ(defaultConfiguration, rgen_test::readFile(folder.dataFile("config.xml")));
    }
}

TEST(DefaultConfiguration, IsWrittenForAnUnknownReportTypeToo) {
    for (const Operation& operation : operations) {
        SCOPED_TRACE(operation.name);
        const TempFolder folder;
        const Generator generator(folder.path());
        EXPECT_EQ(statusHex(RGEN_E_GUID_NOT_IN_CONFIG),
                  statusHex(operation.run(generator, rgen_test::guidFromText(otherGuidText))));
        EXPECT_EQ(defaultConfiguration, rgen_test::readFile(folder.dataFile("config.xml")));
        EXPECT_EQ(std::vector<std::string>{"config.xml"}, rgen_test::namesIn(folder.dataDir()));
    }
}

TEST(DefaultConfiguration, ServesItsReportType) {
    const TempFolder folder;
    const Generator generator(folder.path());
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(setPairs(generator, rgen_test::defaultGuid())));
    EXPECT_TRUE(rgen_test::exists(folder.dataFile("persist_data.xml")));
    EXPECT_EQ(statusHex(RGEN_E_TEMPLATE_NOT_FOUND),
              statusHex(generate(generator, rgen_test::defaultGuid())));
    rgen_test::writeFile(folder.dataFile("templates/html/test_stylesheet.xsl"),
                         "<xsl:stylesheet version='1.0' xmlns:xsl='"
                         "http://www.w3.org/1999/XSL/Transform'><xsl:template match='/'>x"
                         "</xsl:template></xsl:stylesheet>");
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(generate(generator, rgen_test::defaultGuid())));
}

TEST(DefaultConfiguration, IsWrittenAgainWhenTheFileVanished) {
    const TempFolder folder;
    const Generator generator(folder.path());
    getData(generator, rgen_test::defaultGuid());
    rgen_test::removeAll(folder.dataFile("config.xml"));
    getData(generator, rgen_test::defaultGuid());
    EXPECT_EQ(defaultConfiguration, rgen_test::readFile(folder.dataFile("config.xml")));
}

TEST(DefaultConfiguration, JoinsTheFilesOfAnExistingDataDirectory) {
    const TempFolder folder;
    rgen_test::writeFile(folder.dataFile("persist_data.xml"),
                         "<data><properties><property name='a'>b</property></properties></data>");
    const Generator generator(folder.path());
    const rgen_test::PersistentData data = persistentData(generator, rgen_test::defaultGuid());
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(data.status));
    EXPECT_EQ((rgen_test::TextMap{{"a", "b"}}), data.pairs);
    EXPECT_EQ(defaultConfiguration, rgen_test::readFile(folder.dataFile("config.xml")));
}

TEST(DefaultConfiguration, IsWrittenOnceForThreadsThatStartTogether) {
    const TempFolder folder;
    const Generator generator(folder.path());
    std::atomic<int> waiting{4};
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int index = 0; index < 4; ++index) {
        threads.emplace_back([&] {
            const RgenGuid guid = rgen_test::defaultGuid();
            --waiting;
            while (waiting > 0) {
                std::this_thread::yield();
            }
            const RgenStatus status = rgen_getPersistentData(generator.get(), &guid, nullptr);
            wrong += status == RGEN_E_OPEN_PERSIST ? 0 : 1;
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(0, wrong);
    EXPECT_EQ(defaultConfiguration, rgen_test::readFile(folder.dataFile("config.xml")));
}

// ---- An existing configuration --------------------------------------------------------------

TEST(ExistingConfiguration, IsNeverRewritten) {
    const std::string contents[] = {configurationFor(otherGuidText), "", "no XML at all",
                                    "<config><reportTypes/></config>"};
    for (const std::string& content : contents) {
        SCOPED_TRACE(content);
        const TempFolder folder;
        rgen_test::writeFile(folder.dataFile("config.xml"), content);
        const Generator generator(folder.path());
        for (const Operation& operation : operations) {
            EXPECT_GT(0, operation.run(generator, rgen_test::defaultGuid())) << operation.name;
        }
        EXPECT_EQ(content, rgen_test::readFile(folder.dataFile("config.xml")));
    }
}

TEST(ExistingConfiguration, IsReadAfreshByEachOperation) {
    const TempFolder folder;
    const Generator generator(folder.path());
    const RgenGuid other = rgen_test::guidFromText(otherGuidText);
    EXPECT_EQ(statusHex(RGEN_E_GUID_NOT_IN_CONFIG), statusHex(getData(generator, other)));
    rgen_test::writeFile(folder.dataFile("config.xml"), configurationFor(otherGuidText));
    EXPECT_EQ(statusHex(RGEN_E_OPEN_PERSIST), statusHex(getData(generator, other)));
    EXPECT_EQ(statusHex(RGEN_E_GUID_NOT_IN_CONFIG),
              statusHex(getData(generator, rgen_test::defaultGuid())));
}

TEST(ExistingConfiguration, IsSharedByGeneratorsOfOneDataDirectory) {
    const TempFolder folder;
    const Generator first(folder.path());
    const Generator second(folder.path());
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(setPairs(first, rgen_test::defaultGuid())));
    EXPECT_EQ((rgen_test::TextMap{{"a", "b"}}),
              persistentData(second, rgen_test::defaultGuid()).pairs);
}

struct FailureRow {
    const char* label;
    std::string content;
    RgenStatus status;
};

TEST(ExistingConfiguration, EveryOperationReturnsTheStatusOfTheLookup) {
    const FailureRow rows[] = {
        {"empty file", "", RGEN_E_OPEN_CONFIG},
        {"no report type", "<config><reportTypes/></config>", RGEN_E_NO_TYPE_MAP},
        {"invalid GUID", configurationFor("not a GUID"), RGEN_E_NO_VALID_TYPE_MAP},
        {"another GUID", configurationFor(otherGuidText), RGEN_E_GUID_NOT_IN_CONFIG},
    };
    for (const FailureRow& row : rows) {
        const TempFolder folder;
        rgen_test::writeFile(folder.dataFile("config.xml"), row.content);
        const Generator generator(folder.path());
        for (const Operation& operation : operations) {
            EXPECT_EQ(statusHex(row.status),
                      statusHex(operation.run(generator, rgen_test::defaultGuid())))
                << row.label << ", " << operation.name;
        }
        EXPECT_EQ(std::vector<std::string>{"config.xml"}, rgen_test::namesIn(folder.dataDir()));
    }
}

TEST(ExistingConfiguration, AFolderInItsPlaceCannotBeOpened) {
    const TempFolder folder;
    rgen_test::createFolder(folder.dataFile("config.xml"));
    const Generator generator(folder.path());
    for (const Operation& operation : operations) {
        EXPECT_EQ(statusHex(RGEN_E_OPEN_CONFIG),
                  statusHex(operation.run(generator, rgen_test::defaultGuid())))
            << operation.name;
    }
    EXPECT_TRUE(rgen_test::isFolder(folder.dataFile("config.xml")));
}

TEST(ExistingConfiguration, FailuresLeaveTheDataDirectoryInForce) {
    const TempFolder folder;
    rgen_test::writeFile(folder.dataFile("config.xml"), "");
    const Generator generator(folder.path());
    EXPECT_EQ(statusHex(RGEN_E_OPEN_CONFIG),
              statusHex(getData(generator, rgen_test::defaultGuid())));
    rgen_test::removeAll(folder.dataFile("config.xml"));
    EXPECT_EQ(statusHex(RGEN_E_OPEN_PERSIST),
              statusHex(getData(generator, rgen_test::defaultGuid())));
}

// ---- Damaged configurations -----------------------------------------------------------------

TEST(DamagedConfiguration, IsReadAsFarAsItCanBeRecovered) {
    const std::string entry =
        "<type guid=\"deadbabe-0000-0000-0000-000000000000\">"
        "<persistDataFile>p.xml</persistDataFile><reportTypeFile>t.xsl</reportTypeFile></type>";
    const FailureRow rows[] = {
        {"no closing tags at the end", "<config><reportTypes>" + entry, RGEN_E_OPEN_PERSIST},
        {"root not closed", "<config><reportTypes>" + entry + "</reportTypes>",
         RGEN_E_OPEN_PERSIST},
        {"text after the root",
         "<config><reportTypes>" + entry + "</reportTypes></config>text <more",
         RGEN_E_OPEN_PERSIST},
        {"cut in the last text",
         "<config><reportTypes><type guid=\"deadbabe-0000-0000-0000-000000000000\">"
         "<persistDataFile>p.xml</persistDataFile><reportTypeFile>t.x",
         RGEN_E_OPEN_PERSIST},
        {"cut before the second file",
         "<config><reportTypes><type guid=\"deadbabe-0000-0000-0000-000000000000\">"
         "<persistDataFile>p.xml</persistDataFile><repor",
         RGEN_E_NO_VALID_TYPE_MAP},
        {"lone ampersand", "<config> & <reportTypes>" + entry + "</reportTypes></config>",
         RGEN_E_OPEN_PERSIST},
    };
    for (const FailureRow& row : rows) {
        const TempFolder folder;
        rgen_test::writeFile(folder.dataFile("config.xml"), row.content);
        const Generator generator(folder.path());
        EXPECT_EQ(statusHex(row.status), statusHex(getData(generator, rgen_test::defaultGuid())))
            << row.label;
        EXPECT_EQ(row.content, rgen_test::readFile(folder.dataFile("config.xml")));
    }
}

}  // namespace
