// Texts made of pieces, for comparing two ways of reading the same grammar: all short sequences of
// the pieces, and longer ones by chance with a fixed seed.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_UNIT_RANDOM_TEXT_H
#define RGEN_TESTS_UNIT_RANDOM_TEXT_H

#include <cstddef>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace rgen_test {

using TextVisitor = std::function<void(const std::string&)>;

// Visits every sequence of at most so many pieces, the empty one too.
inline void visitSequences(const std::vector<std::string>& pieces, std::size_t longest,
                           const TextVisitor& visit, const std::string& start = std::string()) {
    visit(start);
    if (longest == 0) return;
    for (const std::string& piece : pieces) {
        visitSequences(pieces, longest - 1, visit, start + piece);
    }
}

// Visits that many sequences of at most so many pieces; the same ones in every run.
inline void visitRandomTexts(const std::vector<std::string>& pieces, std::size_t longest,
                             std::size_t count, const TextVisitor& visit) {
    std::mt19937 random(20240229);
    for (std::size_t i = 0; i < count; ++i) {
        std::string text;
        for (std::size_t length = random() % (longest + 1); length > 0; --length) {
            text += pieces[random() % pieces.size()];
        }
        visit(text);
    }
}

}  // namespace rgen_test

#endif
