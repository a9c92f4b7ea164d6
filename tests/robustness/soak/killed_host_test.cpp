// The files of a host that is killed while it writes, and that the next host can continue with
// them.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <set>
#include <string>
#include <system_error>
#include <thread>

#include "support/converter_control.h"
#include "support/process_figures.h"
#include "support/report_fixture.h"
#include "support/test_platform.h"

namespace rgen_test {
namespace {

constexpr int kills = 60;

// True when the text is the start of a text of one letter.
bool isOneLetter(const std::string& text) {
    return text.find_first_not_of(text.empty() ? 'a' : text.front()) == std::string::npos;
}

class KilledHost : public testing::Test {
protected:
    KilledHost() {
        writeFile(folder.dataFile("templates/html/test_stylesheet.xsl"),
                  textStylesheet(valueOf("v")));
        writeFile(folder.dataFile("templates/pdf/test_stylesheet.xsl"),
                  textStylesheet(valueOf("v")));
    }

    long progress() const {
        std::error_code missing;
        const auto size =
            std::filesystem::file_size(std::filesystem::u8path(folder.file("progress")), missing);
        return missing ? 0 : static_cast<long>(size);
    }

    // Starts a host that writes and kills it at some moment after it has made progress.
    void runAndKill(const std::string& kind) {
        const long start = progress();
        ChildHost host("writing_host", {kind, folder.path()});
        const long wanted = start + 1 + static_cast<long>(random() % 20);
        while (progress() < wanted && host.runs())
            std::this_thread::yield();
        ASSERT_TRUE(host.runs()) << "ended with code " << host.exitCode();
        // A moment within the next round, not its start.
        for (unsigned turn = static_cast<unsigned>(random() % 200000); turn > 0; --turn)
            spun = turn;
        host.kill();
    }

    // Runs, kills and checks many times; the check says what it found.
    template <typename Check>
    void repeat(const std::string& kind, const Check& check) {
        std::map<std::string, long> found;
        for (int round = 0; round < loopCount(kills) && !HasFailure(); ++round) {
            ASSERT_NO_FATAL_FAILURE(runAndKill(kind));
            ++found[check()];
        }
        for (const auto& [what, count] : found)
            printFigure("killed while writing (" + kind + "): " + what, count);
    }

    Report makeReport(std::uint64_t mode, const std::string& format) {
        const Generator next(folder.path());
        InputParams input;
        Result result;
        input.format(format).output(mode, folder.file("report." + format));
        input.variants().addString("v", "next");
        const RgenStatus status = rgen_generateReport(next.get(), input.get(), result.get());
        return {statusHex(status), result.bytes()};
    }

    // What is in a report file that holds text of one letter up to a size.
    std::string describeReport(const std::string& path) {
        if (!exists(path)) return "no file";
        const std::string text = readFile(path);
        EXPECT_TRUE(isOneLetter(text)) << text.substr(0, 200);
        if (text.empty()) return "empty file";
        return text.size() == 60000 ? "whole file" : "part of a file";
    }

    TempFolder folder;
    std::mt19937 random{20240301};
    volatile unsigned spun = 0;
};

TEST_F(KilledHost, LeavesAConfigurationThatIsWholeOrReported) {
    {
        const Generator preparing(folder.path());
        EXPECT_EQ(RGEN_OK, storePairs(preparing, defaultGuid(), {{"a", "b"}}));
    }
    repeat("config", [this] {
        const std::string path = folder.dataFile("config.xml");
        const std::string found = !exists(path)            ? "no file"
                                  : readFile(path).empty() ? "empty file"
                                                           : "whole file";
        const Generator next(folder.path());
        const RgenStatus status = persistentData(next, defaultGuid()).status;
        EXPECT_EQ(statusHex(found == "empty file" ? RGEN_E_OPEN_CONFIG : RGEN_OK),
                  statusHex(status));
        // An empty configuration stays until a user removes it; then the default one is written.
        removeAll(path);
        EXPECT_EQ(statusHex(RGEN_OK), statusHex(persistentData(next, defaultGuid()).status));
        return found;
    });
}

TEST_F(KilledHost, LeavesPersistentDataThatTheNextSetReplaces) {
    repeat("persist", [this] {
        const Generator next(folder.path());
        const PersistentData data = persistentData(next, defaultGuid());
        std::string letters;
        std::size_t complete = 0;
        for (const auto& [name, text] : data.pairs) {
            letters += text;
            complete += text.size() == 400 ? 1U : 0U;
        }
        EXPECT_TRUE(isOneLetter(letters));
        const std::set<std::string> documented = {
            statusHex(RGEN_OK), statusHex(RGEN_E_OPEN_PERSIST), statusHex(RGEN_E_NO_PERSIST_VALUES),
            statusHex(RGEN_E_NO_VALID_PERSIST_VALUES)};
        EXPECT_EQ(1U, documented.count(statusHex(data.status))) << statusHex(data.status);
        EXPECT_EQ(statusHex(RGEN_OK), statusHex(storePairs(next, defaultGuid(), {{"a", "b"}})));
        EXPECT_EQ((TextMap{{"a", "b"}}), persistentData(next, defaultGuid()).pairs);
        if (data.status != RGEN_OK) return statusHex(data.status);
        return std::string(complete == 60 ? "whole data" : "part of the data");
    });
}

TEST_F(KilledHost, LeavesAReportFileThatTheNextReportReplaces) {
    repeat("file", [this] {
        const std::string found = describeReport(folder.file("report.html"));
        EXPECT_EQ(reportOf(""), makeReport(RGEN_OUTPUT_FILE, "html"));
        EXPECT_EQ("next", readFile(folder.file("report.html")));
        return found;
    });
}

// Between the making of the file and the removal of its name a Linux host can be killed, too.
TEST_F(KilledHost, LeavesAtMostAnEmptyFileOfADeleteOnCloseReport) {
    repeat("handle", [this] {
        const std::string found = describeReport(folder.file("report.html"));
        EXPECT_TRUE(found == "no file" || found == "empty file") << found;
        removeAll(folder.file("report.html"));
        return found;
    });
}

TEST_F(KilledHost, LeavesNoFileOfAReportInMemory) {
    repeat("bytes", [this] {
        EXPECT_EQ((std::vector<std::string>{".rgen", "progress"}), namesIn(folder.path()));
        EXPECT_EQ(reportOf("next"), makeReport(RGEN_OUTPUT_BYTES, "html"));
        return std::string("no file");
    });
}

TEST_F(KilledHost, LeavesATemporaryFileThatTheNextConversionReplaces) {
    const ConverterControl converter(folder);
    repeat("pdf", [this] {
        const std::string found = describeReport(folder.file("report.pdf.html"));
        EXPECT_EQ(reportOf(""), makeReport(RGEN_OUTPUT_FILE, "pdf"));
        EXPECT_FALSE(exists(folder.file("report.pdf.html")));
        return found;
    });
}

TEST_F(KilledHost, LeavesADumpThatTheNextDumpReplaces) {
    repeat("dump", [this] {
        const std::string path = folder.file("dump.xml");
        const std::string text = exists(path) ? readFile(path) : "";
        const std::string found = !exists(path)                               ? "no file"
                                  : text.empty()                              ? "empty file"
                                  : text.find("</data>") == std::string::npos ? "part of a file"
                                                                              : "whole file";
        const Generator next(folder.path());
        InputParams input;
        input.variants().addString("v", "next");
        EXPECT_EQ(RGEN_OK, rgen_dumpRawInputDataToFile(next.get(), input.get(), path.c_str()));
        EXPECT_NE(std::string::npos, readFile(path).find("<property name=\"v\">next</property>"));
        return found;
    });
}

// Neither host knows of the other; each removes the configuration and has it made anew.
TEST_F(KilledHost, TwoHostsThatMakeOneConfigurationEndWithAWholeOne) {
    const Generator generator(folder.path());
    EXPECT_EQ(RGEN_OK, storePairs(generator, defaultGuid(), {{"a", "b"}}));
    const std::string whole = readFile(folder.dataFile("config.xml"));
    const std::string rounds = std::to_string(loopCount(1000));
    ChildHost one("writing_host", {"config", folder.path(), rounds});
    ChildHost two("writing_host", {"config", folder.path(), rounds});
    EXPECT_EQ(0, one.exitCode());
    EXPECT_EQ(0, two.exitCode());
    removeAll(folder.dataFile("config.xml"));
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(persistentData(generator, defaultGuid()).status));
    EXPECT_EQ(whole, readFile(folder.dataFile("config.xml")));
}

}  // namespace
}  // namespace rgen_test
