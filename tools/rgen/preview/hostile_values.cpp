// SPDX-License-Identifier: MIT
#include "preview/hostile_values.h"

#include <array>
#include <cstdint>
#include <limits>

namespace cli {
namespace {

constexpr std::size_t longTextSize = 5000;

const std::array<std::string, 9>& hostileTexts() {
    static const std::array<std::string, 9> texts = {
        "<script>document.documentElement.dataset.hostile = 1</script>",
        "\"><img src=x onerror=\"document.documentElement.dataset.hostile = 2\">",
        "' onmouseover='document.documentElement.dataset.hostile = 3' x='",
        "javascript:document.documentElement.dataset.hostile=4",
        "]]> <!-- &amp; &lt;b&gt; & </td></table></body>",
        "{$unknown} {{ \\ %s %n `quoted` \"double\" 'single'",
        // Right-to-left override and isolate, Hebrew and Arabic.
        "invoice\xE2\x80\xAEgpj.exe \xE2\x81\xA7\xD7\xA9\xD7\x9C\xD7\x95\xD7\x9D "
        "\xD9\x85\xD8\xB1\xD8\xAD\xD8\xA8\xD8\xA7\xE2\x81\xA9 end",
        // Combining marks, an emoji of several characters, a space of no width.
        "a\xCC\x81\xCC\x82\xCC\x83\xCC\x84 \xF0\x9F\x91\xA9\xE2\x80\x8D\xF0\x9F\x94\xAC "
        "zero\xE2\x80\x8Bwidth\nsecond line\ttab",
        "Long" + std::string(longTextSize, 'W'),
    };
    return texts;
}

std::int64_t hostileNumber(std::size_t number) {
    constexpr std::int64_t numbers[] = {std::numeric_limits<std::int64_t>::max(), 0, -1,
                                        std::numeric_limits<std::int64_t>::min()};
    return numbers[number % std::size(numbers)];
}

bool isTime(const repgen::Value& content) {
    return content.hint() == repgen::Hint::Time || content.hint() == repgen::Hint::Date ||
           content.hint() == repgen::Hint::DateTime;
}

repgen::Value hostileContent(const repgen::Value& content, std::size_t number) {
    if (content.type() == repgen::ValueType::Text) {
        return repgen::Text(hostileTexts()[number % hostileTexts().size()]);
    }
    if (content.type() == repgen::ValueType::Integer && !isTime(content)) {
        return {hostileNumber(number), content.hint()};
    }
    return content;
}

ValueSet withHostileValues(const ValueSet& values) {
    ValueSet hostile;
    std::size_t number = 0;
    for (const auto& [name, value] : values.values())
        hostile.replace({name, hostileContent(value.content, number++), value.source});
    return hostile;
}

}  // namespace

ReportInput withHostileValues(const ReportInput& input) {
    return {withHostileValues(input.values), withHostileValues(input.pairs)};
}

}  // namespace cli
