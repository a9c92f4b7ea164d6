// The matchers and checks of texts: markers, GUIDs, byte dumps, paths, command lines, UTF-8,
// trimming.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <stdexcept>

#include "generate/translation.h"
#include "platform/child_process.h"
#include "platform/utf8.h"
#include "robustness/scaling/scaling_case.h"
#include "store/base/guid.h"
#include "store/data_directory.h"
#include "store/xml/text.h"
#include "support/hostile_texts.h"
#include "variant/byte_dump.h"

namespace rgen_test {
namespace {

using TextMaker = std::function<std::string(std::size_t size)>;
using TextReader = std::function<void(std::string& text)>;

// Keeps the compiler from removing the work.
volatile bool sink;

ScalingCase textCase(const std::string& name, const TextMaker& make, const TextReader& read) {
    return {name, usualBytes, [make, read](std::size_t size) {
                return [text = make(size), read]() mutable { read(text); };
            }};
}

TextMaker repeats(std::string part, std::string before = {}, std::string after = {}) {
    return [=](std::size_t size) { return before + repeatedText(part, size) + after; };
}

void translate(std::string& text) {
    const rgen::ReportGenerator generator;
    rgen::translateTemplateText(generator, text);
}

void addMarkerCases(std::vector<ScalingCase>& cases) {
    const std::string keyword = "QT_TRANSLATE_NOOP";
    const std::string opening = keyword + "(\"QObject\", \"";
    for (std::size_t i = 0; i < hostileTexts(usualBytes).size(); ++i) {
        const auto make = [i](std::size_t size) {
            // An opening has to fit.
            constexpr std::size_t smallest = 64;
            return hostileTexts(std::max(size, smallest)).at(i).text;
        };
        const std::string name = hostileTexts(usualBytes).at(i).name;
        cases.push_back(textCase("markers: " + name, make, translate));
    }
    const std::vector<std::pair<std::string, TextMaker>> texts = {
        {"whole ones", repeats(opening + "m\")")},
        {"whole ones without a text", repeats(opening + "\")")},
        {"openings alone", repeats(opening)},
        {"brackets without a context", repeats(keyword + "(")},
        {"blanks before the end", repeats(" ", opening + "m", "\")")},
        {"blanks after the message", repeats(" ", opening + "m\"", ")")},
        {"blanks before the bracket", repeats(" ", keyword, "(\"QObject\", \"m\")")},
        {"blanks before the context", repeats(" ", keyword + "(", "\"QObject\", \"m\")")},
        {"blanks before the comma", repeats(" ", keyword + "(\"QObject\"", ", \"m\")")},
        {"many with blanks before the end", repeats(opening + "m" + std::string(99, ' ') + "\")")},
        {"many with blanks and no end", repeats(opening + "m" + std::string(99, ' ') + "\"x")},
        {"many with blanks and no message",
         repeats(keyword + "(\"QObject\"" + std::string(99, ' '))},
        {"quotes", repeats("\"", opening)},
        {"keywords, the last one open", repeats(keyword, "", opening)},
    };
    for (const auto& [name, make] : texts)
        cases.push_back(textCase("markers: " + name, make, translate));
}

void addGuidCases(std::vector<ScalingCase>& cases) {
    const TextReader read = [](std::string& text) {
        sink = rgen::isGuidText(rgen::toLowerCopy(text));
    };
    const std::string guid = rgen::formatGuid(rgen::defaultReportTypeGuid);
    cases.push_back(textCase("GUID: digits", repeats("a"), read));
    cases.push_back(textCase("GUID: hyphens", repeats("-"), read));
    cases.push_back(textCase("GUID: groups", repeats("dead-", guid), read));
    cases.push_back(textCase("GUID: blanks after one", repeats(" ", guid), read));
    cases.push_back(textCase("GUID: one after the other", repeats(guid), read));
}

void addByteDumpCases(std::vector<ScalingCase>& cases) {
    const std::vector<std::pair<std::string, TextMaker>> texts = {
        {"bytes", repeats("0x4a,", "", "0x00")},
        {"zeros", repeats("0x00,", "", "0x00")},
        {"blanks before a byte", repeats(" ", "", "0x00")},
        {"blanks after a byte", repeats(" ", "0x00")},
        {"blanks around commas", repeats("0x00" + std::string(99, ' ') + ",\t", "", "0x00")},
        {"blanks alone", repeats("\n")},
        {"commas", repeats(",", "0x00")},
        {"no comma", repeats("0x00 ")},
        {"no comma at the end", repeats("0x00 ,", "", "0x00 0x00")},
        {"digits", repeats("0", "0x00,")},
        {"open at the end", repeats("0x4a,", "", "0x4")},
    };
    for (const auto& [name, make] : texts) {
        const std::string prefix = "byte dump: " + name;
        cases.push_back(textCase(prefix + ", checked", make,
                                 [](std::string& text) { sink = rgen::isValidByteDump(text); }));
        // The parser reports invalid dumps on standard output.
        if (!rgen::isValidByteDump(make(usualBytes))) continue;
        cases.push_back(textCase(prefix + ", read", make, [](std::string& text) {
            rgen::ByteVector bytes;
            sink = rgen::parseByteDump(text, bytes);
        }));
    }
}

void addPathCases(std::vector<ScalingCase>& cases) {
    const TextReader read = [](std::string& text) { sink = rgen::endsInSeparator(text); };
    for (const std::string part : {"/", "a", "a/", "\n", " "}) {
        const std::string shown = part == "\n" ? "line breaks" : "\"" + part + "\"";
        cases.push_back(textCase("end of a path: " + shown, repeats(part, "", "/"), read));
        cases.push_back(
            textCase("end of a path: " + shown + " without one", repeats(part, "", "a"), read));
    }
    // No path is longer than 4,095 bytes.
    cases.push_back({"data directory: separators", usualEntries, [](std::size_t size) {
                         return [path = std::string(size + 1, '/')] {
                             rgen::ReportGenerator generator;
                             sink = rgen::failed(rgen::setDataDir(generator, path));
                         };
                     }});
}

void addCommandLineCase(std::vector<ScalingCase>& cases) {
    // Without a word nothing is started.
    cases.push_back(textCase("command line: blanks", repeats(" "), [](std::string& text) {
        sink = rgen::platform::ChildProcess(text).started();
    }));
}

void requireUtf8(std::string& text) {
    try {
        rgen::platform::requireUtf8(text);
    } catch (const std::range_error&) {
        sink = false;
    }
}

void addUtf8Cases(std::vector<ScalingCase>& cases) {
    const std::vector<std::pair<std::string, std::string>> parts = {
        {"ASCII", "a"},
        {"two bytes", "\xC3\xA4"},
        {"three bytes", "\xE2\x82\xAC"},
        {"four bytes", "\xF0\x9F\x98\x80"},
        {"mixed lengths", "a\xC3\xA4 aaaaaaaaaaaaaaa\xE2\x82\xAC"},
    };
    for (const auto& [name, part] : parts) {
        const TextMaker make = repeats(part);
        cases.push_back(textCase("UTF-8: " + name, make, requireUtf8));
        cases.push_back(textCase(
            "UTF-8: " + name + ", cut off",
            [make](std::size_t size) { return make(size) + "\xE2\x82"; }, requireUtf8));
    }
}

void addTrimmingCases(std::vector<ScalingCase>& cases) {
    const TextReader read = [](std::string& text) {
        sink = rgen::trimmedXmlText(rgen::xmlText(text.c_str())).empty();
    };
    cases.push_back(textCase("trimming: blanks", repeats(" "), read));
    cases.push_back(textCase("trimming: blanks before a text", repeats(" \t\n", "", "x"), read));
    cases.push_back(textCase("trimming: blanks after a text", repeats(" \t\n", "x"), read));
    cases.push_back(textCase("trimming: blanks between texts", repeats("x \t\n"), read));
}

}  // namespace

std::vector<ScalingCase> textCases() {
    std::vector<ScalingCase> cases;
    addMarkerCases(cases);
    addGuidCases(cases);
    addByteDumpCases(cases);
    addPathCases(cases);
    addCommandLineCase(cases);
    addUtf8Cases(cases);
    addTrimmingCases(cases);
    return cases;
}

}  // namespace rgen_test
