// SPDX-License-Identifier: MIT
#include "base/text_table.h"

#include <algorithm>

namespace cli {
namespace {

std::size_t charactersIn(const std::string& text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
    }));
}

}  // namespace

bool TextTable::isNumeric(std::size_t column) const {
    return std::all_of(rows_.begin() + 1, rows_.end(), [column](const auto& row) {
        return row[column].find_first_not_of("0123456789") == std::string::npos;
    });
}

std::size_t TextTable::width(std::size_t column) const {
    std::size_t widest = 0;
    for (const std::vector<std::string>& row : rows_)
        widest = std::max(widest, charactersIn(row[column]));
    return widest;
}

std::string TextTable::text() const {
    std::string lines;
    for (const std::vector<std::string>& row : rows_) {
        std::string line;
        for (std::size_t column = 0; column < row.size(); ++column) {
            const std::string gap(width(column) - charactersIn(row[column]), ' ');
            line += (column == 0 ? "" : "  ");
            line += isNumeric(column) ? gap + row[column] : row[column] + gap;
        }
        lines += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
    }
    return lines;
}

}  // namespace cli
