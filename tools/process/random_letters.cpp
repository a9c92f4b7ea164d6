// Names that nobody can foresee.
//
// SPDX-License-Identifier: MIT
#include <random>

#include "process/child_process.h"

namespace tools {

std::string randomLetters() {
    constexpr char letters[] = "abcdefghijklmnopqrstuvwxyz0123456789";
    std::random_device source;
    std::uniform_int_distribution<std::size_t> place(0, sizeof letters - 2);
    std::string text(16, ' ');
    for (char& letter : text)
        letter = letters[place(source)];
    return text;
}

}  // namespace tools
