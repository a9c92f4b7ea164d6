// Contexts are ignored, of plural forms the first is used. Of several entries for one text the last
// one with a translation counts.
//
// SPDX-License-Identifier: MIT
#include "data/po_catalogue.h"

#include <string_view>

#include "base/command_error.h"
#include "base/console.h"
#include "base/input_file.h"
#include "base/xml_text.h"
#include "data/xml_documents.h"
#include "text/utf8.h"

namespace cli {
namespace {

constexpr const char* pathHint = "check the path given to --lang";
constexpr const char* correctIt = "correct the catalogue";

[[noreturn]] void failAt(const CatalogueFile& file, const CatalogueDamage& damage) {
    throw usageError(
        placeText(file.path, positionOf(file.content, damage.offset)) + ": " + damage.what,
        damage.advice);
}

/// The offset of the first byte that is not UTF-8; the size of the text without one.
std::size_t firstInvalidByte(const std::string& text) {
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = tools::sequenceLength(std::string_view(text).substr(i));
        if (length == 0 || text[i] == '\0') return i;
        i += length;
    }
    return text.size();
}

std::string charsetOf(const std::string& header) {
    constexpr std::string_view mark = "charset=";
    const std::size_t at = header.find(mark);
    if (at == std::string::npos) return "UTF-8";
    const std::size_t start = at + mark.size();
    return header.substr(start, header.find_first_of(" \t\n;", start) - start);
}

/// "CHARSET" is the placeholder of a template of catalogues.
std::string mistakeInHeader(const std::string& header) {
    const std::string charset = charsetOf(header);
    for (const char* const known : {"UTF-8", "utf-8", "CHARSET", "US-ASCII", "ASCII"}) {
        if (charset == known) return {};
    }
    return "the catalogue is in " + charset + " instead of UTF-8";
}

/// Such a character would make the template invalid XML, and only the author knows what was meant.
std::string unfitCharacterIn(const std::string& translation) {
    const std::string reason = invalidCharacterIn(translation);
    return reason.empty() ? std::string() : "the translation cannot be XML: " + reason;
}

/// Without markup in the original everything in the translation is escaped. If the original is not
/// well-formed itself (half of an element), the translation need not be either.
std::string brokenMarkupIn(const PoEntry& entry) {
    if (entry.id.find('<') == std::string::npos) return {};
    const std::string markup = translationContent(entry.id, entry.translations[0]);
    const std::string mistake = mistakeInContent(markup);
    if (mistake.empty() || !mistakeInContent(entry.id).empty()) return {};
    return "the translation is not well-formed: " + mistake;
}

}  // namespace

void PoCatalogue::addRaw(const PoEntry& entry, const CatalogueFile& file) {
    const std::string& translation = entry.translations[0];
    texts_[entry.id] = translation;
    const std::string mistake = mistakeInContent(translation);
    if (mistake.empty() || mistakes_++ > 0) return;
    const TextPosition place = positionOf(file.content, entry.translationOffset);
    firstMistake_ = placeText(path_, place) + ": " + mistake;
}

void PoCatalogue::noteMistakes(Console& console) const {
    if (mistakes_ == 0) return;
    const char* const are = mistakes_ == 1 ? " translation is" : " translations are";
    console.note(
        std::to_string(mistakes_) + are +
        " not well-formed, and with --raw a part of the template may be lost: " + firstMistake_);
}

CatalogueFile CatalogueFile::load(const std::string& path, const std::string& hint) {
    CatalogueFile file;
    file.path = path;
    file.content = readInputFile(path, hint);
    const std::size_t invalid = firstInvalidByte(file.content);
    if (invalid < file.content.size()) {
        file.damage = {invalid, "the catalogue is not valid UTF-8", "convert it with msgconv"};
        return file;
    }
    try {
        file.po = readPo(file.content);
    } catch (const PoMistake& mistake) {
        file.damage = {mistake.offset, mistake.what(), correctIt};
    }
    return file;
}

CatalogueFile CatalogueFile::read(const std::string& path, const std::string& hint) {
    CatalogueFile file = load(path, hint);
    if (file.damage) failAt(file, *file.damage);
    return file;
}

std::string mistakeInEntry(const PoEntry& entry) {
    if (entry.isObsolete || !entry.hasTranslation()) return {};
    if (entry.id.empty()) return entry.isHeader() ? mistakeInHeader(entry.translations[0]) : "";
    const std::string mistake = unfitCharacterIn(entry.translations[0]);
    return mistake.empty() ? brokenMarkupIn(entry) : mistake;
}

PoCatalogue::PoCatalogue(const std::string& path, bool raw, Console& console) : path_(path) {
    const CatalogueFile file = CatalogueFile::read(path, pathHint);
    for (const PoEntry& entry : file.po.entries) {
        if (!entry.isUsable() && !entry.isHeader()) continue;
        const bool isLoose = raw && !entry.isHeader();
        const std::string mistake =
            isLoose ? unfitCharacterIn(entry.translations[0]) : mistakeInEntry(entry);
        if (!mistake.empty()) failAt(file, {entry.translationOffset, mistake, correctIt});
        if (entry.id.empty()) continue;
        if (raw) {
            addRaw(entry, file);
        } else {
            texts_[entry.id] = translationContent(entry.id, entry.translations[0]);
        }
    }
    noteMistakes(console);
}

const std::string* PoCatalogue::find(const std::string& text) const {
    const auto found = texts_.find(text);
    return found == texts_.end() ? nullptr : &found->second;
}

const char* Translator::translate(const char* text, void* context) {
    auto& self = *static_cast<Translator*>(context);
    const std::string* const translation = self.catalogue_.find(text);
    if (translation != nullptr) return translation->c_str();
    if (self.seen_.insert(text).second) self.untranslated_.emplace_back(text);
    return text;
}

}  // namespace cli
