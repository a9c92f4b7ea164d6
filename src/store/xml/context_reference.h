// A reference to the context of the XML libraries, without the headers of these libraries.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

namespace rgen {

class XmlParserContext;

struct XmlParserContextRelease {
    void operator()(XmlParserContext* context) const noexcept;
};

/// Keeps the XML libraries initialised while it lives. Unlike a shared pointer, it needs no memory
/// of its own.
using XmlParserContextReference = std::unique_ptr<XmlParserContext, XmlParserContextRelease>;

}  // namespace rgen
