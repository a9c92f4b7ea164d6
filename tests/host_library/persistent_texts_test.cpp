// Persistent data as texts: what is stored is read back, and shown in reports.
//
// SPDX-License-Identifier: MIT
#include "host_library/host_library_fixture.h"

namespace rgen_test {
namespace {

class PersistentTexts : public HostLibraryTest {
protected:
    RgenStatus store(const std::vector<RgenhValue>& values) {
        return rgenh_setPersistentValues(host, &guid, values.data(), values.size(), &error);
    }

    TextMap read() {
        RgenCAnsiStringPairSet pairs = {};
        EXPECT_EQ(RGEN_OK, rgenh_getPersistentTexts(host, &guid, &pairs, &error)) << error.message;
        const TextMap texts = toMap(pairs);
        rgen_freeRgenCAnsiStringSet(&pairs);
        return texts;
    }
};

TEST_F(PersistentTexts, AreReadBackAsTheyWere) {
    const TextMap texts = {{"plain", "a & b"},        {"references", "&amp; &foo; &#65;"},
                           {"markup", "<b>]]>"},      {"edges", " \t a \n"},
                           {"blanks", "  "},          {"letters", "\xE2\x82\xAC \xF0\x9F\x93\x84"},
                           {"line\nbreaks", "a\r\nb"}};
    std::vector<RgenhValue> values;
    for (const auto& [name, text] : texts)
        values.push_back(rgenh_textValue(name.c_str(), text.c_str()));
    ASSERT_EQ(RGEN_OK, store(values)) << error.message;
    EXPECT_EQ(texts, read());
    putTemplate(textStylesheet(valueOf("references") + valueOf("edges")));
    EXPECT_EQ("&amp; &foo; &#65; \t a \n", bytesOf({rgenh_textValue("v", "x")}));
}

TEST_F(PersistentTexts, OfOtherTypesAreStoredAsReportsShowThem) {
    const unsigned char sector[] = {0xAB, 1};
    RgenhValue handle = rgenh_integerValue("h", 1, 0);
    handle.type = RGEN_TYPE_HANDLE;
    RgenhValue markup = rgenh_textValue("m", "&amp;lt;");
    markup.type = RGENH_TYPE_MARKUP;
    ASSERT_EQ(RGEN_OK, store({rgenh_integerValue("n", 255, RGEN_HINT_ADDRESS),
                              rgenh_bytesValue("b", sector, 2), handle, markup}));
    EXPECT_EQ((TextMap{{"n", "0xff"}, {"b", "AB 01"}, {"m", "<"}}), read());
}

TEST_F(PersistentTexts, WithInvalidCharactersDoNotDamageOthers) {
    ASSERT_EQ(RGEN_OK,
              store({rgenh_textValue("a", "1 < 2 & 3"), rgenh_textValue("b", "\xFF\x01"),
                     rgenh_textValue("c", "\xEF\xBF\xBE"), rgenh_textValue("d\x02", "x & y")}));
    const std::string bad = "\xEF\xBF\xBD";
    EXPECT_EQ((TextMap{{"a", "1 < 2 & 3"}, {"b", bad + bad}, {"c", bad}, {"d" + bad, "x & y"}}),
              read());
}

TEST_F(PersistentTexts, ThatCannotBeStoredAreRefusedAndChangeNothing) {
    ASSERT_EQ(RGEN_OK, store({rgenh_textValue("a", "kept")}));
    const std::string text(10000001, 'x');
    const std::string name(1000001, 'n');
    RgenhValue markup = rgenh_textValue("m", "&foo;");
    markup.type = RGENH_TYPE_MARKUP;
    const RgenhValue good = rgenh_textValue("good", "x");
    const std::vector<std::uint8_t> sector(3333334);
    for (const RgenhValue& bad :
         {markup, rgenh_textValue("t", text.c_str()), rgenh_textValue(name.c_str(), "x"),
          rgenh_bytesValue("b", sector.data(), sector.size()), rgenh_textValue("n", nullptr)}) {
        EXPECT_EQ(RGEN_E_BAD_PARAMETER, store({good, bad}));
        EXPECT_EQ("7 3", kindAndArgument());
        EXPECT_EQ(1U, error.entry);
    }
    EXPECT_EQ((TextMap{{"a", "kept"}}), read());
}

TEST_F(PersistentTexts, OfAnEmptyStoreAreEmpty) {
    RgenCAnsiStringPairSet pairs = {};
    EXPECT_EQ(RGEN_E_OPEN_PERSIST, rgenh_getPersistentTexts(host, &guid, &pairs, &error));
    ASSERT_EQ(RGEN_OK, store({}));
    EXPECT_EQ(TextMap(), read());
    EXPECT_EQ(RGENH_ERROR_NONE, error.kind);
    ASSERT_EQ(RGEN_OK, store({rgenh_textValue("empty", "")}));
    EXPECT_EQ(TextMap(), read());
}

}  // namespace
}  // namespace rgen_test
