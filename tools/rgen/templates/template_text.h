// A template as the library reads it: with its markers replaced. Every place in that text leads
// back to the template's own file.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "base/input_file.h"
#include "templates/bundle_marks.h"
#include "templates/finding.h"
#include "templates/translation_markers.h"

namespace cli {

/// The offset of each line of a text.
class LineIndex {
public:
    explicit LineIndex(const std::string& text);

    /// Lines and columns are counted from 1, columns in characters.
    TextPosition position(std::size_t offset) const;
    /// The line that contains the offset, without its line break.
    std::string lineAt(std::size_t offset) const;
    /// The offset at which a line begins; the size of the text when it has fewer lines.
    std::size_t offsetOfLine(std::size_t line) const;

private:
    std::size_t lineIndexAt(std::size_t offset) const;

    std::string text_;
    std::vector<std::size_t> starts_;
};

class TemplateText {
public:
    /// Returns the translation of a marker's message.
    using Translate = std::function<std::string(const std::string& message)>;

    /// Without `translate` each marker is replaced by its message.
    TemplateText(std::string path, std::string original, const Translate& translate = {});

    /// Reads the file. Throws a CommandError with `hint` when that is not possible.
    static TemplateText read(const std::string& path, const std::string& hint,
                             const Translate& translate = {});

    const std::string& path() const { return path_; }
    const std::string& original() const { return original_; }
    /// What the XML parser reads.
    const std::string& text() const { return text_; }

    /// A marker and the bytes of text() that replace it.
    struct Replacement {
        TranslationMarker marker;
        std::size_t begin = 0;
        std::size_t end = 0;
    };
    const std::vector<Replacement>& replacements() const { return replacements_; }

    /// The replacement that contains a byte of text(), or null.
    const Replacement* replacementAt(std::size_t offset) const;

    /// The byte of original() that a byte of text() comes from. For a byte of a translation this is
    /// the byte of the message, or the message's first one when the translation is another text.
    std::size_t originalOffset(std::size_t offset) const;

    /// The finding with the place of [begin, end) of text(): file, position, length, source line.
    Finding at(std::size_t begin, std::size_t end, Finding finding) const;

    /// The same for [begin, end) of original(). In a bundled template this is the part's place.
    Finding atOriginal(std::size_t begin, std::size_t end, Finding finding) const;

    const LineIndex& lines() const { return lines_; }

private:
    std::string path_;
    std::string original_;
    LineIndex lines_;
    std::string text_;
    std::vector<Replacement> replacements_;
    /// Shared by copies, since it keeps the parts that it has read.
    std::shared_ptr<const BundleMarks> marks_;
};

}  // namespace cli
