// Reading and saving XML files at exactly the path that is named.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "store/xml/handles.h"

namespace rgen {

/// Parses a file as far as libxml2 can recover it. Null when the file cannot be read or nothing of
/// it parses, and for devices, pipes and sockets. Throws std::range_error for a path that is not
/// valid UTF-8.
XmlPtr<xmlDoc> readXmlFile(const std::string& path);

/// Saves a document indented, as UTF-8. On failure false, and no half file stays behind. A null
/// document is a failure. Throws std::range_error for a path that is not valid UTF-8.
bool saveXmlFile(const std::string& path, xmlDoc* document);

}  // namespace rgen
