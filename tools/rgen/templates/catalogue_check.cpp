// A translation becomes part of the template before that is parsed, so it can end the attribute or
// the string in which its marker is, or begin an expression there.
//
// SPDX-License-Identifier: MIT
#include "templates/catalogue_check.h"

#include <algorithm>
#include <map>

#include "base/xml_text.h"
#include "templates/marker_place.h"
#include "templates/message_collection.h"
#include "templates/template_files.h"

namespace cli {
namespace {

constexpr const char* pathHint = "check the data directory";

/// Findings at places of one catalogue.
class CatalogueFindings {
public:
    explicit CatalogueFindings(const CatalogueFile& catalogue)
        : catalogue_(catalogue), lines_(catalogue.content) {}

    void add(Severity severity, const char* code, std::size_t offset, std::string what,
             std::string advice) {
        Finding finding;
        finding.severity = severity;
        finding.code = code;
        finding.file = catalogue_.path;
        finding.position = lines_.position(offset);
        finding.sourceLine = lines_.lineAt(offset);
        finding.what = std::move(what);
        finding.advice = std::move(advice);
        findings_.add(std::move(finding));
    }

    std::size_t lineOf(std::size_t offset) const { return lines_.position(offset).line; }

    Findings take() { return std::move(findings_); }

private:
    const CatalogueFile& catalogue_;
    LineIndex lines_;
    Findings findings_;
};

/// What a translation does to the place of a marker.
struct Break {
    /// The sign in the translation that does it.
    std::string sign;
    std::string what;
    std::string advice;
};

std::string quotedSign(char sign) {
    return sign == '"' ? "'\"'" : "\"" + std::string(1, sign) + "\"";
}

std::string otherQuote(char quote) {
    return quote == '"' ? "write \xE2\x80\x9C and \xE2\x80\x9D" : "write \xE2\x80\x99";
}

std::optional<Break> quoteBreak(const std::string& content, char quote, const std::string& what) {
    if (quote == '\0' || content.find(quote) == std::string::npos) return std::nullopt;
    return Break{std::string(1, quote), quotedSign(quote) + " " + what, otherQuote(quote)};
}

/// The first brace that is not doubled, or zero.
char firstSingleBrace(const std::string& text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '{' && text[i] != '}') continue;
        if (i + 1 == text.size() || text[i + 1] != text[i]) return text[i];
        ++i;
    }
    return '\0';
}

/// An original with an expression has translations with one.
std::optional<Break> braceBreak(const std::string& original, const std::string& content) {
    const char brace = firstSingleBrace(content);
    if (brace == '\0') return std::nullopt;
    if (firstSingleBrace(original) == '{') {
        const auto opened = std::count(content.begin(), content.end(), '{');
        if (opened == std::count(content.begin(), content.end(), '}')) return std::nullopt;
        return Break{"{", "the expression is not closed", "write as many \"}\" as \"{\""};
    }
    if (brace == '{')
        return Break{"{", "\"{\" in an attribute begins an expression", "write \"{{\""};
    return Break{"}", "\"}\" in an attribute ends an expression", "write \"}}\""};
}

std::optional<Break> attributeBreak(const MarkerPlace& place, const std::string& original,
                                    const std::string& content) {
    const MarkupAttribute& attribute = *place.attribute;
    auto found =
        quoteBreak(content, attribute.quote, "ends the attribute \"" + attribute.name + "\"");
    if (found) return found;
    const std::string decoded = AttributeValue(content, {0, content.size()}).text();
    if (place.context == MarkerContext::XPathString)
        return quoteBreak(decoded, place.stringQuote, "ends the XPath string");
    if (place.context == MarkerContext::ValueTemplate) return braceBreak(original, decoded);
    return std::nullopt;
}

std::optional<Break> findBreak(const MarkerPlace& place, const PoEntry& entry) {
    const std::string& translation = entry.translations[0];
    const std::string content = translationContent(entry.id, translation);
    if (place.attribute != nullptr) return attributeBreak(place, entry.id, content);
    if (place.context == MarkerContext::CodeString)
        return quoteBreak(translation, place.stringQuote, "ends the string in the style or script");
    if (place.context == MarkerContext::Comment && content.find("--") != std::string::npos)
        return Break{"--", "a comment must not contain \"--\"", "write a single dash"};
    if (place.context == MarkerContext::CdataSection && content != translation) {
        return Break{"", "in a CDATA section references are shown as they are written",
                     "move the marker out of the section"};
    }
    return std::nullopt;
}

/// The place of the first sign in the translation, else of the msgstr.
std::size_t offsetOf(const PoEntry& entry, const std::string& sign) {
    const std::size_t at = sign.empty() ? std::string::npos : entry.translations[0].find(sign);
    return at < entry.translationPlaces.size() ? entry.translationPlaces[at]
                                               : entry.translationOffset;
}

/// The entries that reports use, by their texts.
std::map<std::string, const PoEntry*> usedEntries(const CatalogueFile& catalogue) {
    std::map<std::string, const PoEntry*> entries;
    for (const PoEntry& entry : catalogue.po.entries) {
        const bool isUsed = entry.isUsable() && !entry.id.empty();
        if (isUsed && mistakeInEntry(entry).empty()) entries[entry.id] = &entry;
    }
    return entries;
}

void addDuplicates(const CatalogueFile& catalogue, CatalogueFindings& findings) {
    std::map<std::string, std::size_t> lines;
    for (const PoEntry& entry : catalogue.po.entries) {
        if (entry.isObsolete) continue;
        const std::size_t line = findings.lineOf(entry.idOffset);
        const auto [known, isNew] =
            lines.emplace(entry.context.value_or("") + '\0' + entry.id, line);
        if (isNew) continue;
        findings.add(Severity::Warning, "duplicate-translation", entry.idOffset,
                     "this text has an entry in line " + std::to_string(known->second) + ", too",
                     "remove one of them");
    }
}

std::set<std::string> textsOf(const std::vector<PoEntry>& entries) {
    std::set<std::string> texts;
    for (const PoEntry& entry : entries)
        texts.insert(entry.id);
    return texts;
}

}  // namespace

Findings catalogueFileFindings(const CatalogueFile& catalogue) {
    CatalogueFindings findings(catalogue);
    if (catalogue.damage) {
        const CatalogueDamage& damage = *catalogue.damage;
        findings.add(Severity::Error, "broken-catalogue", damage.offset, damage.what,
                     damage.advice);
        return findings.take();
    }
    for (const PoEntry& entry : catalogue.po.entries) {
        const bool isUsed = entry.isUsable() || entry.isHeader();
        const std::string mistake = isUsed ? mistakeInEntry(entry) : "";
        if (mistake.empty()) continue;
        findings.add(Severity::Error, "broken-translation", entry.translationOffset, mistake,
                     entry.isHeader() ? "convert it with msgconv" : "correct the translation");
    }
    addDuplicates(catalogue, findings);
    return findings.take();
}

Findings translationFindings(const TemplateText& text, const Markup& markup,
                             const CatalogueFile& catalogue) {
    CatalogueFindings findings(catalogue);
    if (markup.elements.empty()) return {};
    const std::map<std::string, const PoEntry*> entries = usedEntries(catalogue);
    for (const TemplateText::Replacement& replacement : text.replacements()) {
        const auto found = entries.find(replacement.marker.message);
        if (found == entries.end()) continue;
        const PoEntry& entry = *found->second;
        const MarkerPlace place = markerPlace(text.text(), markup, replacement.begin);
        const std::optional<Break> broken = findBreak(place, entry);
        if (!broken) continue;
        const Severity severity =
            place.context == MarkerContext::CdataSection ? Severity::Warning : Severity::Error;
        findings.add(severity, "translation-breaks-place", offsetOf(entry, broken->sign),
                     broken->what, broken->advice);
    }
    return findings.take();
}

Findings staleFindings(const CatalogueFile& catalogue, const std::set<std::string>& texts) {
    CatalogueFindings findings(catalogue);
    for (const PoEntry& entry : catalogue.po.entries) {
        if (entry.isObsolete || entry.id.empty() || texts.count(entry.id) > 0) continue;
        findings.add(Severity::Note, "stale-translation", entry.idOffset,
                     "no template has this text", "\"rgen messages --merge\" makes it a comment");
    }
    return findings.take();
}

Findings catalogueFindings(const DataDirectory& directory, const ReportType& type) {
    Findings findings;
    for (const std::string& language : catalogueLanguages(directory, type)) {
        const std::string path = cataloguePath(directory, type, language);
        const CatalogueFile catalogue = CatalogueFile::load(path, pathHint);
        findings.add(catalogueFileFindings(catalogue));
        if (catalogue.damage) continue;
        for (const TemplateFile& file : templatesOf(directory, type)) {
            const TemplateText text = TemplateText::read(file.path, pathHint);
            findings.add(translationFindings(text, scanMarkup(text.text()), catalogue));
        }
        const CollectedTexts texts = collectTexts(directory, typesUsing(directory, path, language));
        findings.add(staleFindings(catalogue, textsOf(texts.entries)));
    }
    findings.sort();
    return findings;
}

}  // namespace cli
