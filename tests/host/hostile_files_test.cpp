// Damaged and hostile XML in the three files that the library reads: the configuration, persistent
// data and simulated input. Each row is put into all three.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "strata_repgenlib/rgen.h"
#include "support/host_records.h"
#include "support/status_printer.h"
#include "support/temp_folder.h"

namespace {

using rgen_test::Generator;
using rgen_test::statusHex;
using rgen_test::TempFolder;

// What a reader made of a file: its status, or the one text that it read.
struct Outcome {
    std::string status;
    std::string text;
};

bool operator==(const Outcome& left, const Outcome& right) {
    return left.status == right.status && left.text == right.text;
}

std::ostream& operator<<(std::ostream& stream, const Outcome& outcome) {
    return stream << outcome.status << " \"" << outcome.text << "\"";
}

Outcome readText(const std::string& text) {
    return {statusHex(RGEN_OK), text};
}
Outcome failure(RgenStatus status) {
    return {statusHex(status), ""};
}

// The simulated input reader only says that it read nothing.
constexpr RgenStatus nothingRead = -1;

// One of the three files: its root, the item that carries one text, the statuses of its failures.
struct Reader {
    const char* name;
    std::string root;
    std::string itemStart;
    std::string itemEnd;
    std::string end;
    RgenStatus noDocument;
    RgenStatus noItems;
    RgenStatus noValidItems;
    Outcome (*read)(const std::string& content);

    std::string document(const std::string& text, const std::string& prolog = "") const {
        return prolog + "<" + root + ">" + itemStart + text + itemEnd + end;
    }
};

Outcome readConfiguration(const std::string& content) {
    const TempFolder folder;
    rgen_test::writeFile(folder.dataFile("config.xml"), content);
    const Generator generator(folder.path());
    const RgenStatus status =
        rgen_test::storePairs(generator, rgen_test::defaultGuid(), {{"a", "b"}});
    std::string created;
    for (const std::string& name : rgen_test::namesIn(folder.dataDir())) {
        created = name == "config.xml" ? created : name;
    }
    return {statusHex(status), created};
}

Outcome readPersistentData(const std::string& content) {
    const TempFolder folder;
    rgen_test::writeFile(folder.dataFile("persist_data.xml"), content);
    const Generator generator(folder.path());
    const rgen_test::PersistentData data =
        rgen_test::persistentData(generator, rgen_test::defaultGuid());
    return {statusHex(data.status), data.pairs.count("n") == 0 ? "" : data.pairs.at("n")};
}

Outcome readSimulation(const std::string& content) {
    const TempFolder folder;
    rgen_test::writeFile(folder.file("simulation.xml"), content);
    const Generator generator;
    const rgen_test::SimulatedData data =
        rgen_test::simulatedData(generator, folder.file("simulation.xml"));
    return {statusHex(data.result == 1 ? RGEN_OK : nothingRead),
            data.values.count("n") == 0 ? "" : data.values.at("n").text};
}

const Reader readers[] = {
    {"configuration", "config",
     "<reportTypes><type guid='deadbabe-0000-0000-0000-000000000000'>"
     "<reportTypeFile>t.xsl</reportTypeFile><persistDataFile>",
     "</persistDataFile></type></reportTypes>", "</config>", RGEN_E_OPEN_CONFIG, RGEN_E_NO_TYPE_MAP,
     RGEN_E_NO_VALID_TYPE_MAP, readConfiguration},
    {"persistent data", "data", "<properties><property name='n'>", "</property></properties>",
     "</data>", RGEN_E_OPEN_PERSIST, RGEN_E_NO_PERSIST_VALUES, RGEN_E_NO_VALID_PERSIST_VALUES,
     readPersistentData},
    {"simulated input", "data", "<properties><property name='n' type='string' hint='Generic'>",
     "</property></properties>", "</data>", nothingRead, nothingRead, nothingRead, readSimulation}};

std::string repeated(const std::string& text, int count) {
    std::string result;
    result.reserve(text.size() * static_cast<std::size_t>(count));
    for (int index = 0; index < count; ++index) {
        result += text;
    }
    return result;
}

// Entities e0 to e<levels>, each ten times the one before.
std::string laughs(const std::string& root, int levels) {
    std::string type = "<!DOCTYPE " + root + " [<!ENTITY e0 'ha'>";
    for (int level = 1; level <= levels; ++level) {
        type += "<!ENTITY e" + std::to_string(level) + " '" +
                repeated("&e" + std::to_string(level - 1) + ";", 10) + "'>";
    }
    return type + "]>";
}

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
    for (const Reader& reader : readers) {
        EXPECT_EQ(failure(reader.noDocument), reader.read("")) << reader.name;
    }
}

TEST(HostileFile, OthersThanXmlOfThatShapeHaveNoItems) {
    std::string garbage;
    for (int round = 0; round < 10; ++round) {
        for (int byte = 1; byte < 256; ++byte) {
            garbage += static_cast<char>(byte);
        }
    }
    for (const Reader& reader : readers) {
        SCOPED_TRACE(reader.name);
        EXPECT_EQ(failure(reader.noItems), reader.read(garbage));
        EXPECT_EQ(failure(reader.noItems), reader.read(utf16(reader.document("text"))));
        std::string inNamespace = reader.document("text");
        inNamespace.insert(1 + reader.root.size(), " xmlns='urn:x'");
        EXPECT_EQ(failure(reader.noItems), reader.read(inNamespace));
        EXPECT_EQ(failure(reader.noItems), reader.read("<x>" + reader.document("text") + "</x>"));
    }
}

TEST(HostileFile, ACutOneIsReadUpToTheCut) {
    for (const Reader& reader : readers) {
        EXPECT_EQ(readText("te"), reader.read("<" + reader.root + ">" + reader.itemStart + "te"))
            << reader.name;
    }
}

// ---- Entities -------------------------------------------------------------------------------

TEST(HostileEntities, BombsInATextLeaveTheItemWithoutText) {
    for (const Reader& reader : readers) {
        for (const int levels : {9, 12, 20}) {
            EXPECT_EQ(failure(reader.noValidItems),
                      reader.read(reader.document("&e" + std::to_string(levels) + ";",
                                                  laughs(reader.root, levels))))
                << reader.name << ", " << levels;
        }
    }
}

TEST(HostileEntities, BombsInAnAttributeTakeTheElement) {
    for (const Reader& reader : readers) {
        std::string content = reader.document("text", laughs(reader.root, 12));
        const std::size_t quote = content.find('\'', content.find("<", content.find("]>")));
        content.insert(quote + 1, "&e12;");
        EXPECT_EQ(failure(reader.noItems), reader.read(content)) << reader.name;
    }
}

TEST(HostileEntities, OnesThatReferToThemselvesEndTheText) {
    for (const Reader& reader : readers) {
        EXPECT_EQ(readText("pre-"), reader.read(reader.document(
                                        "pre-&a;", "<!DOCTYPE " + reader.root +
                                                       " [<!ENTITY a '&b;'><!ENTITY b '&a;'>]>")))
            << reader.name;
    }
}

TEST(HostileEntities, InternalOnesAreSubstituted) {
    for (const Reader& reader : readers) {
        EXPECT_EQ(readText("pre-ha-post"),
                  reader.read(reader.document("pre-&e0;-post", laughs(reader.root, 0))))
            << reader.name;
    }
}

TEST(HostileEntities, ExternalOnesAreNotOpened) {
    const TempFolder folder;
    rgen_test::writeFile(folder.file("secret.txt"), "secret");
    rgen_test::writeFile(folder.file("secret.dtd"), "<!ENTITY e 'secret'>");
    const std::string text = folder.file("secret.txt");
    const std::string types = folder.file("secret.dtd");
    for (const Reader& reader : readers) {
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
    rgen_test::writeFile(folder.file("secret.xml"), "<s>secret</s>");
    for (const Reader& reader : readers) {
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
    for (const Reader& reader : readers) {
        for (const auto& row : rows) {
            EXPECT_EQ(readText(row.read), reader.read(reader.document(row.given)))
                << reader.name << ", " << row.label;
        }
    }
}

TEST(HostileCharacters, ADeclaredEncodingDoesNotCount) {
    const std::string declaration = "<?xml version='1.0' encoding='windows-1251'?>";
    for (const Reader& reader : readers) {
        EXPECT_EQ(readText("\xD0\xBE\xD1\x82"),
                  reader.read(reader.document("\xD0\xBE\xD1\x82", declaration)))
            << reader.name;
        EXPECT_EQ(readText("\xEF\xBF\xBD"
                           "\xEF\xBF\xBD"),
                  reader.read(reader.document("\xEE\xF2", declaration)))
            << reader.name;
    }
}

// ---- Sizes ----------------------------------------------------------------------------------

TEST(HostileSizes, TooDeepElementsEndTheFile) {
    for (const Reader& reader : readers) {
        for (const int depth : {255, 300, 100000}) {
            const std::string content = "<" + reader.root + ">" + reader.itemStart + "text" +
                                        reader.itemEnd + repeated("<d>", depth);
            EXPECT_EQ(readText("text"), reader.read(content)) << reader.name << ", " << depth;
        }
    }
}

TEST(HostileSizes, AnElementWithALongNameIsLost) {
    const std::string longName(60000, 'n');
    for (const Reader& reader : readers) {
        const std::string content = "<" + reader.root + "><" + longName + "/>" + reader.itemStart +
                                    "text" + reader.itemEnd + reader.end;
        EXPECT_EQ(readText("text"), reader.read(content)) << reader.name;
    }
}

TEST(HostileSizes, ManySmallElementsAreReadOver) {
    const std::string elements = repeated("<x a=\"\"/>", 100000);
    for (const Reader& reader : readers) {
        std::string content = reader.document("text");
        content.insert(2 + reader.root.size(), elements);
        EXPECT_EQ(readText("text"), reader.read(content)) << reader.name;
    }
}

TEST(HostileSizes, AStartTagMayHaveManyAttributesButNotTenMegabytes) {
    std::string many;
    for (int index = 0; index < 100000; ++index) {
        many += " a" + std::to_string(index) + "='v'";
    }
    const std::string tooLong = " a='" + std::string(11000000, 'x') + "'";
    for (const Reader& reader : readers) {
        std::string content = reader.document("text");
        const std::size_t quote = content.find('\'');
        const std::size_t position = content.find('\'', quote + 1) + 1;
        EXPECT_EQ(readText("text"), reader.read(std::string(content).insert(position, many)))
            << reader.name;
        EXPECT_EQ(failure(reader.noItems),
                  reader.read(std::string(content).insert(position, tooLong)))
            << reader.name;
    }
}

TEST(HostileSizes, OfADoubledAttributeTheFirstCounts) {
    EXPECT_EQ(readText("text"),
              readPersistentData("<data><properties><property name='n' name='other'>text"
                                 "</property></properties></data>"));
}

TEST(HostileSizes, ATextIsReadUpToTenMegabytes) {
    const Reader readersOfTexts[] = {readers[1], readers[2]};
    for (const Reader& reader : readersOfTexts) {
        const std::string whole(9000000, 'x');
        EXPECT_TRUE(readText(whole) == reader.read(reader.document(whole))) << reader.name;
        const Outcome cut = reader.read(reader.document(std::string(11000000, 'x')));
        EXPECT_EQ(statusHex(RGEN_OK), cut.status) << reader.name;
        EXPECT_NEAR(10000000.0, static_cast<double>(cut.text.size()), 100000.0) << reader.name;
        EXPECT_EQ(std::string::npos, cut.text.find_first_not_of('x')) << reader.name;
    }
}

TEST(HostileSizes, ALargeEntityIsReadUpToAMegabyteOfExpansion) {
    for (const Reader& reader : {readers[1], readers[2]}) {
        const std::string prolog =
            "<!DOCTYPE data [<!ENTITY e '" + std::string(102400, 'x') + "'>]>";
        const Outcome outcome = reader.read(reader.document(repeated("&e;", 1000), prolog));
        EXPECT_EQ(statusHex(RGEN_OK), outcome.status) << reader.name;
        EXPECT_EQ(9U * 102400U, outcome.text.size()) << reader.name;
    }
}

}  // namespace
