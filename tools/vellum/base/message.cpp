// SPDX-License-Identifier: MIT
#include "base/message.h"

#include <cstdio>

#include "text/printable_text.h"

namespace vellum {

void printError(const std::string& text) {
    std::fputs(("vellum: " + tools::printable(text) + "\n").c_str(), stderr);
}

void printWarning(const std::string& text) {
    printError("warning: " + text);
}

}  // namespace vellum
