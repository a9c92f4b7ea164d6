// Memory functions for the XML libraries.
//
// SPDX-License-Identifier: MIT
#pragma once

namespace rgen {

/// Sets the memory functions of libxml2, which libxslt uses as well. Call it before any other
/// function of these libraries.
void installXmlMemory();

/// Allocates libxml2's data of the calling thread, once for each thread. False when memory is
/// exhausted; libxml2 itself would then end the process.
bool hasXmlThreadState() noexcept;

/// Like hasXmlThreadState(), but throws std::bad_alloc.
void requireXmlThreadState();

}  // namespace rgen
