// SPDX-License-Identifier: MIT
#include "templates/processor_texts.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "data/xml_nodes.h"

namespace cli {

std::string formatted(const char* format, std::va_list arguments) {
    std::va_list copy;
    va_copy(copy, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, copy);
    va_end(copy);
    if (length <= 0) return {};
    std::string text(static_cast<std::size_t>(length) + 1, '\0');
    std::vsnprintf(text.data(), text.size(), format, arguments);
    text.resize(static_cast<std::size_t>(length));
    return text;
}

std::string inOneLineOf(std::string text) {
    std::replace(text.begin(), text.end(), '\n', ' ');
    while (!text.empty() && text.back() == ' ')
        text.pop_back();
    return text;
}

bool namesPlace(const std::string& text) {
    for (const char* const kind : {"compilation error", "runtime error", "error"}) {
        const std::size_t length = std::strlen(kind);
        const bool begins = text.compare(0, length, kind) == 0;
        if (begins && (text[length] == '\n' || text.compare(length, 2, ": ") == 0)) return true;
    }
    return false;
}

std::size_t lineIn(const std::string& place) {
    static const std::string words = ": file  line ";
    const std::size_t at = place.find(words);
    return at == std::string::npos ? 0
                                   : std::strtoul(place.c_str() + at + words.size(), nullptr, 10);
}

NamedDocument::NamedDocument(xmlDoc* document) : document_(document) {
    document_->URL = xmlStrdup(xmlText(""));
}

NamedDocument::~NamedDocument() {
    xmlFree(const_cast<xmlChar*>(document_->URL));
    document_->URL = nullptr;
}

}  // namespace cli
