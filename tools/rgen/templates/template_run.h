// Compiling and running a template with rgen's own copies of the XML libraries, by the rules of the
// report library: the same report comes out, and what the libraries say about it is kept.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "templates/markup_scanner.h"

namespace cli {

/// What the XSLT processor says about a template.
struct ProcessorMessage {
    /// In one line.
    std::string text;
    /// The element, as an index in the document order of all elements of the template, or
    /// noElement.
    std::size_t element = noElement;
    /// The line in which the start tag of its element ends; 0 when it is not known.
    std::size_t line = 0;
    /// Of a mistake in an expression; otherwise empty.
    std::string expression;
    /// Where the parser of the expression stopped, in bytes.
    std::size_t expressionOffset = 0;
};

/// The text of an xsl:message.
struct TemplateMessage {
    std::string text;
    std::size_t element = noElement;
    /// It ended the report.
    bool terminates = false;
};

/// How often an xsl:value-of ran, and what it wrote.
struct WrittenTexts {
    std::size_t all = 0;
    std::size_t empty = 0;
    std::size_t notNumbers = 0;
};

/// Elements are indices in the document order of the template's elements.
struct TemplateRun {
    enum class Outcome { Done, NotCompiled, NotApplied, NoResult };

    Outcome outcome = Outcome::Done;
    /// The report.
    std::string result;
    std::vector<ProcessorMessage> errors;
    std::vector<TemplateMessage> messages;
    /// The xsl:template elements that had called each other when the depth became too large, from
    /// the innermost on; empty for another outcome.
    std::vector<std::size_t> callChain;
    /// The xsl:template elements that ran.
    std::set<std::size_t> reachedTemplates;
    /// By xsl:value-of elements.
    std::map<std::size_t, WrittenTexts> texts;
};

/// Only compiles: the outcome is Done or NotCompiled. `text` is the template as the parser reads
/// it, with its markers replaced.
TemplateRun compileTemplate(const std::string& text);

/// Transforms a data document.
TemplateRun runTemplate(const std::string& text, const std::string& dataDocument);

}  // namespace cli
