// Translators of rgen.hpp: kinds of callables, lifetimes, exceptions, threads.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <thread>

#include "wrapper_fixture.h"

namespace rgen_test {
namespace {

class WrapperTranslator : public WrapperTest {
protected:
    WrapperTranslator() {
        putTemplate(
            textStylesheet("QT_TRANSLATE_NOOP(\"QObject\", \"a\")|QT_TRANSLATE_NOOP(\"QObject\", "
                           "\"b &lt; c\")"));
    }

    std::string report() { return reportTextOf("x"); }
};

std::string doubled(std::string_view text) {
    return std::string(text) + std::string(text);
}

TEST_F(WrapperTranslator, EveryCallableWithATextWill) {
    own.setTranslator(doubled);
    EXPECT_EQ("aa|b < cb < c", report());
    own.setTranslator([](std::string_view text) { return text.substr(0, 1); });
    EXPECT_EQ("a|b", report());
    own.setTranslator([](const auto&) { return "x"; });
    EXPECT_EQ("x|x", report());
    own.setTranslator([count = 0](std::string_view) mutable { return std::to_string(++count); });
    EXPECT_EQ("1|2", report());
    own.setTranslator(std::function<std::string(std::string_view)>(doubled));
    EXPECT_EQ("aa|b < cb < c", report());
    own.setTranslator([](const std::string& text) { return text.c_str(); });
    EXPECT_EQ("a|b < c", report());
    own.setTranslator([](std::string text) { return std::move(text) + "."; });
    EXPECT_EQ("a.|b < c.", report());
    own.clearTranslator();
    EXPECT_EQ("a|b < c", report());
}

TEST_F(WrapperTranslator, PlainTranslationsAreEscapedAndMarkupIsNot) {
    const auto translator = [](std::string_view text) { return text == "a" ? "<&>" : "&lt;&#65;"; };
    own.setTranslator(translator);
    EXPECT_EQ("<&>|<A", report());
    own.setTranslator([](std::string_view) { return "&#65;"; }, repgen::TextForm::Markup);
    EXPECT_EQ("A|A", report());
}

TEST_F(WrapperTranslator, NoTranslationDamagesWhatFollowsIt) {
    putTemplate(textStylesheet("QT_TRANSLATE_NOOP(\"QObject\", \"a\")|&lt; &amp; &gt;"));
    const std::string replacement = "\xEF\xBF\xBD";
    const std::pair<std::string, std::string> rows[] = {
        {"a]]>b", "a]]>b"},
        {"]]]>>", "]]]>>"},
        {"a > b", "a > b"},
        {"\a\b", replacement + replacement},
        {"\xEF\xBF\xBE", replacement},
        {"\xFF", replacement},
        {"&foo; &#xD800; & x;", "&foo; &#xD800; & x;"},
        {"a\tb\x7F", "a\tb\x7F"}};
    for (const auto& [translation, shown] : rows) {
        own.setTranslator([text = translation](std::string_view) { return text; });
        EXPECT_EQ(shown + "|< & >", report());
    }
}

TEST_F(WrapperTranslator, WhatTheOriginalHasIsMarkupButNoDamage) {
    const struct {
        const char* original;
        const char* translation;
        const char* shown;
    } rows[] = {{"&amp; &lt;", "&lt; & &foo; &#1; &#65; &amp ; &#; &#xZ; &",
                 "< & &foo; \xEF\xBF\xBD A &amp ; &#; &#xZ; &"},
                {"<b>a</b>", "<b>]]></b>", "]]>"},
                {"]]>", "\na]]>x", "\na]]>x"},
                {"<b>a</b>", "<![CDATA[<b>]]>", "<b>"},
                {"a &gt; >", "&gt; ]]> >", "> ]]> >"}};
    for (const auto& row : rows) {
        putTemplate(textStylesheet("QT_TRANSLATE_NOOP(\"QObject\", \"" + std::string(row.original) +
                                   "\")|&lt; &amp; &gt;"));
        own.setTranslator([&row](std::string_view) { return row.translation; });
        EXPECT_EQ(std::string(row.shown) + "|< & >", report());
    }
}

TEST_F(WrapperTranslator, MarkupWithUnknownReferencesIsRefused) {
    putTemplate(textStylesheet("QT_TRANSLATE_NOOP(\"QObject\", \"a\")|&lt; &amp; &gt;"));
    own.setTranslator([](std::string_view) { return "\x01 &#xFFFE; &#65;<x/>"; },
                      repgen::TextForm::Markup);
    EXPECT_EQ("\xEF\xBF\xBD \xEF\xBF\xBD A|< & >", report());
    for (const char* markup : {"&foo;", "a & b; c", "&nbsp;"}) {
        own.setTranslator([markup](std::string_view) { return markup; }, repgen::TextForm::Markup);
        try {
            report();
            ADD_FAILURE() << markup;
        } catch (const repgen::Error& error) {
            EXPECT_EQ(RGENH_ERROR_CALLBACK, error.kind());
            EXPECT_NE(std::string::npos, std::string(error.what()).find("reference")) << markup;
        }
    }
}

TEST_F(WrapperTranslator, ATextThatComesBackUnchangedStaysAsItIs) {
    putTemplate(textStylesheet("QT_TRANSLATE_NOOP(\"QObject\", \"]]&gt; &lt; > &amp; a&foo;b\")"));
    for (const auto form : {repgen::TextForm::Plain, repgen::TextForm::Markup}) {
        own.setTranslator([](std::string_view text) { return text; }, form);
        EXPECT_EQ("]]> < > & ab", report());
    }
}

TEST_F(WrapperTranslator, AnApostropheEndsNoAttribute) {
    putTemplate(
        "<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform'>"
        "<xsl:output method='xml' omit-xml-declaration='yes'/><xsl:template match='/'>"
        "<p title='QT_TRANSLATE_NOOP(\"QObject\", \"a\")'>QT_TRANSLATE_NOOP(\"QObject\", "
        "\"it's\")</p></xsl:template></xsl:stylesheet>");
    own.setTranslator([](std::string_view) { return "l'un' x='1"; });
    EXPECT_EQ("<p title=\"l'un' x='1\">l'un' x='1</p>\n", report());
}

TEST_F(WrapperTranslator, OneThatCanOnlyBeMovedIsTaken) {
    own.setTranslator(
        [text = std::make_unique<std::string>("z")](std::string_view) { return *text; });
    EXPECT_EQ("z|z", report());
}

TEST_F(WrapperTranslator, ANullPointerIsNoTranslation) {
    own.setTranslator([](std::string_view) -> const char* { return nullptr; });
    EXPECT_THROW(report(), repgen::ArgumentError);
}

TEST_F(WrapperTranslator, WhatItHoldsLivesUntilTheNextIsSet) {
    auto held = std::make_shared<int>(0);
    const std::weak_ptr<int> watched = held;
    own.setTranslator([held = std::move(held)](std::string_view) { return "y"; });
    EXPECT_EQ("y|y", report());
    EXPECT_FALSE(watched.expired());
    own.setTranslator([](std::string_view text) { return text; });
    EXPECT_TRUE(watched.expired());
}

TEST_F(WrapperTranslator, ExceptionsLeaveTheCallAndDoNoHarm) {
    int calls = 0;
    own.setTranslator([&calls](std::string_view) -> std::string {
        ++calls;
        throw std::logic_error("no translation");
    });
    const std::string path = folder.file("report.html");
    EXPECT_THROW(own.generateFile({type, "html", {{"v", 1}}}, path), std::logic_error);
    EXPECT_EQ("a|b < c", readFile(path));
    EXPECT_EQ(1, calls);
    EXPECT_THROW(own.generateOpenFile({type, "html", {{"v", 1}}}, path), std::logic_error);
    EXPECT_THROW(report(), std::logic_error);
    own.setTranslator([](std::string_view) { return std::string("a\0b", 3); });
    EXPECT_THROW(report(), repgen::ArgumentError);
    own.setTranslator(doubled);
    EXPECT_EQ("aa|b < cb < c", report());
}

TEST_F(WrapperTranslator, EachThreadGetsItsOwnException) {
    own.setTranslator([](std::string_view) -> std::string { throw std::this_thread::get_id(); });
    const auto generate = [this] {
        for (int i = 0; i < 20; ++i) {
            try {
                report();
                ADD_FAILURE() << "nothing was thrown";
            } catch (const std::thread::id& id) {
                EXPECT_EQ(std::this_thread::get_id(), id);
            }
        }
    };
    std::thread first(generate);
    std::thread second(generate);
    first.join();
    second.join();
}

TEST_F(WrapperTranslator, AReportInsideATranslatorOfAnotherGenerator) {
    repgen::Generator inner(folder.path());
    inner.setTranslator([](std::string_view) { return "inner"; });
    own.setTranslator([&](std::string_view) {
        const repgen::Bytes bytes = inner.generateBytes({type, "html", {{"v", 1}}});
        return std::string(bytes.begin(), bytes.end());
    });
    EXPECT_EQ("inner|inner|inner|inner", report());
}

}  // namespace
}  // namespace rgen_test
