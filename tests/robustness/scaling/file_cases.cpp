// XML files of all kinds, read through the exports: simulated input, persistent data and
// configuration.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <memory>

#include "robustness/scaling/scaling_case.h"
#include "support/host_records.h"
#include "support/status_printer.h"
#include "support/temp_folder.h"

namespace rgen_test {
namespace {

using TextMaker = std::function<std::string(std::size_t count)>;

struct FileText {
    std::string name;
    TextMaker make;
};

// "#" is replaced by the number of each copy.
std::string numberedTimes(const std::string& part, std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        for (const char character : part) {
            if (character == '#') {
                text += std::to_string(i);
            } else {
                text += character;
            }
        }
    }
    return text;
}

TextMaker between(const std::string& before, const std::string& part, const std::string& after) {
    return [=](std::size_t count) { return before + numberedTimes(part, count) + after; };
}

const std::string dataStart =
    "<data><properties><property name='always' type='string' "
    "hint='Generic'>x</property>";
const std::string dataEnd = "</properties></data>";
const std::string dataAttributes = " type='string' hint='Generic'";

const std::string blanks(100, ' ');

// Files of the shape that simulated input and persistent data share.
std::vector<FileText> dataFiles() {
    const auto inside = [](const std::string& part) { return between(dataStart, part, dataEnd); };
    const std::string open = dataStart + "<property name='n'" + dataAttributes;
    const std::string close = "</property>" + dataEnd;
    return {
        {"many properties", inside("<property name='n#'" + dataAttributes + ">x</property>")},
        {"properties of one name", inside("<property name='n'" + dataAttributes + ">x</property>")},
        {"other elements", inside("<other name='n#'>x</other>\n")},
        {"properties without attributes", inside("<property>x</property>")},
        {"many attributes", between(open, " a#='x'", ">x" + close)},
        {"one attribute many times", between(open, " a='x'", ">x" + close)},
        {"many name spaces", between(open, " xmlns:a#='x'", ">x" + close)},
        {"blanks in a tag", between(open, blanks, ">x" + close)},
        {"blanks in a text", between(open + ">", blanks, "x" + close)},
        {"blanks in a name",
         between(dataStart + "<property name='", blanks, "n'" + dataAttributes + ">x" + close)},
        {"blanks in a hint", between(dataStart + "<property name='n' type='string' hint='", blanks,
                                     "Generic'>x" + close)},
        {"references in a text", between(open + ">", "&amp;&#65;", close)},
        {"unknown references in a text", between(open + ">", "&a#;", close)},
        {"ampersands in a text", between(open + ">", "& ", close)},
        {"elements in a text", between(open + ">", "<b/>y", close)},
        {"sections in a text", between(open + ">", "<![CDATA[y]]>", close)},
        {"comments", between(open + ">", "<!-- y -->", "x" + close)},
        {"hyphens in a comment", between(open + "><!--", repeatedTimes("- ", 50), "-->x" + close)},
        {"instructions", between(open + ">", "<?y z?>", "x" + close)},
        {"open elements", between(dataStart, "<open>", "")},
        {"open tags", between(dataStart, "<", "")},
        {"ends of elements", inside("</other>")},
        {"declared entities",
         between("<!DOCTYPE data [", "<!ENTITY e# 'x'>", "]>" + open + ">&e0;" + close)},
        {"declared attributes",
         between("<!DOCTYPE data [", "<!ATTLIST other a# CDATA 'x'>", "]>" + open + ">x" + close)},
        {"references to an entity",
         between("<!DOCTYPE data [<!ENTITY e 'x'>]>" + open + ">", "&e;", close)},
        {"bytes of a dump", between(dataStart + "<property name='n' type='byte_array' hint='Dump'>",
                                    repeatedTimes("0x4a ,\n", 16), "0x00" + close)},
        {"digits of a number", between(dataStart + "<property name='n' type='int64' hint='Time'>",
                                       std::string(100, '7'), "x" + close)},
    };
}

std::function<void()> readingSimulatedInput(const std::string& text) {
    const auto folder = std::make_shared<TempFolder>();
    const auto generator = std::make_shared<Generator>();
    writeFile(folder->file("input.xml"), text);
    return [folder, generator] {
        RgenCVariantSet values{};
        EXPECT_EQ(1, rgen_getSimulatedRawDataFromFile(generator->get(),
                                                      folder->file("input.xml").c_str(), &values));
        rgen_freeRgenCVariantSet(&values);
    };
}

std::function<void()> readingDataFolder(const std::string& file, const std::string& text) {
    const auto folder = std::make_shared<TempFolder>();
    const auto generator = std::make_shared<Generator>(folder->path());
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(storePairs(*generator, defaultGuid(), {{"a", "b"}})));
    writeFile(folder->dataFile(file), text);
    return [folder, generator] {
        const RgenGuid guid = defaultGuid();
        RgenCAnsiStringPairSet pairs{};
        EXPECT_EQ(statusHex(RGEN_OK),
                  statusHex(rgen_getPersistentData(generator->get(), &guid, &pairs)));
        rgen_freeRgenCAnsiStringSet(&pairs);
    };
}

// Configurations that name the default report type at their end.
std::vector<FileText> configurations() {
    const std::string start = "<config><reportTypes>";
    const std::string files =
        "<persistDataFile>persist_data.xml</persistDataFile>"
        "<reportTypeFile>test_stylesheet.xsl</reportTypeFile></type>";
    const std::string end =
        std::string("<type guid='") + defaultGuidText + "'>" + files + "</reportTypes></config>";
    const std::string foreign = "<type guid='12345678-0000-0000-0000-000000000000'>" + files;
    return {
        {"many report types", between(start, foreign, end)},
        {"the same report type",
         between(start, std::string("<type guid='") + defaultGuidText + "'>" + files, end)},
        {"report types without files", between(start,
                                               "<type guid='12345678-0000-0000-0000-"
                                               "000000000000'/>",
                                               end)},
        {"digits in a GUID",
         between(start + "<type guid='", repeatedTimes("deadbabe-", 10), "'>" + files + end)},
        {"blanks in a GUID", between(start + "<type guid='", blanks, "'>" + files + end)},
        {"children of a type",
         between(start + "<type guid='12345678-0000-0000-0000-000000000000'>",
                 "<other/><persistDataFile>x</persistDataFile>", files + end)},
    };
}

}  // namespace

std::vector<ScalingCase> fileCases() {
    std::vector<ScalingCase> cases;
    for (const FileText& file : dataFiles()) {
        cases.push_back({"simulated input: " + file.name, usualEntries, [file](std::size_t count) {
                             return readingSimulatedInput(file.make(count));
                         }});
        cases.push_back(
            {"persistent data file: " + file.name, usualEntries, [file](std::size_t count) {
                 return readingDataFolder("persist_data.xml", file.make(count));
             }});
    }
    for (const FileText& file : configurations()) {
        cases.push_back({"configuration: " + file.name, usualEntries, [file](std::size_t count) {
                             return readingDataFolder("config.xml", file.make(count));
                         }});
    }
    return cases;
}

}  // namespace rgen_test
