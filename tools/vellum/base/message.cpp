// The one place where messages are written.
//
// SPDX-License-Identifier: MIT
#include "base/message.h"

#include <cstdio>

#include "text/printable_text.h"

namespace vellum {

void say(const std::string& text) {
    std::fputs(("vellum: " + tools::printable(text) + "\n").c_str(), stderr);
}

void warn(const std::string& text) {
    say("warning: " + text);
}

}  // namespace vellum
