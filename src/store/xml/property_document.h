// Named texts, and the XML document that holds them: the persistent data file and the data that a
// template sees have the same shape.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>
#include <unordered_map>
#include <utility>

#include "store/xml/handles.h"
#include "store/xml/work_allocator.h"

namespace rgen {

/// Texts by property name. The order of iteration is unspecified; nothing may depend on it.
using PropertyMap =
    std::unordered_map<std::string, std::string, std::hash<std::string>, std::equal_to<>,
                       WorkAllocator<std::pair<const std::string, std::string>>>;

/// Builds data/properties/property[@name] with one property for each entry, in map order. Texts are
/// parsed as XML content ("&amp;" is a reference), names are plain text. Null, or a document with
/// parts missing, when memory is exhausted.
XmlPtr<xmlDoc> buildPropertyDocument(const PropertyMap& properties);

}  // namespace rgen
