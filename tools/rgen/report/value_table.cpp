// A dump is the only way to get the text of a value from the library.
//
// SPDX-License-Identifier: MIT
#include "report/value_table.h"

#include <algorithm>

#include "base/console.h"
#include "base/interruption.h"
#include "data/xml_documents.h"

namespace cli {
namespace {

std::string padded(const std::string& text, std::size_t width) {
    const auto isFirstByte = [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
    };
    const auto characters =
        static_cast<std::size_t>(std::count_if(text.begin(), text.end(), isFirstByte));
    return text + std::string(characters < width ? width - characters : 0, ' ');
}

std::string tableRow(const std::string& name, const std::string& source, const std::string& hint,
                     const std::string& text) {
    constexpr std::size_t nameWidth = 28;
    constexpr std::size_t sourceWidth = 24;
    constexpr std::size_t hintWidth = 8;
    return padded(name, nameWidth) + "  " + padded(source, sourceWidth) + "  " +
           padded(hint, hintWidth) + "  " + text + "\n";
}

}  // namespace

std::vector<ValueRow> valueRows(repgen::Generator& generator, const ReportType& type,
                                const ReportInput& input) {
    RgenStatus status = RGEN_OK;
    ValueSet merged;
    for (Value& value : persistentValues(generator, type.guid, status))
        merged.replace(std::move(value));
    for (const ValueSet* set : {&input.pairs, &input.values}) {
        for (const auto& [name, value] : set->values())
            merged.replace(value);
    }
    if (merged.empty()) return {};
    const TemporaryFolder folder;
    const std::string dump = folder.file("values.xml");
    try {
        generator.dump(libraryValues(merged), dump);
    } catch (const repgen::StatusError& error) {
        throw statusFailure(dump, error.status(), "check the temporary folder");
    }
    std::map<std::string, std::string> texts = readDump(dump);
    std::vector<ValueRow> shown;
    for (const auto& [name, value] : merged.values())
        shown.push_back({value, texts[name]});
    return shown;
}

std::string valueTable(const std::vector<ValueRow>& values) {
    constexpr std::size_t longestText = 100;
    std::string table = tableRow("name", "from", "hint", "text");
    for (const ValueRow& shown : values) {
        table += tableRow(inOneLine(shown.value.name), inOneLine(shown.value.source),
                          hintName(shown.value), shortened(shown.text, longestText));
    }
    return table;
}

}  // namespace cli
