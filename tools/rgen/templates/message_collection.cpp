// SPDX-License-Identifier: MIT
#include "templates/message_collection.h"

#include <filesystem>
#include <map>

#include "base/command_error.h"
#include "base/input_file.h"
#include "templates/template_files.h"
#include "templates/template_text.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

constexpr const char* pathHint = "check the data directory";

/// "templates/html/health.xsl:12"; a name with blanks is put between marks, as gettext does.
std::string referenceTo(const Finding& place, const fs::path& base) {
    const fs::path path = fs::u8path(place.file);
    const fs::path inside = path.lexically_relative(base);
    std::string name = (inside.empty() ? path : inside).generic_u8string();
    if (name.find(' ') != std::string::npos) name = "\xE2\x81\xA8" + name + "\xE2\x81\xA9";
    return name + ":" + std::to_string(place.position.line);
}

class Collector {
public:
    explicit Collector(const DataDirectory& directory) : base_(fs::u8path(directory.path(""))) {}

    void add(const TemplateText& text) {
        for (const TemplateText::Replacement& replacement : text.replacements()) {
            const TranslationMarker& marker = replacement.marker;
            const Finding place = text.atOriginal(marker.begin, marker.end, Finding());
            const std::string reason = reasonAgainst(marker.message);
            if (reason.empty()) {
                addText(marker.message, referenceTo(place, base_));
            } else {
                texts_.notes.push_back(placeText(place.file, place.position) + ": " + reason);
            }
        }
    }

    CollectedTexts take() { return std::move(texts_); }

private:
    static std::string reasonAgainst(const std::string& message) {
        if (message.empty()) return "an empty text cannot be translated";
        return isPlainUtf8(message) ? "" : "the marked text is not valid UTF-8";
    }

    void addText(const std::string& message, const std::string& reference) {
        const auto [known, isNew] = indexes_.emplace(message, texts_.entries.size());
        if (isNew) {
            texts_.entries.emplace_back();
            texts_.entries.back().id = message;
        }
        std::vector<std::string>& references = texts_.entries[known->second].references;
        if (references.empty() || references.back() != reference) references.push_back(reference);
    }

    fs::path base_;
    std::map<std::string, std::size_t> indexes_;
    CollectedTexts texts_;
};

bool hasTemplate(const DataDirectory& directory, const ReportType& type) {
    try {
        return !templatesOf(directory, type).empty();
    } catch (const CommandError&) {
        return false;
    }
}

}  // namespace

CollectedTexts collectTexts(const DataDirectory& directory, const std::vector<ReportType>& types) {
    Collector collector(directory);
    for (const ReportType& type : types) {
        for (const TemplateFile& file : templatesOf(directory, type))
            collector.add(TemplateText::read(file.path, pathHint));
    }
    return collector.take();
}

std::vector<ReportType> typesUsing(const DataDirectory& directory, const std::string& catalogue,
                                   const std::string& language) {
    std::vector<ReportType> users;
    for (const ReportType& type : reportTypes(directory)) {
        if (cataloguePath(directory, type, language) != catalogue) continue;
        if (hasTemplate(directory, type)) users.push_back(type);
    }
    return users;
}

}  // namespace cli
