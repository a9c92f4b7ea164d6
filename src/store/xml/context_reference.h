// A reference to the context of the XML libraries, for those who only hold it.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

namespace rgen {

class XmlParserContext;

struct XmlParserContextRelease {
    void operator()(XmlParserContext* context) const noexcept;
};

/// Keeps the XML libraries initialised while it lives. Making and ending one needs no memory of its
/// own, unlike a shared pointer.
using XmlParserContextReference = std::unique_ptr<XmlParserContext, XmlParserContextRelease>;

}  // namespace rgen
