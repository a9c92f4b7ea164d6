// SPDX-License-Identifier: MIT
#include "report/known_template.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <string_view>
#include <system_error>
#include <utility>

#include "templates/markup_scanner.h"
#include "templates/template_text.h"
#include "templates/translation_markers.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

bool isMessage(const MarkupElement& element) {
    constexpr std::string_view name = "message";
    const std::string_view written = element.name;
    const std::size_t colon = written.find(':');
    return colon != std::string_view::npos && written.substr(colon + 1) == name;
}

bool isIn(const std::vector<TextRange>& ranges, std::size_t offset) {
    return std::any_of(ranges.begin(), ranges.end(),
                       [offset](const TextRange& range) { return range.contains(offset); });
}

Findings notesOf(const std::vector<UnmatchedMarker>& markers, const Markup& markup,
                 const TemplateText& text) {
    Findings notes;
    for (const UnmatchedMarker& marker : markers) {
        if (isIn(markup.comments, marker.begin)) continue;
        Finding note;
        note.severity = Severity::Note;
        note.code = "unmatched-marker";
        note.what = marker.what;
        note.advice = marker.advice;
        notes.add(text.atOriginal(marker.begin, marker.end, std::move(note)));
    }
    return notes;
}

/// The markup is scanned only for the few templates that need it.
void examine(const std::string& path, KnownTemplate& known) {
    const std::vector<UnmatchedMarker> markers = findUnmatchedMarkers(known.text);
    const bool mayHaveMessages = known.text.find(":message") != std::string::npos;
    if (markers.empty() && !mayHaveMessages) return;
    const Markup markup = scanMarkup(known.text);
    known.hasMessages = std::any_of(markup.elements.begin(), markup.elements.end(), isMessage);
    if (!markers.empty())
        known.unmatchedMarkers = notesOf(markers, markup, TemplateText(path, known.text));
}

}  // namespace

KnownTemplate* KnownTemplates::find(const std::string& path) {
    const fs::path file = fs::u8path(path);
    std::error_code failure;
    if (!fs::is_regular_file(file, failure)) return nullptr;
    Entry read;
    read.time = fs::last_write_time(file, failure);
    read.size = failure ? 0 : fs::file_size(file, failure);
    const auto found = entries_.find(path);
    const bool isCurrent = found != entries_.end() && found->second.time == read.time &&
                           found->second.size == read.size;
    if (isCurrent) return &found->second.known;
    std::ifstream stream(file, std::ios::binary);
    if (failure || !stream) return nullptr;
    read.known.text.assign(std::istreambuf_iterator<char>(stream), {});
    examine(path, read.known);
    return &entries_.insert_or_assign(path, std::move(read)).first->second.known;
}

}  // namespace cli
