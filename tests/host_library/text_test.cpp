// Escaping and its opposite, tried on the library itself: what goes in comes out.
//
// SPDX-License-Identifier: MIT
#include "host_library/host_library_fixture.h"

namespace rgen_test {
namespace {

const std::string replacement = "\xEF\xBF\xBD";

class Texts : public HostLibraryTest {
protected:
    std::string escape(const std::string& text, std::uint64_t form, std::uint64_t use) {
        RgenAnsiString target = {};
        const RgenStatus status =
            rgenh_escapeText(text.data(), text.size(), form, use, &target, &error);
        if (status >= 0) return takeText(target);
        EXPECT_EQ(nullptr, target.data);
        return error.message;
    }

    std::string translation(const std::string& original, const std::string& text,
                            std::uint64_t form = RGENH_PLAIN) {
        RgenAnsiString target = {};
        const RgenStatus status = rgenh_escapeTranslation(original.c_str(), text.data(),
                                                          text.size(), form, &target, &error);
        return status < 0 ? error.message : takeText(target);
    }

    std::string unescape(const std::string& content) {
        RgenAnsiString target = {};
        EXPECT_EQ(RGEN_OK, rgenh_unescapeText(content.data(), content.size(), &target, &error));
        return takeText(target);
    }

    std::int32_t isStorable(const std::string& text, std::uint64_t form = RGENH_PLAIN) {
        return rgenh_isStorable(text.data(), text.size(), form, &error);
    }
};

TEST_F(Texts, ForReportsAreEscapedOnce) {
    EXPECT_EQ("a &amp;amp; <b>", escape("a &amp; <b>", RGENH_PLAIN, RGENH_FOR_REPORT));
    EXPECT_EQ("&#8364;", escape("&#8364;", RGENH_MARKUP, RGENH_FOR_REPORT));
    EXPECT_EQ("", escape("", RGENH_PLAIN, RGENH_FOR_REPORT));
}

TEST_F(Texts, ForPersistentDataAreEscapedTwice) {
    const auto stored = [&](const std::string& text) {
        return escape(text, RGENH_PLAIN, RGENH_FOR_PERSISTENT_DATA);
    };
    EXPECT_EQ("a &amp;amp; <b>", stored("a & <b>"));
    EXPECT_EQ("&amp;#32;a&amp;#9;&amp;#10;", stored(" a\t\n"));
    EXPECT_EQ("&amp;#32;&amp;#32;", stored("  "));
    EXPECT_EQ("a" + replacement + "b", stored("a\x01"
                                              "b"));
    EXPECT_EQ("a" + replacement, stored("a\xFF"));
    EXPECT_EQ(replacement, stored("\xEF\xBF\xBE"));
}

TEST_F(Texts, OfMarkupForPersistentDataAreChecked) {
    const auto stored = [&](const std::string& text) {
        return escape(text, RGENH_MARKUP, RGENH_FOR_PERSISTENT_DATA);
    };
    EXPECT_EQ("a &amp;amp; b", stored("a &amp;amp; b"));
    EXPECT_EQ("&#xFFFD;&#xFFFD;", stored("&#xD800;&#1;"));
    EXPECT_EQ("&#xFFFD;", stored("&#x110000;"));
    EXPECT_EQ("a & b", stored("a & b"));
    EXPECT_EQ("&#4z; &", stored("&#4z; &"));
    EXPECT_EQ("the text contains the unknown reference &foo;", stored("x &foo; y"));
    EXPECT_EQ("the text contains the unknown reference &f oo;", stored("x &f oo; y"));
    EXPECT_EQ("7 1", kindAndArgument());
    EXPECT_EQ("the text contains the unknown reference &foo;",
              translation("a", "x &foo;", RGENH_MARKUP));
    EXPECT_EQ("7 2", kindAndArgument());
}

TEST_F(Texts, WithZeroBytesAreRefused) {
    EXPECT_EQ("text contains a zero byte",
              escape(std::string("a\0b", 3), RGENH_PLAIN, RGENH_FOR_REPORT));
    EXPECT_EQ("7 1", kindAndArgument());
    EXPECT_EQ("translation contains a zero byte", translation("a", std::string("a\0b", 3)));
}

TEST_F(Texts, OfUnknownFormsAndUsesAreRefused) {
    EXPECT_EQ("form is not one of RgenhTextForm", escape("a", 2, RGENH_FOR_REPORT));
    EXPECT_EQ("7 3", kindAndArgument());
    EXPECT_EQ("use is not one of RgenhTextUse", escape("a", RGENH_PLAIN, 2));
    EXPECT_EQ("7 4", kindAndArgument());
    EXPECT_EQ("form is not one of RgenhTextForm", translation("a", "b", 2));
    EXPECT_EQ(RGEN_E_BAD_PARAMETER, isStorable("a", 2));
}

TEST_F(Texts, OfASizeThatNoRecordCanHaveAreRefusedBeforeTheyAreRead) {
    const std::uint64_t tooLong = 0x100000000;
    RgenAnsiString target = {};
    for (const std::uint64_t size : {tooLong, UINT64_MAX - 1}) {
        EXPECT_EQ(RGEN_E_BAD_PARAMETER,
                  rgenh_escapeText("a", size, RGENH_PLAIN, RGENH_FOR_REPORT, &target, &error));
        EXPECT_STREQ("text is longer than 4,294,967,295 bytes", error.message);
        EXPECT_EQ("7 1", kindAndArgument());
        EXPECT_EQ(RGEN_E_BAD_PARAMETER,
                  rgenh_escapeTranslation("a", "b", size, RGENH_PLAIN, &target, &error));
        EXPECT_EQ("7 2", kindAndArgument());
        EXPECT_EQ(RGEN_E_BAD_PARAMETER, rgenh_unescapeText("a", size, &target, &error));
        EXPECT_EQ("7 1", kindAndArgument());
        EXPECT_EQ(0, rgenh_isStorable("a", size, RGENH_PLAIN, &error));
        EXPECT_EQ("7 1", kindAndArgument());
    }
    EXPECT_EQ(nullptr, target.data);
}

TEST_F(Texts, OfNullAndTheSizeZeroAreEmpty) {
    RgenAnsiString target = {};
    EXPECT_EQ(RGEN_OK,
              rgenh_escapeText(nullptr, 0, RGENH_PLAIN, RGENH_FOR_REPORT, &target, &error));
    EXPECT_EQ("", takeText(target));
    EXPECT_EQ(RGEN_OK, rgenh_escapeTranslation("a", nullptr, 0, RGENH_PLAIN, &target, &error));
    EXPECT_EQ("", takeText(target));
    EXPECT_EQ(RGEN_OK, rgenh_unescapeText(nullptr, 0, &target, &error));
    EXPECT_EQ("", takeText(target));
    EXPECT_EQ(1, rgenh_isStorable(nullptr, 0, RGENH_PLAIN, &error));
    EXPECT_EQ(RGENH_ERROR_NONE, error.kind);
}

TEST_F(Texts, EndAtTheirZeroByteWithoutASize) {
    RgenAnsiString target = {};
    EXPECT_EQ(RGEN_OK, rgenh_escapeText("a&", RGENH_NULL_TERMINATED, RGENH_PLAIN, RGENH_FOR_REPORT,
                                        &target, &error));
    EXPECT_EQ("a&amp;", takeText(target));
}

TEST_F(Texts, OfTranslationsAreEscapedUnlessTheOriginalHasMarkup) {
    EXPECT_EQ("&lt;b&gt; &amp; &#39;", translation("plain", "<b> & '"));
    EXPECT_EQ("<b>&amp;</b> '", translation("<b>&amp;</b>", "<b>&amp;</b> '"));
    EXPECT_EQ("<b q:a='x'/>", translation("<b>Bold</b>", "<b q:a='x'/>"));
    EXPECT_EQ("a > b", translation("a > c", "a > b"));
    // An "&" that begins no reference of XML is escaped even then.
    EXPECT_EQ("&amp;amp &amp;nbsp; &lt;", translation("&", "&amp &nbsp; &lt;"));
}

TEST_F(Texts, OfTranslationsKeepApostrophesOfTheOriginal) {
    EXPECT_EQ("c'est &amp;", translation("it's", "c'est &"));
}

TEST_F(Texts, OfTranslationsAsMarkupStay) {
    EXPECT_EQ("<b>&lt;</b>", translation("a", "<b>&lt;</b>", RGENH_MARKUP));
    EXPECT_EQ("the text contains the unknown reference &foo;",
              translation("a", "&foo;", RGENH_MARKUP));
}

TEST_F(Texts, OfTranslationsNeverEndACdataSection) {
    EXPECT_EQ("]]&gt;", translation("a", "]]>"));
    EXPECT_EQ("]]&gt;", translation(">", "]]>"));
    EXPECT_EQ("<![CDATA[x]]>", translation("<b>", "<![CDATA[x]]>"));
    EXPECT_EQ("<![CDATA[x", translation("<b>", "<![CDATA[x"));
    EXPECT_EQ("<![CDATA[x<]]> ]]&gt; y", translation("<b>", "<![CDATA[x<]]> ]]> y"));
    EXPECT_EQ("&gt;a>", translation(">", ">a>")) << "the template may end in two brackets";
}

TEST_F(Texts, OfTranslationsThatEqualTheOriginalStay) {
    EXPECT_EQ("a & b", translation("a & b", "a & b"));
    EXPECT_EQ("&foo;", translation("&foo;", "&foo;", RGENH_MARKUP));
}

TEST_F(Texts, AreUnescapedOnce) {
    EXPECT_EQ("& < > \" '", unescape("&amp; &lt; &gt; &quot; &apos;"));
    EXPECT_EQ("A\xE2\x82\xAC\xF0\x9F\x93\x84", unescape("&#65;&#x20AC;&#128196;"));
    EXPECT_EQ("&amp; &foo; & &#xD800; &#0; &;", unescape("&amp;amp; &foo; & &#xD800; &#0; &;"));
    EXPECT_EQ("A", unescape("&#x00000000000041;"));
    EXPECT_EQ("\xC3\xA9\xC3\xA9", unescape("&#233;&#xe9;"));
    EXPECT_EQ("&#x110000; &#x; &#xG; &#x!; &#xg; &#4z; &lt",
              unescape("&#x110000; &#x; &#xG; &#x!; &#xg; &#4z; &lt"));
    EXPECT_EQ("a&", unescape("a&"));
    EXPECT_EQ("", unescape(""));
}

TEST_F(Texts, ComeOutOfReportsAsTheyWentIn) {
    putTemplate(textStylesheet(valueOf("v")));
    for (const std::string text : {"a & b", "&amp;", "&foo;", "&#xD800;", "<x>", "]]>", " a "}) {
        const std::string content = escape(text, RGENH_PLAIN, RGENH_FOR_REPORT);
        EXPECT_EQ(reportOf(text), reportOfValue(content));
    }
}

TEST_F(Texts, AreStorableIfPersistentDataReturnsThem) {
    EXPECT_EQ(1, isStorable("a & b"));
    EXPECT_EQ(1, isStorable(""));
    EXPECT_EQ(1, isStorable("&amp;", RGENH_MARKUP));
    EXPECT_EQ(0, isStorable("a\x07"));
    EXPECT_STREQ("the text contains U+0007 at byte 1", error.message);
    EXPECT_EQ(RGENH_ERROR_ARGUMENT, error.kind);
    EXPECT_EQ("7 1", kindAndArgument());
    EXPECT_EQ(0, isStorable("a\xC3"));
    EXPECT_STREQ("the text contains the byte 0xC3 at byte 1", error.message);
    EXPECT_EQ(0, isStorable("\xEF\xBF\xBF"));
    EXPECT_EQ(0, isStorable("&foo;", RGENH_MARKUP));
    EXPECT_EQ(1, isStorable("&foo;"));
    EXPECT_EQ(0, isStorable(std::string("a\0", 2)));
    EXPECT_EQ(1, isStorable(std::string(10000000, 'x')));
    EXPECT_EQ(0, isStorable(std::string(10000001, 'x')));
    EXPECT_EQ(0, isStorable(std::string(2000001, '&')));
    EXPECT_EQ(1, isStorable(std::string(2000000, '&')));
    EXPECT_EQ(1, isStorable(std::string(2000000, ' ')));
    EXPECT_EQ(0, isStorable(std::string(2000001, ' ')));
    EXPECT_EQ(1, rgenh_isStorable(nullptr, 0, RGENH_PLAIN, &error));
}

TEST_F(Texts, WithInvalidUtf8HaveTheirBytesNamed) {
    for (const std::string text :
         {"\x80", "\xC0\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xE2\x82", "\xF5\x80\x80\x80",
          "\xC1\xBF", "\xC3(", "\xE0\x80\x80"}) {
        EXPECT_EQ(0, isStorable(text));
        EXPECT_NE(std::string::npos, std::string(error.message).find("the byte 0x"));
    }
    EXPECT_EQ(1, isStorable("\xEF\xBF\xBD\xF4\x8F\xBF\xBF\xEE\x80\x80"));
}

}  // namespace
}  // namespace rgen_test
