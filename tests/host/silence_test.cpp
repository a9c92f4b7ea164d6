// The library prints nothing: not for broken templates, files and values, and not when it fails.
// The one line that it may print belongs to simulated byte arrays and is tested with them.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <thread>

#include "strata_repgenlib/rgen.h"
#include "support/console_capture.h"
#include "support/host_records.h"
#include "support/status_printer.h"
#include "support/temp_folder.h"
#include "support/working_folder.h"

namespace {

using rgen_test::captureConsole;
using rgen_test::ConsoleText;
using rgen_test::Generator;
using rgen_test::InputParams;
using rgen_test::Result;
using rgen_test::TempFolder;

void expectSilent(const std::function<void()>& action) {
    const ConsoleText console = captureConsole(action);
    EXPECT_EQ("", console.out);
    EXPECT_EQ("", console.err);
}

// Texts and names that libxml2 complains about when it reads, builds or saves them.
const char* const disturbingTexts[] = {
    "&",    "a & b", "&undefined;",  "&a b;", "&#0;", "&#x110000;", "&#xD800;",
    "\xFF", "a\xC3", "\xEE\xF2\xF7", "\x01",  "<b>",  "]]>"};

const char* const disturbingFiles[] = {
    "",
    "no XML at all",
    "<config><reportTypes>",
    "<data><properties><property name='a'>&undefined;</property></properties>",
    "<data><properties><property name='a' name='b'>\xFF</property></properties></data>",
    "<?xml version='9.9' encoding='unheard-of'?><data/>",
    "<!DOCTYPE data SYSTEM 'none.dtd'><data>&e;</data>",
    "<!DOCTYPE data [<!ENTITY e SYSTEM 'none.txt'>]><data><properties><property name='a'>&e;"
    "</property></properties></data>",
    "<a:data/>"};

std::string stylesheet(const std::string& inner) {
    return "<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform'>" +
           inner + "</xsl:stylesheet>";
}

std::string matchingRoot(const std::string& inner) {
    return stylesheet("<xsl:template match='/'>" + inner + "</xsl:template>");
}

void generateSilently(const std::string& templateText, const std::string& value = "x") {
    SCOPED_TRACE(templateText);
    const TempFolder folder;
    rgen_test::writeFile(folder.dataFile("templates/html/test_stylesheet.xsl"), templateText);
    const Generator generator(folder.path());
    InputParams input;
    input.variants().addString("n", value);
    Result result;
    expectSilent([&] { rgen_generateReport(generator.get(), input.get(), result.get()); });
}

TEST(Silence, HoldsForTheWholeLifeOfAGenerator) {
    const TempFolder folder;
    expectSilent([&] {
        RgenReportGenerator* generator = rgen_newReportGenerator();
        rgen_setDataDirPath(generator, folder.path().c_str());
        const RgenGuid guid = rgen_test::defaultGuid();
        rgen_getPersistentData(generator, &guid, nullptr);
        rgen_cancel(generator, nullptr);
        rgen_getStatusCodeDescription(generator, RGEN_E_UNKNOWN);
        rgen_freeReportGenerator(generator);
    });
}

TEST(Silence, HoldsForMissingFilesAndFolders) {
    const TempFolder folder;
    const Generator generator(folder.path());
    InputParams input;
    input.variants().addInt64("n", 1);
    Result result;
    RgenCVariantSet set{};
    expectSilent([&] {
        rgen_setDataDirPath(generator.get(), folder.file("none").c_str());
        rgen_generateReport(generator.get(), input.get(), result.get());
        rgen_dumpRawInputDataToFile(generator.get(), input.get(),
                                    folder.file("none/dump.xml").c_str());
        rgen_getSimulatedRawDataFromFile(generator.get(), folder.file("none.xml").c_str(), &set);
    });
}

TEST(Silence, HoldsForADumpThatIsNamedLikeStandardOutput) {
    const TempFolder folder;
    const rgen_test::WorkingFolder current(folder.path());
    const Generator generator;
    InputParams input;
    input.variants().addInt64("n", 1);
    expectSilent([&] { rgen_dumpRawInputDataToFile(generator.get(), input.get(), "-"); });
    EXPECT_TRUE(rgen_test::exists(folder.file("-")));
}

TEST(Silence, HoldsForDisturbingTexts) {
    for (const char* text : disturbingTexts) {
        SCOPED_TRACE(text);
        const TempFolder folder;
        const Generator generator(folder.path());
        const RgenGuid guid = rgen_test::defaultGuid();
        InputParams input;
        input.variants().addString("n", text).addString(text, "x");
        expectSilent([&] {
            rgen_setPersistentDataFromCVariantSet(generator.get(), &guid, input.variants().get());
            rgen_getPersistentData(generator.get(), &guid, nullptr);
            rgen_dumpRawInputDataToFile(generator.get(), input.get(),
                                        folder.file("dump.xml").c_str());
        });
        generateSilently(matchingRoot("<xsl:value-of select='.'/>"), text);
    }
}

TEST(Silence, HoldsForDisturbingFiles) {
    for (const char* content : disturbingFiles) {
        SCOPED_TRACE(content);
        const TempFolder folder;
        const Generator generator(folder.path());
        const RgenGuid guid = rgen_test::defaultGuid();
        rgen_test::writeFile(folder.dataFile("persist_data.xml"), content);
        RgenCVariantSet set{};
        expectSilent([&] {
            rgen_getPersistentData(generator.get(), &guid, nullptr);
            rgen_getSimulatedRawDataFromFile(generator.get(),
                                             folder.dataFile("persist_data.xml").c_str(), &set);
        });
        rgen_test::writeFile(folder.dataFile("config.xml"), content);
        expectSilent([&] { rgen_getPersistentData(generator.get(), &guid, nullptr); });
    }
}

TEST(Silence, HoldsForDisturbingTemplates) {
    for (const char* content : disturbingFiles) {
        generateSilently(content);
    }
    for (const char* inner :
         {"<xsl:message>a message</xsl:message>",
          "<xsl:message terminate='yes'>the end</xsl:message>", "<xsl:foo/>",
          "<xsl:value-of select=')('/>", "<xsl:value-of select='unknown()'/>",
          "<xsl:value-of select='$unknown'/>", "<xsl:call-template name='none'/>",
          "<xsl:copy-of select=\"document('none.xml')\"/>",
          "<xsl:copy-of select=\"document('http://127.0.0.1:9/x')\"/>",
          "<xsl:value-of select='format-number(1, \"#,#,#.x.\")'/>", "<xsl:element name='1 2'/>",
          "<xsl:sort/>", "&undefined;", ""}) {
        generateSilently(matchingRoot(inner));
    }
    for (const char* inner : {"<xsl:include href='none.xsl'/>", "<xsl:import href='none.xsl'/>",
                              "<xsl:output encoding='unheard-of'/>", "<xsl:template/>",
                              "<xsl:variable name='a' select='$a'/>"
                              "<xsl:template match='/'><xsl:value-of select='$a'/></xsl:template>",
                              "<xsl:template match='/'><xsl:apply-templates select='/'/>"
                              "</xsl:template>"}) {
        generateSilently(stylesheet(inner));
    }
}

TEST(Silence, HoldsOnAThreadThatDidNotCreateTheGenerator) {
    const TempFolder folder;
    const Generator generator(folder.path());
    const RgenGuid guid = rgen_test::defaultGuid();
    rgen_test::writeFile(folder.dataFile("persist_data.xml"), "<data>&undefined;");
    rgen_test::writeFile(folder.dataFile("templates/html/test_stylesheet.xsl"),
                         matchingRoot("<xsl:message>x</xsl:message><xsl:value-of select='$y'/>"));
    InputParams input;
    input.variants().addString("n", "&undefined; \xFF");
    Result result;
    expectSilent([&] {
        std::thread([&] {
            rgen_getPersistentData(generator.get(), &guid, nullptr);
            rgen_generateReport(generator.get(), input.get(), result.get());
        }).join();
    });
}

TEST(Silence, HoldsWhenACallRaises) {
    const TempFolder folder;
    const Generator generator;
    bool threw = false;
    expectSilent([&] {
        try {
            rgen_setDataDirPath(generator.get(), folder.file("\xFF").c_str());
        } catch (const std::range_error&) {
            threw = true;
        }
    });
    EXPECT_TRUE(threw);
}

}  // namespace
