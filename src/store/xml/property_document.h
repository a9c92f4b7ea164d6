// Named texts, and the XML document that holds them: the persistent data file and the data that a
// template sees have the same shape.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>
#include <unordered_map>
#include <utility>

#include "memory/pool_allocator.h"
#include "store/xml/handles.h"

namespace rgen {

/// Texts by property name. The traversal order is the container's own; nothing may depend on it.
using PropertyMap =
    std::unordered_map<std::string, std::string, std::hash<std::string>, std::equal_to<>,
                       memory::PoolAllocator<std::pair<const std::string, std::string>>>;

/// Builds data/properties/property[@name] with one property for each entry, in map order. Texts are
/// read as XML content ("&amp;" is a reference), names are plain. Null, or a document with parts
/// missing, when memory is exhausted.
XmlPtr<xmlDoc> buildPropertyDocument(const PropertyMap& properties);

}  // namespace rgen
