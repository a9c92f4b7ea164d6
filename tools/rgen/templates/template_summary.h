// What a template uses: values, keys, texts to translate, formats of numbers.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "templates/template_text.h"
#include "templates/xpath_values.h"

namespace cli {

using Places = std::vector<TextPosition>;

struct ValueSummary {
    ValueRequest::Kind kind = ValueRequest::Kind::Name;
    std::string name;
    /// Guessed from how the value is used; empty for a text.
    std::string hint;
    Places places;
};

struct KeySummary {
    std::string name;
    std::string match;
    std::string use;
    TextPosition position;
    Places places;
};

struct TextSummary {
    std::string text;
    Places places;
};

struct TemplateSummary {
    /// Of xsl:output; empty when it does not say.
    std::string method;
    std::string encoding;
    /// By their names.
    std::vector<ValueSummary> values;
    /// In the order of their declarations.
    std::vector<KeySummary> keys;
    /// The marked texts, and the formats of format-number(), in the order of their first use.
    std::vector<TextSummary> texts;
    std::vector<TextSummary> numberFormats;
};

/// Throws a CommandError when the template is not well-formed.
TemplateSummary summaryOf(const TemplateText& text);

/// A JSON data file with a value for everything that the templates ask for by name, two entries for
/// each list. Its texts are the names of the values.
std::string skeletonOf(const std::vector<TemplateSummary>& templates);

}  // namespace cli
