// The one place where messages are written.
//
// SPDX-License-Identifier: MIT
#include "message.h"

#include <cstdio>

#include "process/plain_text.h"

namespace vellum {

void say(const std::string& text) {
    std::fputs(("vellum: " + tools::printable(text) + "\n").c_str(), stderr);
}

void warn(const std::string& text) {
    say("warning: " + text);
}

}  // namespace vellum
