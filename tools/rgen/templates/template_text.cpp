// SPDX-License-Identifier: MIT
#include "templates/template_text.h"

#include <algorithm>

#include "text/utf8.h"

namespace cli {
namespace {

constexpr std::size_t byteOrderMarkSize = 3;

bool hasByteOrderMark(const std::string& text) {
    return text.compare(0, byteOrderMarkSize, "\xEF\xBB\xBF") == 0;
}

bool beginsCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
}

}  // namespace

LineIndex::LineIndex(const std::string& text) : text_(text) {
    starts_.push_back(hasByteOrderMark(text) ? byteOrderMarkSize : 0);
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\n') starts_.push_back(i + 1);
    }
}

std::size_t LineIndex::lineIndexAt(std::size_t offset) const {
    const auto next = std::upper_bound(starts_.begin() + 1, starts_.end(), offset);
    return static_cast<std::size_t>(next - starts_.begin()) - 1;
}

TextPosition LineIndex::position(std::size_t offset) const {
    const std::size_t line = lineIndexAt(offset);
    TextPosition position;
    position.line = line + 1;
    for (std::size_t i = starts_[line]; i < std::min(offset, text_.size()); ++i) {
        if (beginsCharacter(text_[i])) ++position.column;
    }
    return position;
}

std::string LineIndex::lineAt(std::size_t offset) const {
    const std::size_t begin = starts_[lineIndexAt(offset)];
    std::size_t end = std::min(text_.find('\n', begin), text_.size());
    if (end > begin && text_[end - 1] == '\r') --end;
    return text_.substr(begin, end - begin);
}

std::size_t LineIndex::offsetOfLine(std::size_t line) const {
    if (line == 0) return 0;
    return line <= starts_.size() ? starts_[line - 1] : text_.size();
}

TemplateText::TemplateText(std::string path, std::string original, const Translate& translate)
    : path_(std::move(path)), original_(std::move(original)), lines_(original_) {
    std::size_t copied = 0;
    for (TranslationMarker& marker : findMarkers(original_)) {
        text_.append(original_, copied, marker.begin - copied);
        Replacement replacement;
        replacement.begin = text_.size();
        text_ += translate ? translate(marker.message) : marker.message;
        replacement.end = text_.size();
        copied = marker.end;
        replacement.marker = std::move(marker);
        replacements_.push_back(std::move(replacement));
    }
    text_.append(original_, copied, std::string::npos);
    marks_ = std::make_shared<BundleMarks>(path_, original_);
}

TemplateText TemplateText::read(const std::string& path, const std::string& hint,
                                const Translate& translate) {
    return TemplateText(path, readInputFile(path, hint), translate);
}

const TemplateText::Replacement* TemplateText::replacementAt(std::size_t offset) const {
    const auto next =
        std::upper_bound(replacements_.begin(), replacements_.end(), offset,
                         [](std::size_t at, const Replacement& one) { return at < one.begin; });
    if (next == replacements_.begin()) return nullptr;
    const Replacement& previous = *(next - 1);
    return offset < previous.end ? &previous : nullptr;
}

std::size_t TemplateText::originalOffset(std::size_t offset) const {
    const auto next =
        std::upper_bound(replacements_.begin(), replacements_.end(), offset,
                         [](std::size_t at, const Replacement& one) { return at < one.begin; });
    if (next == replacements_.begin()) return std::min(offset, original_.size());
    const Replacement& previous = *(next - 1);
    if (offset >= previous.end) return previous.marker.end + (offset - previous.end);
    const std::size_t inside = offset - previous.begin;
    const bool isMessage =
        text_.compare(previous.begin, previous.end - previous.begin, previous.marker.message) == 0;
    return previous.marker.messageBegin + (isMessage ? inside : 0);
}

Finding TemplateText::at(std::size_t begin, std::size_t end, Finding finding) const {
    const std::size_t last = end > begin ? end - 1 : begin;
    return atOriginal(originalOffset(begin), originalOffset(last) + 1, std::move(finding));
}

Finding TemplateText::atOriginal(std::size_t begin, std::size_t end, Finding finding) const {
    finding.file = path_;
    finding.position = lines_.position(begin);
    finding.sourceLine = lines_.lineAt(begin);
    finding.length = 0;
    for (std::size_t i = begin; i < std::min(end, original_.size()) && original_[i] != '\n'; ++i) {
        if (beginsCharacter(original_[i])) ++finding.length;
    }
    if (const auto origin = marks_->originOf(finding.position.line, finding.sourceLine)) {
        finding.file = origin->file;
        finding.position.line = origin->line;
        finding.sourceLine = origin->text;
    }
    return finding;
}

}  // namespace cli
