// The texts in which the XSLT processor reports mistakes: first the place, then the message.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <libxml/tree.h>

#include <cstdarg>
#include <cstddef>
#include <string>

namespace cli {

/// The text of the arguments of a message function.
std::string formatted(const char* format, std::va_list arguments);

/// Line ends become blanks, those at the end are removed.
std::string inOneLineOf(std::string text);

/// Whether a text names the place of the next message: "compilation error: file t.xsl line 5
/// element value-of".
bool namesPlace(const std::string& text);

/// The line in such a text about a NamedDocument; 0 for a text about another file.
std::size_t lineIn(const std::string& place);

/// While it exists, a document has the empty text as its name. The processor shows lines only for
/// documents with a name.
class NamedDocument {
public:
    explicit NamedDocument(xmlDoc* document);
    ~NamedDocument();
    NamedDocument(const NamedDocument&) = delete;
    NamedDocument& operator=(const NamedDocument&) = delete;

private:
    xmlDoc* document_;
};

}  // namespace cli
