// Damaged and hostile XML in the three files that the library reads: the configuration, persistent
// data and simulated input. Each row is put into all three.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>

#include "support/file_readers.h"
#include "support/host_records.h"
#include "support/status_printer.h"
#include "support/temp_folder.h"

namespace rgen_test {
namespace {

// The same characters as UTF-16 with a byte order mark.
std::string utf16(const std::string& ascii) {
    std::string wide = "\xFF\xFE";
    for (const char character : ascii) {
        wide += character;
        wide += '\0';
    }
    return wide;
}

// ---- Whole files ----------------------------------------------------------------------------

TEST(HostileFile, AnEmptyOneIsNoDocument) {
    for (const FileReader& reader : fileReaders()) {
        EXPECT_EQ(failedRead(reader.noDocument), reader.read("")) << reader.name;
    }
}

TEST(HostileFile, OthersThanXmlOfThatShapeHaveNoItems) {
    std::string garbage;
    for (int round = 0; round < 10; ++round) {
        for (int byte = 1; byte < 256; ++byte) {
            garbage += static_cast<char>(byte);
        }
    }
    for (const FileReader& reader : fileReaders()) {
        SCOPED_TRACE(reader.name);
        EXPECT_EQ(failedRead(reader.noItems), reader.read(garbage));
        EXPECT_EQ(failedRead(reader.noItems), reader.read(utf16(reader.document("text"))));
        std::string inNamespace = reader.document("text");
        inNamespace.insert(1 + reader.root.size(), " xmlns='urn:x'");
        EXPECT_EQ(failedRead(reader.noItems), reader.read(inNamespace));
        EXPECT_EQ(failedRead(reader.noItems),
                  reader.read("<x>" + reader.document("text") + "</x>"));
    }
}

TEST(HostileFile, ACutOneIsReadUpToTheCut) {
    for (const FileReader& reader : fileReaders()) {
        EXPECT_EQ(readText("te"), reader.read("<" + reader.root + ">" + reader.itemStart + "te"))
            << reader.name;
    }
}

// ---- Entities -------------------------------------------------------------------------------

TEST(HostileEntities, BombsInATextLeaveTheItemWithoutText) {
    for (const FileReader& reader : fileReaders()) {
        for (const int levels : {9, 12, 20}) {
            EXPECT_EQ(failedRead(reader.noValidItems),
                      reader.read(reader.document("&e" + std::to_string(levels) + ";",
                                                  laughs(reader.root, levels))))
                << reader.name << ", " << levels;
        }
    }
}

TEST(HostileEntities, BombsInAnAttributeTakeTheElement) {
    for (const FileReader& reader : fileReaders()) {
        std::string content = reader.document("text", laughs(reader.root, 12));
        const std::size_t quote = content.find('\'', content.find("<", content.find("]>")));
        content.insert(quote + 1, "&e12;");
        EXPECT_EQ(failedRead(reader.noItems), reader.read(content)) << reader.name;
    }
}

TEST(HostileEntities, OnesThatReferToThemselvesEndTheText) {
    for (const FileReader& reader : fileReaders()) {
        EXPECT_EQ(readText("pre-"), reader.read(reader.document(
                                        "pre-&a;", "<!DOCTYPE " + reader.root +
                                                       " [<!ENTITY a '&b;'><!ENTITY b '&a;'>]>")))
            << reader.name;
    }
}

TEST(HostileEntities, InternalOnesAreSubstituted) {
    for (const FileReader& reader : fileReaders()) {
        EXPECT_EQ(readText("pre-ha-post"),
                  reader.read(reader.document("pre-&e0;-post", laughs(reader.root, 0))))
            << reader.name;
    }
}

TEST(HostileEntities, ExternalOnesAreNotOpened) {
    const TempFolder folder;
    writeFile(folder.file("secret.txt"), "secret");
    writeFile(folder.file("secret.dtd"), "<!ENTITY e 'secret'>");
    const std::string text = folder.file("secret.txt");
    const std::string types = folder.file("secret.dtd");
    for (const FileReader& reader : fileReaders()) {
        const std::string doctype = "<!DOCTYPE " + reader.root;
        for (const std::string& prolog :
             {doctype + " [<!ENTITY e SYSTEM '" + text + "'>]>",
              doctype + " [<!ENTITY e SYSTEM 'file://" + text + "'>]>",
              doctype + " [<!ENTITY e SYSTEM 'http://127.0.0.1:9/x'>]>",
              doctype + " SYSTEM '" + types + "'>",
              doctype + " PUBLIC '-//X//Y//EN' '" + types + "'>",
              doctype + " [<!ENTITY % p SYSTEM '" + types + "'> %p;]>"}) {
            EXPECT_EQ(readText("pre--post"), reader.read(reader.document("pre-&e;-post", prolog)))
                << reader.name << ": " << prolog;
        }
    }
}

TEST(HostileEntities, InclusionsAreIgnored) {
    const TempFolder folder;
    writeFile(folder.file("secret.xml"), "<s>secret</s>");
    for (const FileReader& reader : fileReaders()) {
        EXPECT_EQ(readText("pre-post"),
                  reader.read(reader.document(
                      "pre-<xi:include xmlns:xi='http://www.w3.org/2001/XInclude' href='" +
                          folder.file("secret.xml") + "'/>post",
                      "<?oasis-xml-catalog catalog='" + folder.file("secret.xml") + "'?>")))
            << reader.name;
    }
}

// ---- Characters -----------------------------------------------------------------------------

TEST(HostileCharacters, AreDroppedOrReplaced) {
    const struct {
        const char* label;
        std::string given;
        std::string read;
    } rows[] = {{"zero byte", std::string("a\0b", 3), "ab"},
                {"control character",
                 "a\x01"
                 "b",
                 "ab"},
                {"byte that is no UTF-8",
                 "a\xFF"
                 "b",
                 "a"
                 "\xEF\xBF\xBD"
                 "b"},
                {"CDATA and comments", "a<![CDATA[b]]><!-- no -->c", "abc"},
                {"replacement character", "\xEF\xBF\xBD", "\xEF\xBF\xBD"}};
    for (const FileReader& reader : fileReaders()) {
        for (const auto& row : rows) {
            EXPECT_EQ(readText(row.read), reader.read(reader.document(row.given)))
                << reader.name << ", " << row.label;
        }
    }
}

TEST(HostileCharacters, ADeclaredEncodingDoesNotCount) {
    const std::string declaration = "<?xml version='1.0' encoding='windows-1251'?>";
    for (const FileReader& reader : fileReaders()) {
        EXPECT_EQ(readText("\xD0\xBE\xD1\x82"),
                  reader.read(reader.document("\xD0\xBE\xD1\x82", declaration)))
            << reader.name;
        EXPECT_EQ(readText("\xEF\xBF\xBD"
                           "\xEF\xBF\xBD"),
                  reader.read(reader.document("\xEE\xF2", declaration)))
            << reader.name;
    }
}

}  // namespace
}  // namespace rgen_test
