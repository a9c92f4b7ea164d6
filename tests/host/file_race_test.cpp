// Files and folders of the data directory that another program replaces or removes while reports
// are made. A report sees the old state, the new one, or a part that its status explains.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <atomic>
#include <exception>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "support/process_figures.h"
#include "support/report_fixture.h"

namespace rgen_test {
namespace {

namespace fs = std::filesystem;

constexpr int readers = 4;

// Windows refuses to replace an open file, with an error on both sides.
constexpr bool renamingIsAtomic = fs::path::preferred_separator == '/';

// A configuration whose report type has that template. The rest makes it long enough to be read in
// several pieces.
std::string configurationWith(const std::string& sheet) {
    std::string text =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<config><reportTypes>\n<type guid=\"" +
        std::string(defaultGuidText) +
        "\"><persistDataFile>persist_data.xml</persistDataFile><reportTypeFile>" + sheet +
        "</reportTypeFile></type>\n";
    for (int number = 1000; number < 1100; ++number) {
        text += "<type guid=\"00000000-0000-0000-0000-00000000" + std::to_string(number) +
                "\"><persistDataFile>persist_data.xml</persistDataFile><reportTypeFile>" + sheet +
                "</reportTypeFile></type>\n";
    }
    return text + "</reportTypes></config>\n";
}

class FileRace : public ReportTest {
protected:
    FileRace() {
        putTemplateFile("one.xsl", textStylesheet("one"));
        putTemplateFile("two.xsl", textStylesheet("two"));
        writeFile(folder.dataFile("config.xml"), configurationWith("one.xsl"));
    }

    static Report reportOn(const Generator& used) {
        InputParams input;
        input.variants().addString("v", "value");
        Result result;
        const RgenStatus status = rgen_generateReport(used.get(), input.get(), result.get());
        return {statusHex(status), result.bytes()};
    }

    // Makes that many reports on each of several threads, with generators of their own, while the
    // other function is called over and over on the test's thread.
    template <typename Reading, typename Changing>
    void readWhile(int reports, const Reading& reading, const Changing& changing) {
        std::atomic<int> running{readers};
        std::vector<std::thread> threads;
        threads.reserve(readers);
        for (int reader = 0; reader < readers; ++reader) {
            threads.emplace_back([&] {
                const Generator own(folder.path());
                for (int number = 0; number < reports; ++number)
                    reading(own);
                --running;
            });
        }
        long changes = 0;
        for (; running > 0; ++changes)
            changing(changes);
        for (std::thread& thread : threads)
            thread.join();
        EXPECT_GT(changes, 0);
    }
};

TEST_F(FileRace, AConfigurationReplacedByRenamingIsTheOldOrTheNewOne) {
    const fs::path config = fs::u8path(folder.dataFile("config.xml"));
    const fs::path prepared = fs::u8path(folder.dataFile("config.new"));
    std::atomic<int> reached{0};
    readWhile(
        loopCount(4000),
        [&](const Generator& own) {
            const Report result = reportOn(own);
            if (result == reportOf("one") || result == reportOf("two")) ++reached;
            // Where a file that is open cannot be replaced, it may be missing for a moment.
            const bool excused =
                !renamingIsAtomic && result.status == statusHex(RGEN_E_OPEN_CONFIG);
            EXPECT_TRUE(excused || result == reportOf("one") || result == reportOf("two"))
                << result;
        },
        [&](long change) {
            writeFile(folder.dataFile("config.new"),
                      configurationWith(change % 2 == 0 ? "two.xsl" : "one.xsl"));
            std::error_code busy;
            fs::rename(prepared, config, busy);
        });
    EXPECT_GT(reached, 0);
}

TEST_F(FileRace, AConfigurationBeingRewrittenIsReadAsFarAsItGoes) {
    const std::set<std::string> documented = {
        statusHex(RGEN_E_OPEN_CONFIG), statusHex(RGEN_E_NO_TYPE_MAP),
        statusHex(RGEN_E_NO_VALID_TYPE_MAP), statusHex(RGEN_E_GUID_NOT_IN_CONFIG),
        // The name of the template was cut.
        statusHex(RGEN_E_TEMPLATE_NOT_FOUND), statusHex(RGEN_E_XSLT_PARSE)};
    const fs::path config = fs::u8path(folder.dataFile("config.xml"));
    readWhile(
        loopCount(4000),
        [&](const Generator& own) {
            const Report result = reportOn(own);
            EXPECT_TRUE(result == reportOf("one") || result == reportOf("two") ||
                        documented.count(result.status) == 1)
                << result;
        },
        [&](long change) {
            std::ofstream file(config, std::ios::binary | std::ios::trunc);
            // In pieces, so that each is a state of its own.
            const std::string text = configurationWith(change % 2 == 0 ? "two.xsl" : "one.xsl");
            for (std::size_t at = 0; at < text.size(); at += 1777)
                file << text.substr(at, 1777) << std::flush;
        });
    writeFile(folder.dataFile("config.xml"), configurationWith("two.xsl"));
    EXPECT_EQ(reportOf("two"), reportOn(generator));
}

TEST_F(FileRace, ADataDirectoryRemovedInALoopIsMadeAnewOrReported) {
    const fs::path dataDirectory = fs::u8path(folder.dataDir());
    const std::set<std::string> documented = {
        statusHex(RGEN_E_CREATE_DIR), statusHex(RGEN_E_CREATE_CONFIG),
        statusHex(RGEN_E_OPEN_CONFIG), statusHex(RGEN_E_NO_TYPE_MAP),
        statusHex(RGEN_E_NO_VALID_TYPE_MAP), statusHex(RGEN_E_TEMPLATE_NOT_FOUND),
        // The template is removed after the check and before it is read.
        statusHex(RGEN_E_XSLT_PARSE)};
    std::atomic<int> answered{0};
    readWhile(
        loopCount(4000),
        [&](const Generator& own) {
            // A folder that is removed between two calls may cause an exception, as documented.
            try {
                const Report result = reportOn(own);
                // The report itself as long as the first directory is there.
                EXPECT_TRUE(result == reportOf("one") || documented.count(result.status) == 1)
                    << result;
                // The generator forgets a directory that another one has just made.
                if (result == failure(RGEN_E_CREATE_DIR)) {
                    EXPECT_EQ(RGEN_OK, rgen_setDataDirPath(own.get(), folder.path().c_str()));
                }
                ++answered;
            } catch (const std::exception& error) {
                EXPECT_NE(nullptr, error.what());
            }
        },
        [&](long) {
            std::error_code filledMeanwhile;
            fs::remove_all(dataDirectory, filledMeanwhile);
        });
    EXPECT_GT(answered, 0);
    removeAll(folder.dataDir());
    EXPECT_EQ(failure(RGEN_E_TEMPLATE_NOT_FOUND), reportOn(generator));
    EXPECT_TRUE(exists(folder.dataFile("config.xml")));
}

}  // namespace
}  // namespace rgen_test
