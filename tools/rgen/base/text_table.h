// Tables of texts with aligned columns.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace cli {

class TextTable {
public:
    explicit TextTable(const std::vector<std::string>& head) : rows_{head} {}

    /// As many cells as the head has.
    void add(const std::vector<std::string>& row) { rows_.push_back(row); }

    /// The lines, with two blanks between columns; columns of numbers are aligned to the right.
    std::string text() const;

private:
    bool isNumeric(std::size_t column) const;
    std::size_t width(std::size_t column) const;

    std::vector<std::vector<std::string>> rows_;
};

}  // namespace cli
