// XML files at exactly the given path, and saves that fail.
//
// SPDX-License-Identifier: MIT
#include "store/xml/file.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "store/xml/parser_context.h"
#include "store/xml/property_document.h"
#include "support/console_capture.h"
#include "support/fault_injection.h"
#include "support/temp_folder.h"
#include "support/working_folder.h"

namespace rgen_test {
namespace {

const char* const savedBytes =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<data>\n  <properties>\n    <property name=\"a\">\xD0\x9F</property>\n"
    "  </properties>\n</data>\n";

class XmlFileTest : public ::testing::Test {
protected:
    const rgen::XmlSilence silence;
    const TempFolder folder;
    const rgen::XmlPtr<xmlDoc> document = rgen::buildPropertyDocument({{"a", "\xD0\x9F"}});
};

TEST_F(XmlFileTest, SavedFileIsIndentedUtf8WithADeclaration) {
    const std::string path = folder.file("a.xml");
    EXPECT_TRUE(rgen::saveXmlFile(path, document.get()));
    EXPECT_EQ(savedBytes, readFile(path));
    EXPECT_NE(nullptr, rgen::readXmlFile(path));
}

TEST_F(XmlFileTest, EveryNameIsTakenLiterally) {
    const WorkingFolder working(folder.path());
    for (const std::string name : {"-", "a%20b.xml", "%2e%2e", "+x&y=z;#1.xml", "a b.xml",
                                   "\xD0\xBE\xD1\x82.xml", "..a", "http-x", "%", "x%ZZ"}) {
        SCOPED_TRACE(name);
        EXPECT_TRUE(rgen::saveXmlFile(name, document.get()));
        EXPECT_EQ(std::vector<std::string>{name}, namesIn(folder.path()));
        EXPECT_EQ(savedBytes, readFile(folder.file(name)));
        EXPECT_NE(nullptr, rgen::readXmlFile(name));
        EXPECT_NE(nullptr, rgen::readXmlFile(folder.file(name)));
        removeAll(folder.file(name));
    }
}

TEST_F(XmlFileTest, AbsolutePathsAreTakenLiterallyToo) {
    for (const std::string name : {"-", "a%20b.xml", "a#b&c=d.xml"}) {
        const std::string path = folder.file(name);
        EXPECT_TRUE(rgen::saveXmlFile(path, document.get())) << name;
        EXPECT_EQ(std::vector<std::string>{name}, namesIn(folder.path()));
        EXPECT_NE(nullptr, rgen::readXmlFile(path)) << name;
        removeAll(path);
    }
}

TEST_F(XmlFileTest, EscapedNameIsNotReadAsTheUnescapedOne) {
    writeFile(folder.file("a b.xml"), "<a/>");
    EXPECT_EQ(nullptr, rgen::readXmlFile(folder.file("a%20b.xml")));
    EXPECT_NE(nullptr, rgen::readXmlFile(folder.file("a b.xml")));
}

TEST_F(XmlFileTest, DashIsNoStandardStream) {
    const WorkingFolder working(folder.path());
    const ConsoleText console = captureConsole([this] { rgen::saveXmlFile("-", document.get()); });
    EXPECT_EQ("", console.out + console.err);
    removeAll(folder.file("-"));
    EXPECT_EQ(nullptr, rgen::readXmlFile("-"));
}

TEST_F(XmlFileTest, DamagedFileIsReadAsFarAsItGoes) {
    writeFile(folder.file("a.xml"), "<data><properties><property name='a'>tex");
    EXPECT_NE(nullptr, rgen::readXmlFile(folder.file("a.xml")));
}

TEST_F(XmlFileTest, WhatCannotBeReadGivesNull) {
    writeFile(folder.file("empty.xml"), "");
    EXPECT_EQ(nullptr, rgen::readXmlFile(folder.file("empty.xml")));
    EXPECT_EQ(nullptr, rgen::readXmlFile(folder.file("missing.xml")));
    EXPECT_EQ(nullptr, rgen::readXmlFile(folder.path()));
    EXPECT_EQ(nullptr, rgen::readXmlFile(""));
    EXPECT_EQ(nullptr, rgen::readXmlFile(folder.file("no/such/folder.xml")));
}

TEST_F(XmlFileTest, SaveThatCannotOpenTheFileFails) {
    EXPECT_FALSE(rgen::saveXmlFile(folder.file("no/a.xml"), document.get()));
    EXPECT_FALSE(rgen::saveXmlFile(folder.path(), document.get()));
    EXPECT_FALSE(rgen::saveXmlFile("", document.get()));
    EXPECT_TRUE(isFolder(folder.path()));
}

TEST_F(XmlFileTest, SaveThatFailsHalfWayLeavesNoFile) {
    for (const Call call : {Call::NewOutputBuffer, Call::SaveXmlDocument}) {
        const FailingCall failure(call);
        EXPECT_FALSE(rgen::saveXmlFile(folder.file("a.xml"), document.get()));
        EXPECT_TRUE(failure.reached());
        EXPECT_TRUE(namesIn(folder.path()).empty());
    }
}

TEST_F(XmlFileTest, NullDocumentIsAFailureThatTouchesNothing) {
    writeFile(folder.file("a.xml"), "before");
    EXPECT_FALSE(rgen::saveXmlFile(folder.file("a.xml"), nullptr));
    EXPECT_EQ("before", readFile(folder.file("a.xml")));
}

TEST_F(XmlFileTest, InvalidUtf8Raises) {
    EXPECT_THROW(rgen::readXmlFile(folder.file("a\xC3")), std::range_error);
    EXPECT_THROW(rgen::saveXmlFile(folder.file("a\xC3"), document.get()), std::range_error);
    EXPECT_TRUE(namesIn(folder.path()).empty());
}

}  // namespace
}  // namespace rgen_test
