// Files that another program holds open or that are read-only, and folders in the place of files,
// where no other suite looks: templates, temporary files, simulated input and attributes.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <functional>
#include <string>

#include "robustness/faults/fault_scenario.h"
#include "support/converter_control.h"
#include "support/status_printer.h"

namespace rgen_test {
namespace {

constexpr const char* doneTemplate =
    "<xsl:stylesheet version=\"1.0\" xmlns:xsl=\"http://www.w3.org/1999/XSL/Transform\">"
    "<xsl:output method=\"text\"/><xsl:template match=\"/\">done</xsl:template></xsl:stylesheet>";

std::wstring wide(const std::string& path) {
    return std::filesystem::u8path(path).wstring();
}

// Holds a file open so that no other handle can open or remove it.
class HeldHandle {
public:
    explicit HeldHandle(const std::string& path)
        : handle_(CreateFileW(wide(path).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                              FILE_ATTRIBUTE_NORMAL, nullptr)) {
        EXPECT_NE(INVALID_HANDLE_VALUE, handle_);
    }
    ~HeldHandle() { CloseHandle(handle_); }
    HeldHandle(const HeldHandle&) = delete;
    HeldHandle& operator=(const HeldHandle&) = delete;

private:
    HANDLE handle_;
};

// Makes a file read-only for one scope.
class ReadOnlyFile {
public:
    explicit ReadOnlyFile(const std::string& path) : path_(wide(path)) {
        EXPECT_NE(0, SetFileAttributesW(path_.c_str(), FILE_ATTRIBUTE_READONLY));
    }
    ~ReadOnlyFile() { SetFileAttributesW(path_.c_str(), FILE_ATTRIBUTE_NORMAL); }
    ReadOnlyFile(const ReadOnlyFile&) = delete;
    ReadOnlyFile& operator=(const ReadOnlyFile&) = delete;

private:
    std::wstring path_;
};

class UnusableFile : public testing::Test {
protected:
    UnusableFile() {
        for (const char* format : {"html", "pdf"})
            files.putTemplate(doneTemplate, format);
        files.putPersistentData();
    }

    std::string generate(const std::string& format, std::uint64_t mode) {
        FaultSubject subject(files);
        subject.input.variants().addString("v", "value");
        subject.input.format(format).output(mode, output);
        const RgenStatus status =
            rgen_generateReport(subject.generator(), subject.input.get(), &subject.result);
        if (subject.result.type == RGEN_TYPE_HANDLE) takeHandle(subject);
        EXPECT_TRUE(subject.works());
        return statusHex(status);
    }

    std::string store() {
        FaultSubject subject(files);
        subject.input.pairs().add("a", "1");
        return statusHex(rgen_setPersistentDataFromAnsiStringPairSet(
            subject.generator(), &subject.guid, &subject.input.get()->pairs));
    }

    std::string dump(const std::string& path) {
        FaultSubject subject(files);
        subject.input.variants().addString("v", "value");
        return statusHex(
            rgen_dumpRawInputDataToFile(subject.generator(), subject.input.get(), path.c_str()));
    }

    int simulate(const std::string& path) {
        FaultSubject subject(files);
        return rgen_getSimulatedRawDataFromFile(subject.generator(), path.c_str(), &subject.values);
    }

    FaultFolder files;
    const std::string output = files.file("report");
    const std::string storedPath = files.file("main/.rgen/persist_data.xml");
    const std::string templatePath = files.file("main/.rgen/templates/html/test_stylesheet.xsl");
};

TEST_F(UnusableFile, AHeldTemplateCannotBeRead) {
    {
        const HeldHandle held(templatePath);
        EXPECT_EQ(statusHex(RGEN_E_XSLT_PARSE), generate("html", RGEN_OUTPUT_FILE));
        EXPECT_FALSE(exists(output));
    }
    EXPECT_EQ(statusHex(RGEN_OK), generate("html", RGEN_OUTPUT_FILE));
}

TEST_F(UnusableFile, AHeldTemporaryFileStopsTheConversion) {
    const ConverterControl converter(files.folder());
    writeFile(output + ".html", "old");
    {
        const HeldHandle held(output + ".html");
        EXPECT_EQ(statusHex(RGEN_E_CREATE_OUTPUT), generate("pdf", RGEN_OUTPUT_FILE));
    }
    EXPECT_EQ("old", readFile(output + ".html"));
    EXPECT_EQ(statusHex(RGEN_OK), generate("pdf", RGEN_OUTPUT_FILE));
    EXPECT_FALSE(exists(output + ".html"));
}

TEST_F(UnusableFile, AHeldSimulationFileGivesNothing) {
    const std::string path = files.file("in.xml");
    writeFile(path,
              "<data><properties><property name=\"n\" type=\"int64\" hint=\"Size\">1"
              "</property></properties></data>");
    {
        const HeldHandle held(path);
        EXPECT_EQ(0, simulate(path));
    }
    EXPECT_EQ(1, simulate(path));
}

TEST_F(UnusableFile, HeldPersistentDataContributesNothingToAReport) {
    const HeldHandle held(storedPath);
    EXPECT_EQ(statusHex(RGEN_OK), generate("html", RGEN_OUTPUT_BYTES));
}

// Whether the attribute counts is up to the system (under Wine the user's rights decide): either
// the documented status comes and the file stays as it was, or the operation does its work.
TEST_F(UnusableFile, AReadOnlyFileIsKeptWithItsStatusOrReplaced) {
    struct Row {
        std::string path;
        RgenStatus refused;
        std::function<std::string()> operation;
    };
    const ConverterControl converter(files.folder());
    const std::string dumpPath = files.file("dump");
    const Row rows[] = {
        {output, RGEN_E_OVERWRITE_OUTPUT, [this] { return generate("html", RGEN_OUTPUT_FILE); }},
        {output, RGEN_E_CREATE_OUTPUT,
         [this] { return generate("html", RGEN_OUTPUT_DELETE_ON_CLOSE); }},
        {output + ".html", RGEN_E_CREATE_OUTPUT,
         [this] { return generate("pdf", RGEN_OUTPUT_FILE); }},
        {storedPath, RGEN_E_DELETE_PERSIST, [this] { return store(); }},
        {dumpPath, RGEN_E_DELETE_DUMP, [&] { return dump(dumpPath); }}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.path + statusHex(row.refused));
        writeFile(row.path, "old");
        std::string status;
        {
            const ReadOnlyFile readOnly(row.path);
            status = row.operation();
        }
        const bool isRefused = status == statusHex(row.refused);
        EXPECT_TRUE(isRefused || status == statusHex(RGEN_OK)) << status;
        EXPECT_EQ(isRefused, exists(row.path) && readFile(row.path) == "old");
        removeAll(row.path);
    }
}

TEST_F(UnusableFile, AFolderInThePlaceOfAFile) {
    createFolder(output + "/inside");
    EXPECT_EQ(statusHex(RGEN_E_OVERWRITE_OUTPUT), generate("html", RGEN_OUTPUT_FILE));
    EXPECT_EQ(statusHex(RGEN_E_CREATE_OUTPUT), generate("html", RGEN_OUTPUT_DELETE_ON_CLOSE));
    EXPECT_EQ(statusHex(RGEN_E_DELETE_DUMP), dump(output));
    EXPECT_EQ(0, simulate(output));
    removeAll(output);
    createFolder(output + ".html");
    EXPECT_EQ(statusHex(RGEN_E_CREATE_OUTPUT), generate("pdf", RGEN_OUTPUT_FILE));
    removeAll(storedPath);
    createFolder(storedPath + "/inside");
    EXPECT_EQ(statusHex(RGEN_E_DELETE_PERSIST), store());
    removeAll(templatePath);
    createFolder(templatePath);
    EXPECT_EQ(statusHex(RGEN_E_XSLT_PARSE), generate("html", RGEN_OUTPUT_BYTES));
}

}  // namespace
}  // namespace rgen_test
