// The regular expressions with which the hand-written matchers are compared. The expressions
// recurse for each character: short texts only.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_SUPPORT_EXPRESSION_ORACLES_H
#define RGEN_TESTS_SUPPORT_EXPRESSION_ORACLES_H

#include <cstdint>
#include <string>
#include <vector>

#include "strata_repgenlib/rgen.h"

namespace rgen_test {

// Translate callbacks for such comparisons: every message in angle brackets, and always a marker,
// since replacements are not searched again.
const char* RGEN_CALL markMessage(const char* text, void* context);
const char* RGEN_CALL giveMarker(const char* text, void* context);

// The text after the translation pass: search, replace, continue after the replacement.
std::string translatedByExpression(std::string text, RgenTranslateFunction translate);

bool isByteDumpByExpression(const std::string& text);

// The bytes of a text that is a byte dump.
std::vector<std::uint8_t> bytesByExpression(const std::string& text);

bool isGuidTextByExpression(const std::string& text);

// The rule for the end of a path whose separators are the platform's, which is `separator`.
bool endsInSeparatorByExpression(const std::string& path, char separator);

}  // namespace rgen_test

#endif
