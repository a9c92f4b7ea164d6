// Reads and saves XML files at exactly the given path.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "store/xml/handles.h"

namespace rgen {

/// Parses a file; libxml2 recovers as much of a malformed one as it can. Null when the file cannot
/// be read, when nothing of it parses, and for devices, pipes and sockets. Throws std::range_error
/// for a path that is not valid UTF-8.
XmlPtr<xmlDoc> readXmlFile(const std::string& path);

/// Saves a document indented, as UTF-8. Returns false on failure, also for a null document, and
/// then leaves no partial file. Throws std::range_error for a path that is not valid UTF-8.
bool saveXmlFile(const std::string& path, xmlDoc* document);

}  // namespace rgen
