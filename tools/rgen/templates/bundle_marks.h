// The instructions that "rgen bundle" leaves in a template, so that messages name the files that
// its author edits:
//
//   <?rgen-bundle source="../../../health.xsl" sum="0f3c..."?>   made from this file
//   <?rgen-part file="../../../parts/chart.xsl" line="12"?>      the next line is line 12 there
//
// Paths are relative to the folder of the bundled file.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace cli {

class LineIndex;

struct BundleHeader {
    std::string source;
    /// The folders that were given for parts.
    std::vector<std::string> partFolders;
    /// The checksum that the text after the instruction had when it was written.
    std::string sum;
    /// The checksum that it has.
    std::string actualSum;

    bool isEditedByHand() const { return sum != actualSum; }
};

/// The offset after the byte order mark and the XML declaration, if there are any.
std::size_t endOfDeclaration(const std::string& text);

/// Absent when "rgen bundle" did not make the text.
std::optional<BundleHeader> bundleHeader(const std::string& text);

/// The instruction that begins a bundle with this text after it.
std::string bundleInstruction(const std::string& source,
                              const std::vector<std::string>& partFolders,
                              const std::string& textAfterIt);

/// The instruction before a line of a part.
std::string partInstruction(const std::string& file, std::size_t line);

/// A line of the file that an author edits.
struct PartLine {
    std::string file;
    std::size_t line = 0;
    std::string text;
};

/// Where the lines of a bundled template come from.
class BundleMarks {
public:
    /// `path` is that of the bundled template.
    BundleMarks(const std::string& path, const std::string& text);
    ~BundleMarks();
    BundleMarks(const BundleMarks&) = delete;
    BundleMarks& operator=(const BundleMarks&) = delete;

    /// The origin of a line, counted from 1. Nothing when the text is no bundle, when the part does
    /// not exist, or when its line has changed since.
    std::optional<PartLine> originOf(std::size_t line, const std::string& lineText) const;

private:
    struct Mark {
        std::size_t line;
        std::string file;
        std::size_t partLine;
    };

    const LineIndex* linesOf(const std::string& file) const;

    std::vector<Mark> marks_;
    mutable std::map<std::string, std::unique_ptr<LineIndex>> files_;
};

}  // namespace cli
