// Reports through rgen.hpp: values, texts, the three output modes, dump and simulated input.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "support/test_platform.h"
#include "wrapper_fixture.h"

namespace rgen_test {
namespace {

using repgen::Hint;
using repgen::Text;

const char* const hardTexts[] = {
    "a & b", "&amp;", "&#65;", "&lt;b&gt; <b>", "&;", "&", "\xC3\xA4 & \xD0\xBE", "]]>", "a;b"};

TEST_F(WrapperTest, TextsAppearInReportsAsTheyAre) {
    for (const std::string text : hardTexts) {
        EXPECT_EQ("[" + text + "]", reportTextOf(text));
        EXPECT_EQ("[" + text + "]", reportText({type, "html", {}, {{"v", text}}}));
    }
}

TEST_F(WrapperTest, MarkupIsReadByTheLibrary) {
    EXPECT_EQ("[A & B]", reportTextOf(Text::markup("&#65; &amp; B")));
    EXPECT_EQ("[A]", reportText({type, "html", {}, {{"v", Text::markup("&#65;")}}}));
}

TEST_F(WrapperTest, ValuesAreShownByTypeAndHint) {
    const TimeZone zone("UTC0");
    const auto moment = std::chrono::system_clock::from_time_t(86399);
    EXPECT_EQ("[255]", reportTextOf(255));
    EXPECT_EQ("[0xff]", reportTextOf({255, Hint::Address}));
    EXPECT_EQ("[0xffffffffffffffff]", reportTextOf({~std::uint64_t{0}, Hint::Address}));
    EXPECT_EQ("[ 1.01.1970 23:59:59]", reportTextOf(moment));
    EXPECT_EQ("[23:59:59]", reportTextOf({moment, Hint::Time}));
    EXPECT_EQ("[01 AB ]", reportTextOf(repgen::Bytes{1, 0xAB}));
    EXPECT_EQ("[]", reportTextOf(repgen::Bytes()));
}

TEST_F(WrapperTest, ValuesWinOverPairsAndHandlesAreLeftOut) {
    repgen::Request request{type};
    request.pairs["v"] = "pair";
    request.values["h"] = repgen::Value::handle(this);
    EXPECT_EQ("[pair]", reportText(request));
    request.values["v"] = "value";
    EXPECT_EQ("[value]", reportText(request));
}

TEST_F(WrapperTest, AFileIsWrittenAndItsPathReturned) {
    const std::string path = folder.file("\xC3\xA4.html");
    const std::filesystem::path given = own.generateFile({type, "html", {{"v", "x"}}}, path);
    EXPECT_EQ("[x]", readFile(path));
    EXPECT_EQ("[x]", readFile(repgen::Path(given).utf8()));
}

TEST_F(WrapperTest, AnOpenFileVanishesWithItsOwner) {
    const std::string path = folder.file("report.html");
    const repgen::Request request{type, "html", {{"v", "x"}}};
    EXPECT_TRUE(closesOnBytes(own.generateOpenFile(request, path).release(), "[x]"));
    EXPECT_FALSE(exists(path));
    {
        repgen::OpenFile first = own.generateOpenFile(request, path);
        repgen::OpenFile second(std::move(first));
        EXPECT_FALSE(first.isOpen());
        EXPECT_TRUE(second.isOpen());
        first = std::move(second);
        EXPECT_TRUE(first);
        repgen::OpenFile third = own.generateOpenFile(request, folder.file("other.html"));
        third = std::move(first);
        EXPECT_TRUE(third && !first);
        // On Windows the file exists until it is closed.
        EXPECT_FALSE(exists(folder.file("other.html")));
        first = std::move(third);
        first.close();
        EXPECT_FALSE(first);
        EXPECT_FALSE(exists(path));
        second = own.generateOpenFile(request, path);
    }
    EXPECT_FALSE(exists(path));
}

TEST_F(WrapperTest, AGeneratorMovesWithItsSettings) {
    putTemplate(textStylesheet("QT_TRANSLATE_NOOP(\"QObject\", \"a\")"));
    own.setTranslator([](std::string_view text) { return std::string(text) + "!"; });
    repgen::Generator moved(std::move(own));
    own = repgen::Generator();
    own = std::move(moved);
    EXPECT_EQ("a!", reportTextOf("x"));
}

TEST_F(WrapperTest, ADumpHoldsTheDisplayTexts) {
    const std::string path = folder.file("dump.xml");
    own.dump({{"a", "x & y"}, {"b", {255, Hint::Address}}}, path);
    const std::string xml = readFile(path);
    EXPECT_NE(std::string::npos, xml.find("name=\"a\">x &amp; y</property>")) << xml;
    EXPECT_NE(std::string::npos, xml.find("name=\"b\">0xff</property>")) << xml;
    own.dump({}, path);
    EXPECT_EQ(std::string::npos, readFile(path).find("property name"));
}

TEST_F(WrapperTest, SimulatedInputComesBackAsValues) {
    const std::string path = folder.file("input.xml");
    writeFile(path,
              "<data><properties><property name='s' type='string' hint='Generic'>x &amp; "
              "y</property><property name='i' type='int64' hint='Size'>5</property>"
              "<property name='b' type='byte_array' hint='Dump'>0x01, 0xAB</property>"
              "<property name='z' type='real' hint='Dump'>1</property></properties></data>");
    const repgen::Values values = own.simulatedInput(path);
    ASSERT_EQ(3U, values.size());
    EXPECT_EQ(repgen::Value("x & y"), values.at("s"));
    EXPECT_EQ(repgen::Value(5, Hint::Size), values.at("i"));
    EXPECT_EQ(repgen::Value(repgen::Bytes{1, 0xAB}), values.at("b"));
    EXPECT_EQ("[x & y]", reportTextOf(values.at("s")));
    EXPECT_TRUE(own.simulatedInput(folder.file("missing.xml")).empty());
}

TEST_F(WrapperTest, PersistentDataComesBackAsItWas) {
    repgen::Texts texts;
    std::map<std::string, std::string> expected;
    for (const std::string text : hardTexts)
        texts.add("n" + std::to_string(texts.size()), text);
    for (const std::string text : {" ", "\t x \n", "x\n", "a\r\nb", "&\n&", " &amp; "})
        texts.add("n" + std::to_string(texts.size()), text);
    for (const auto& [name, text] : texts)
        expected[name] = text.content();
    own.setPersistentData(type, texts);
    EXPECT_EQ(expected, own.persistentData(type));
    for (const auto& [name, text] : expected) {
        putTemplate(textStylesheet("[" + valueOf(name) + "]"));
        EXPECT_EQ("[" + text + "]", reportTextOf("other"));
    }
}

TEST_F(WrapperTest, PersistentMarkupIsReadTwice) {
    own.setPersistentData(type, {{"a", Text::markup("&amp;#65;")}, {"b", Text::markup("&#65;")}});
    const std::map<std::string, std::string> expected = {{"a", "A"}, {"b", "A"}};
    EXPECT_EQ(expected, own.persistentData(type));
}

TEST_F(WrapperTest, WhatTheStoreCannotHoldDoesNoHarmToOtherEntries) {
    const std::string lost[] = {"\xEF\xBF\xBE", "\xEF\xBF\xBF",    "\x01", "\xFF", "\xED\xA0\x80",
                                "\xC0\x80",     "\xF4\x90\x80\x80"};
    const std::string references[] = {"&#xFFFE;", "&#65535;", "&#xD800;", "&#00065534;", "&#1;"};
    const std::string kept = " \xEF\xBF\xBC \xF0\x9F\x98\x80 & <b> ";
    repgen::Texts texts = {{"name\xEF\xBF\xBF", "\x02"}};
    repgen::Values values;
    for (const std::string& text : lost) {
        texts.add("a" + std::to_string(texts.size()), text);
        texts.add("a" + std::to_string(texts.size()), Text::markup(text));
        values.add("a" + std::to_string(values.size()), text);
    }
    for (const std::string& text : references)
        texts.add("a" + std::to_string(texts.size()), Text::markup(text));
    for (int i = 0; i < 50; ++i)
        texts.add("k" + std::to_string(i), kept);
    values.add("k0", kept);
    own.setPersistentData(type, texts);
    const auto stored = own.persistentData(type);
    EXPECT_EQ(texts.size(), stored.size());
    EXPECT_EQ(1U, stored.count("name\xEF\xBF\xBD"));
    // Of a byte sequence that is not UTF-8 each byte may be replaced.
    const std::string replaced = "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD";
    for (const auto& [name, text] : stored) {
        EXPECT_FALSE(text.empty()) << name;
        EXPECT_EQ(name[0] == 'k' ? kept : replaced.substr(0, text.size()), text) << name;
    }
    own.setPersistentValues(type, values);
    EXPECT_EQ(kept, own.persistentData(type)["k0"]);
}

TEST_F(WrapperTest, PersistentMarkupWithUnknownReferencesIsRefused) {
    own.setPersistentData(type, {{"a", "kept"}});
    for (const char* markup :
         {"&foo;", "&f oo;", "&nbsp;", "&AMP;", "&1;", "&;", "& amp;", "&amp ;", "a & b; c",
          "&&amp;", "&lt;&foo;", "&a&lt;", "&<b>;", "&amp&#65;"}) {
        SCOPED_TRACE(markup);
        EXPECT_THROW(own.setPersistentData(type, {{"a", Text::markup(markup)}}),
                     repgen::ArgumentError);
        EXPECT_THROW(own.setPersistentValues(type, {{"a", Text::markup(markup)}}),
                     repgen::ArgumentError);
    }
    EXPECT_EQ("kept", own.persistentData(type)["a"]);
}

// All short sequences of pieces: they are refused, or leave the other entries alone.
TEST_F(WrapperTest, NoPersistentMarkupThatIsTakenDoesHarm) {
    const std::string pieces[] = {"&",  "amp", ";",    "#",    "x", "D800",
                                  "65", "<",   "\x01", "\xFF", "a"};
    std::vector<std::string> sequences = {""};
    std::size_t first = 0;
    for (int length = 1; length <= 4; ++length) {
        const std::size_t end = sequences.size();
        for (; first < end; ++first) {
            for (const std::string& piece : pieces)
                sequences.push_back(sequences[first] + piece);
        }
    }
    repgen::Texts texts;
    for (const std::string& sequence : sequences) {
        repgen::Owned<RgenAnsiString> content;
        const RgenStatus status =
            rgenh_escapeText(sequence.data(), sequence.size(), RGENH_MARKUP,
                             RGENH_FOR_PERSISTENT_DATA, content.get(), nullptr);
        if (status >= 0) texts.add("a" + std::to_string(texts.size()), Text::markup(sequence));
    }
    EXPECT_GT(texts.size(), 10000U);
    for (int i = 0; i < 10; ++i)
        texts.add("k" + std::to_string(i), "Smith & Sons <b>");
    own.setPersistentData(type, texts);
    for (const auto& [name, text] : own.persistentData(type)) {
        EXPECT_TRUE(name[0] != 'k' || text == "Smith & Sons <b>") << name << ": " << text;
    }
}

TEST_F(WrapperTest, PersistentTextsThatWouldBeCutAreRefused) {
    const std::size_t limit = 10000000;
    own.setPersistentData(type, {{"a", std::string(limit - 5, 'x') + "&"}});
    EXPECT_EQ(limit - 4, own.persistentData(type)["a"].size());
    const auto isRefused = [this](const char* name, const Text& text) {
        EXPECT_THROW(own.setPersistentData(type, {{name, text}}), repgen::ArgumentError);
        EXPECT_THROW(own.setPersistentValues(type, {{name, text}}), repgen::ArgumentError);
    };
    isRefused("a", std::string(limit + 1, 'x'));
    isRefused("a", std::string(limit - 4, 'x') + "&");
    isRefused("a", std::string(limit / 3 + 1, '\x01'));
    isRefused("a", Text::markup(std::string(limit + 1, 'x')));
    isRefused(std::string(limit / 10 + 1, 'x').c_str(), "x");
    EXPECT_THROW(own.setPersistentValues(type, {{"a", repgen::Bytes(limit / 3 + 1)}}),
                 repgen::ArgumentError);
    EXPECT_EQ(1U, own.persistentData(type).size());
}

TEST_F(WrapperTest, PersistentValuesAreDisplayTexts) {
    own.setPersistentValues(type, {{"a", {255, Hint::Address}}, {"b", "x & y"}});
    const std::map<std::string, std::string> expected = {{"a", "0xff"}, {"b", "x & y"}};
    EXPECT_EQ(expected, own.persistentData(type));
    own.setPersistentData(type, {});
    EXPECT_TRUE(own.persistentData(type).empty());
    own.setPersistentData(type, {{"c", "z"}});
    EXPECT_EQ(1U, own.persistentData(type).size());
}

}  // namespace
}  // namespace rgen_test
