// SPDX-License-Identifier: MIT
#include "templates/xpath_values.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace cli {
namespace {

const KeyDeclarations& keysOfTheSample() {
    static const KeyDeclarations keys = {{"p", {"property", "@name"}},
                                         {"list",
                                          {"property[contains(substring-after(@name, '.'), '.')]",
                                           "concat(substring-before(@name, '.'), '*', "
                                           "substring-after(substring-after(@name, '.'), '.'))"}},
                                         {"group", {"property", "substring-before(@name, '.')"}},
                                         {"content", {"property", "."}}};
    return keys;
}

/// "kind name@offset" for each request.
std::string requestsOf(const std::string& expression,
                       ExpressionKind kind = ExpressionKind::Expression,
                       const ValueContext& context = {}) {
    std::string text;
    for (const ValueRequest& request :
         valueRequests(expression, kind, keysOfTheSample(), context)) {
        constexpr const char* kinds[] = {"name", "list", "prefix", "part"};
        if (!text.empty()) text += ", ";
        text += std::string(kinds[static_cast<int>(request.kind)]) + " " + request.name + "@" +
                std::to_string(request.offset);
    }
    return text;
}

struct Row {
    const char* expression;
    const char* requests;
};

std::ostream& operator<<(std::ostream& stream, const Row& row) {
    return stream << row.expression;
}

class ValueTable : public testing::TestWithParam<Row> {};

TEST_P(ValueTable, AsksForTheseNames) {
    EXPECT_EQ(requestsOf(GetParam().expression), GetParam().requests);
}

INSTANTIATE_TEST_SUITE_P(
    All, ValueTable,
    testing::Values(
        Row{"key('p', 'Device.Model')", "name Device.Model@10"},
        Row{"//property[@name='Host.Name']", "name Host.Name@18"},
        Row{"property['A' = @name or @name != \"B\"]", "name A@10, name B@34"},
        Row{"key('list', 'Err*Address')", "list Err.N.Address@13"},
        Row{"sum(key('list', 'Speed*Value')) > 0", "list Speed.N.Value@17"},
        Row{"sum(//property[starts-with(@name, 'Hours.')])", "prefix Hours.@35"},
        Row{"key('group', 'Err')", "prefix Err.@14"},
        Row{"//property[substring-before(@name, '.') = 'Err']", "prefix Err.@43"},
        Row{"key('p', concat('Err.', $n, '.Address'))", "list Err.N.Address@17"},
        Row{"key('p', concat('Err.', $n))", "prefix Err.@17"},
        Row{"key('p', concat('A', '.B'))", "name A.B@22"},
        Row{"key('p', concat($entry, 'Sectors'))", "part Sectors@25"},
        Row{"key('list', 'Hash*Source')[. != key('p', concat(substring-before(@name, 'Source'), "
            "'Image'))]",
            "list Hash.N.Source@13, list Hash.N.Image@84"},
        Row{"key('content', 'A')", ""}, Row{"key('unknown', 'A')", ""}, Row{"$a = 'A'", ""},
        Row{"concat('a', @name)", ""}, Row{"", ""}, Row{"key(", ""}, Row{"key('p', )", ""},
        Row{"@name =", ""}));

TEST(ValueRequests, ListsAreFollowedWhereTheirEntriesAreTheCurrentNode) {
    ValueContext context;
    context.currentName = "Err.N.Address";
    EXPECT_EQ(knownText("substring-before(@name, 'Address')", context), "Err.N.");
    EXPECT_EQ(knownText("substring-before(substring-after(@name, '.'), '.')", context), "N");
    EXPECT_EQ(knownText("concat($unknown, 'x')", context), "");
    context.texts = {{"area", "Err.N."}};
    EXPECT_EQ(requestsOf("key('p', concat($area, 'Cause'))", ExpressionKind::Expression, context),
              "list Err.N.Cause@24");
}

TEST(ValueRequests, VariablesMayHoldLists) {
    ValueContext context;
    context.lists = {{"bad", "Err.N.Address"}};
    EXPECT_EQ(selectedName("$bad", keysOfTheSample(), context), "Err.N.Address");
    EXPECT_EQ(selectedName("key('list', 'Err*Address')[1]", keysOfTheSample(), {}),
              "Err.N.Address");
    EXPECT_EQ(selectedName("count($bad)", keysOfTheSample(), context), "");
    EXPECT_EQ(selectedName("$bad[. > 1] | $other", keysOfTheSample(), context), "");
}

TEST(ValueRequests, PlacesInValueTemplatesAreThoseOfTheAttribute) {
    EXPECT_EQ(requestsOf("a{key('p', 'X')}{key('p', 'Y')}", ExpressionKind::ValueTemplate),
              "name X@12, name Y@27");
}

TEST(FindsAny, TellsWhetherDataHasWhatAKeyIsSearchedFor) {
    const KeyDeclarations& keys = keysOfTheSample();
    const std::vector<std::string> names = {"Device", "Err.10.Address"};
    EXPECT_TRUE(findsAny(keys, "p", "Device", names));
    EXPECT_FALSE(findsAny(keys, "p", "Devise", names));
    EXPECT_TRUE(findsAny(keys, "list", "Err*Address", names));
    EXPECT_FALSE(findsAny(keys, "list", "Err*Adress", names));
    EXPECT_TRUE(findsAny({{"k", {"property", "generate-id()"}}}, "k", "x", names));
}

}  // namespace
}  // namespace cli
