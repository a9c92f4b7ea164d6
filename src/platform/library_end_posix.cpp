// The end of the shared library. libxml2 leaves its clean-up at the unloading to those who give it
// memory functions; without it, a thread that ends later would run code that is gone.
//
// SPDX-License-Identifier: MIT
#include <libxml/parser.h>

namespace {

/// Runs when the library is unloaded or the process ends.
[[gnu::destructor]] void releaseXmlLibrary() {
    xmlCleanupParser();
}

}  // namespace
