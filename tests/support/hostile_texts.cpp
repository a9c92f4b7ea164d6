// Deterministic: the same texts for each run.
//
// SPDX-License-Identifier: MIT
#include "support/hostile_texts.h"

#include <array>
#include <cstdint>
#include <string_view>

namespace rgen_test {
namespace {

constexpr std::string_view keyword = "QT_TRANSLATE_NOOP";
constexpr std::string_view opening = "QT_TRANSLATE_NOOP(\"QObject\", \"";
// Six underscores in a thousand characters, as in stylesheets. A capital Q occurs in every
// hundredth line only.
constexpr std::array<std::string_view, 32> words = {
    "steel",  "probe",  "surface", "quality", "load",  "cycle",     "batch",  "weld",
    "the",    "filter", "sealed",  "value",   "north", "reference", "Rail",   "grade",
    "copper", "stable", "after",   "cold",    "run",   "file_name", "is",     "measured",
    "with",   "second", "layer",   "bolt",    "per",   "Table",     "minute", "result"};

std::string filled(std::string text, std::size_t size, char with) {
    text.resize(size, with);
    return text;
}

std::string repeated(std::string_view part, std::size_t size) {
    std::string text;
    text.reserve(size + part.size());
    while (text.size() < size)
        text += part;
    text.resize(size);
    return text;
}

/// A marker whose message is spaces, with a quote but no closing bracket at its end.
std::string evilMarker(std::size_t size) {
    std::string text = filled(std::string(opening), size - 2, ' ');
    text += "\"x";
    return text;
}

}  // namespace

TemplateText ordinaryText(std::size_t size, int markers) {
    TemplateText made;
    made.name = markers == 0 ? "ordinary" : "markers";
    made.isChanged = markers != 0;
    made.text.reserve(size + 256);
    const std::size_t distance = markers == 0 ? size + 1 : size / static_cast<std::size_t>(markers);
    std::size_t nextMarker = distance / 2;
    std::uint32_t state = 1;
    int line = 0;
    while (made.text.size() < size) {
        made.text += "        <p class=\"line\">";
        if (++line % 100 == 0) made.text += "Quality ";
        for (int word = 0; word < 20; ++word) {
            state = state * 1664525U + 1013904223U;
            made.text.append(words.at((state >> 16U) % words.size())).append(" ");
        }
        if (made.text.size() >= nextMarker) {
            made.text.append(opening).append("Marked text\")");
            nextMarker += distance;
        }
        made.text += "</p>\n";
    }
    return made;
}

std::vector<TemplateText> hostileTexts(std::size_t size) {
    std::string longMessage = filled(std::string(opening), size - 2, 'm');
    longMessage += "\")";
    std::vector<TemplateText> texts = {
        {"literal and blanks", filled(std::string(keyword), size, ' ')},
        {"open message", filled(std::string(opening), size, 'm')},
        {"evil message", evilMarker(size)},
        {"many evil messages", repeated(evilMarker(3000), size)},
        {"only literals", repeated(keyword, size)},
        {"one long message", longMessage, true},
        {"only Q", repeated("Q", size)},
        {"only _", repeated("_", size)},
        {"only QT_", repeated("QT_", size)}};
    for (TemplateText& text : texts)
        text.isHostile = true;
    return texts;
}

}  // namespace rgen_test
