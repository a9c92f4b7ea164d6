// Finds the common lines by Myers' algorithm (An O(ND) Difference Algorithm and Its Variations).
//
// SPDX-License-Identifier: MIT
#include "base/line_diff.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "base/console.h"
#include "base/text_functions.h"

namespace cli {
namespace {

using Lines = std::vector<std::string_view>;

/// Lines [begin, end) of both texts that differ as a whole; one of the ranges may be empty.
struct Change {
    std::size_t oldBegin = 0;
    std::size_t oldEnd = 0;
    std::size_t newBegin = 0;
    std::size_t newEnd = 0;

    std::size_t removed() const { return oldEnd - oldBegin; }
    std::size_t added() const { return newEnd - newBegin; }
    std::size_t lines() const { return std::max(removed(), added()); }
};

Lines linesOf(std::string_view text) {
    Lines lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size() - 1) + 1;
        lines.push_back(text.substr(0, end));
        text.remove_prefix(end);
    }
    return lines;
}

/// The shortest way from the old lines to the new ones.
class ShortestEdit {
public:
    ShortestEdit(const Lines& before, const Lines& after) : before_(before), after_(after) {}

    std::vector<Change> changes() {
        while (first_ < std::min(before_.size(), after_.size()) &&
               before_[first_] == after_[first_])
            ++first_;
        oldSize_ = static_cast<int>(before_.size() - first_);
        newSize_ = static_cast<int>(after_.size() - first_);
        trimEnd();
        if (oldSize_ == 0 && newSize_ == 0) return {};
        const int edits = search();
        if (edits < 0) return {wholeChange()};
        walkBack(edits);
        std::reverse(changes_.begin(), changes_.end());
        return std::move(changes_);
    }

private:
    /// More differences than this are shown as one.
    static constexpr int mostEdits = 1000;

    void trimEnd() {
        while (oldSize_ > 0 && newSize_ > 0 && isSame(oldSize_ - 1, newSize_ - 1)) {
            --oldSize_;
            --newSize_;
        }
    }

    bool isSame(int oldLine, int newLine) const {
        return before_[first_ + static_cast<std::size_t>(oldLine)] ==
               after_[first_ + static_cast<std::size_t>(newLine)];
    }

    Change wholeChange() const {
        return {first_, first_ + static_cast<std::size_t>(oldSize_), first_,
                first_ + static_cast<std::size_t>(newSize_)};
    }

    static std::size_t at(int diagonal) {
        return static_cast<std::size_t>(mostEdits + 1 + diagonal);
    }

    /// Of two ways to a diagonal, whether the one by an added line gets further.
    static bool comesFromAddition(const std::vector<int>& furthest, int diagonal, int edits) {
        return diagonal == -edits ||
               (diagonal != edits && furthest[at(diagonal - 1)] < furthest[at(diagonal + 1)]);
    }

    /// The number of edits, or -1 for too many. Keeps the state before each of them.
    int search() {
        std::vector<int> furthest(at(mostEdits + 1) + 1, 0);
        for (int edits = 0; edits <= mostEdits; ++edits) {
            states_.emplace_back(furthest.begin() + static_cast<std::ptrdiff_t>(at(-edits - 1)),
                                 furthest.begin() + static_cast<std::ptrdiff_t>(at(edits + 1) + 1));
            for (int diagonal = -edits; diagonal <= edits; diagonal += 2) {
                int oldLine = comesFromAddition(furthest, diagonal, edits)
                                  ? furthest[at(diagonal + 1)]
                                  : furthest[at(diagonal - 1)] + 1;
                int newLine = oldLine - diagonal;
                while (oldLine < oldSize_ && newLine < newSize_ && isSame(oldLine, newLine)) {
                    ++oldLine;
                    ++newLine;
                }
                furthest[at(diagonal)] = oldLine;
                if (oldLine >= oldSize_ && newLine >= newSize_) return edits;
            }
        }
        return -1;
    }

    void walkBack(int edits) {
        int oldLine = oldSize_;
        int newLine = newSize_;
        for (; edits > 0; --edits) {
            const std::vector<int>& state = states_[static_cast<std::size_t>(edits)];
            const auto furthest = [&state, edits](int diagonal) {
                return state[static_cast<std::size_t>(diagonal + edits + 1)];
            };
            const int diagonal = oldLine - newLine;
            const bool isAddition =
                diagonal == -edits ||
                (diagonal != edits && furthest(diagonal - 1) < furthest(diagonal + 1));
            const int previous = isAddition ? diagonal + 1 : diagonal - 1;
            oldLine = furthest(previous);
            newLine = oldLine - previous;
            addEdit(static_cast<std::size_t>(oldLine), static_cast<std::size_t>(newLine),
                    isAddition);
        }
    }

    /// Edits come from the last to the first.
    void addEdit(std::size_t oldLine, std::size_t newLine, bool isAddition) {
        oldLine += first_;
        newLine += first_;
        const Change edit = {oldLine, oldLine + (isAddition ? 0U : 1U), newLine,
                             newLine + (isAddition ? 1U : 0U)};
        if (!changes_.empty() && changes_.back().oldBegin == edit.oldEnd &&
            changes_.back().newBegin == edit.newEnd) {
            changes_.back().oldBegin = edit.oldBegin;
            changes_.back().newBegin = edit.newBegin;
        } else {
            changes_.push_back(edit);
        }
    }

    const Lines& before_;
    const Lines& after_;
    /// The number of equal lines at the beginning, and of lines between those and the equal end.
    std::size_t first_ = 0;
    int oldSize_ = 0;
    int newSize_ = 0;
    std::vector<std::vector<int>> states_;
    std::vector<Change> changes_;
};

bool isContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

std::size_t characters(std::string_view text) {
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char byte) { return !isContinuation(byte); }));
}

/// A line without its end, made printable.
std::string printable(std::string_view line) {
    if (!line.empty() && line.back() == '\n') line.remove_suffix(1);
    return inOneLine(std::string(line));
}

/// The part of a printable line around a byte of it.
struct Excerpt {
    std::string text;
    /// Characters before that byte.
    std::size_t column = 0;
};

Excerpt excerptOf(const std::string& line, std::size_t place) {
    constexpr std::size_t before = 40;
    constexpr std::size_t longest = 110;
    if (line.size() <= longest) return {line, characters(line.substr(0, place))};
    std::size_t begin = place > before ? place - before : 0;
    while (begin > 0 && isContinuation(line[begin]))
        --begin;
    std::size_t end = std::min(begin + longest, line.size());
    while (end < line.size() && isContinuation(line[end]))
        ++end;
    const std::string start = begin > 0 ? "..." : "";
    const std::string text =
        start + line.substr(begin, end - begin) + (end < line.size() ? "..." : "");
    return {text, characters(start + line.substr(begin, place - begin))};
}

std::size_t firstDifference(const std::string& one, const std::string& other) {
    const std::size_t size = std::min(one.size(), other.size());
    std::size_t at = 0;
    while (at < size && one[at] == other[at])
        ++at;
    while (at > 0 && at < size && isContinuation(one[at]))
        --at;
    return at;
}

class DiffWriter {
public:
    DiffWriter(const Lines& before, const Lines& after, std::size_t mostLines)
        : before_(before), after_(after), mostLines_(mostLines) {}

    LineDiff write(const std::vector<Change>& changes) {
        std::size_t leftOut = 0;
        for (std::size_t i = 0; i < changes.size(); ++i) {
            diff_.changedLines += changes[i].lines();
            if (written_ >= mostLines_) {
                leftOut += changes[i].lines();
                continue;
            }
            const std::size_t next =
                i + 1 < changes.size() ? changes[i + 1].oldBegin : before_.size();
            leftOut += writeChange(changes[i], next);
        }
        if (leftOut > 0) add("  ... and " + countText(leftOut, "more line") + " that differ");
        return std::move(diff_);
    }

private:
    static constexpr std::size_t around = 2;

    void add(const std::string& line) {
        diff_.text += line + "\n";
        ++written_;
    }

    void writeSame(std::size_t begin, std::size_t end) {
        for (std::size_t line = begin; line < end; ++line)
            add("  " + excerptOf(printable(before_[line]), 0).text);
        shown_ = end;
    }

    /// Returns the number of lines for which there was no room.
    std::size_t writeChange(const Change& change, std::size_t nextChange) {
        const std::size_t from = change.oldBegin > around ? change.oldBegin - around : 0;
        if (written_ == 0 || from > shown_) {
            add("@@ line " + std::to_string(change.newBegin + 1));
            shown_ = from;
        }
        writeSame(shown_, change.oldBegin);
        const std::size_t leftOut =
            change.removed() == change.added() ? writePairs(change) : writeBlocks(change);
        shown_ = change.oldEnd;
        writeSame(shown_, std::min(change.oldEnd + around, nextChange));
        return leftOut;
    }

    std::size_t writePairs(const Change& change) {
        for (std::size_t i = 0; i < change.lines(); ++i) {
            if (written_ >= mostLines_) return change.lines() - i;
            const std::string before = printable(before_[change.oldBegin + i]);
            const std::string after = printable(after_[change.newBegin + i]);
            const std::size_t place = firstDifference(before, after);
            add("- " + excerptOf(before, place).text);
            const Excerpt shown = excerptOf(after, place);
            add("+ " + shown.text);
            add("  " + std::string(shown.column, ' ') + "^");
        }
        return 0;
    }

    std::size_t writeBlocks(const Change& change) {
        std::size_t leftOut = 0;
        const auto write = [this, &leftOut](const char* sign, std::string_view line) {
            if (written_ < mostLines_) {
                add(sign + excerptOf(printable(line), 0).text);
            } else {
                ++leftOut;
            }
        };
        for (std::size_t line = change.oldBegin; line < change.oldEnd; ++line)
            write("- ", before_[line]);
        for (std::size_t line = change.newBegin; line < change.newEnd; ++line)
            write("+ ", after_[line]);
        return leftOut;
    }

    const Lines& before_;
    const Lines& after_;
    std::size_t mostLines_;
    std::size_t written_ = 0;
    /// The old lines before this one have been written.
    std::size_t shown_ = 0;
    LineDiff diff_;
};

}  // namespace

LineDiff lineDiff(const std::string& expected, const std::string& actual, std::size_t mostLines) {
    const Lines before = linesOf(expected);
    const Lines after = linesOf(actual);
    const std::vector<Change> changes = ShortestEdit(before, after).changes();
    return DiffWriter(before, after, mostLines).write(changes);
}

}  // namespace cli
