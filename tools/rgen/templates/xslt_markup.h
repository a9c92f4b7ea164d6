// XSLT in scanned markup: what can be said about a stylesheet without parsing it.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include "templates/markup_scanner.h"

namespace cli {

/// "xsl:" when the root element binds "xsl" to the namespace of XSLT; "xsl:" also without any.
std::string xsltPrefix(std::string_view text, const Markup& markup);

/// The value of an attribute with its references replaced; empty when it is absent.
std::string valueOf(std::string_view text, const MarkupElement& element,
                    std::string_view attribute);

}  // namespace cli
