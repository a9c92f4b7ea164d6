// Clean-up of libxml2 when the shared library is unloaded. libxml2 leaves this to programs that
// replace its memory functions; without it, a thread that ends later would run unloaded code.
//
// SPDX-License-Identifier: MIT
#include <libxml/parser.h>

namespace {

/// Runs when the library is unloaded or the process ends.
[[gnu::destructor]] void releaseXmlLibrary() {
    xmlCleanupParser();
}

}  // namespace
