// SPDX-License-Identifier: MIT
#include "templates/config_entry.h"

#include "base/command_error.h"
#include "templates/markup_scanner.h"

namespace cli {
namespace {

std::string rowOf(const ConfigEntry& entry) {
    return "    <type guid=\"" + entry.guid + "\">\n      <persistDataFile>" +
           entry.persistDataFile + "</persistDataFile>\n      <reportTypeFile>" +
           entry.reportTypeFile + "</reportTypeFile>\n    </type>\n";
}

}  // namespace

std::string newConfiguration(const ConfigEntry& entry) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<config>\n  <reportTypes>\n" +
           rowOf(entry) + "  </reportTypes>\n</config>\n";
}

std::string withReportType(const std::string& config, const ConfigEntry& entry,
                           const std::string& path) {
    const Markup markup = scanMarkup(config);
    for (const MarkupElement& element : markup.elements) {
        if (element.name != "reportTypes" || !markup.problems.empty()) continue;
        std::string changed = config;
        if (element.endTag.size() == 0) {
            changed.replace(element.startTag.begin, element.startTag.size(),
                            "<reportTypes>\n" + rowOf(entry) + "  </reportTypes>");
            return changed;
        }
        // The rows stay in lines of their own.
        const std::size_t lineBegin = config.rfind('\n', element.endTag.begin) + 1;
        const bool isAlone = config.find_first_not_of(" \t", lineBegin) == element.endTag.begin;
        const std::size_t at = isAlone ? lineBegin : element.endTag.begin;
        return changed.insert(at, (isAlone ? "" : "\n") + rowOf(entry));
    }
    throw usageError("\"" + path + "\" has no well-formed list \"reportTypes\"",
                     "\"rgen doctor\" says what is wrong with it");
}

}  // namespace cli
