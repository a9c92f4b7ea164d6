// rgen messages: the marked texts of templates and the state of their translations.
//
// SPDX-License-Identifier: MIT
#include <algorithm>
#include <filesystem>
#include <map>
#include <set>

#include "base/file_set.h"
#include "base/paths.h"
#include "base/text_functions.h"
#include "base/text_table.h"
#include "commands/commands.h"
#include "commands/values_file.h"
#include "data/po_catalogue.h"
#include "data/po_merge.h"
#include "report/report_output.h"
#include "templates/message_collection.h"
#include "templates/msgmerge.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

constexpr const char* pathHint = "check the data directory";

/// One language of a report type.
struct LanguageState {
    std::string language;
    std::string path;
    std::size_t translated = 0;
    std::vector<std::string> missing;
    std::vector<std::string> fuzzy;
    std::vector<std::string> stale;

    bool isComplete() const { return missing.empty() && fuzzy.empty(); }
};

void requireReadableHeader(const CatalogueFile& file) {
    const PoEntry* header = file.po.header();
    const std::string mistake = header != nullptr ? mistakeInEntry(*header) : "";
    if (!mistake.empty()) throw usageError(file.path + ": " + mistake, "convert it with msgconv");
}

/// An empty file for a language that is new.
CatalogueFile readOrBegin(const std::string& path, const std::string& language) {
    if (fs::exists(fs::u8path(path))) {
        CatalogueFile file = CatalogueFile::read(path, pathHint);
        requireReadableHeader(file);
        return file;
    }
    CatalogueFile file;
    file.path = path;
    file.po.entries.push_back(newHeader(language));
    return file;
}

PoFile merged(const CatalogueFile& file, const std::vector<PoEntry>& texts, Console& console) {
    const std::vector<PoEntry> wanted = wantedEntries(file.po, texts);
    MsgmergeResult result = mergeWithMsgmerge(file.po, wanted);
    if (result.merged) return std::move(*result.merged);
    if (!result.fault.empty()) console.note("msgmerge failed, merged without it: " + result.fault);
    return mergedCatalogue(file.po, wanted);
}

/// A link stays a link.
std::string withoutLinks(const std::string& path) {
    std::error_code failure;
    const fs::path target = fs::canonical(fs::u8path(path), failure);
    return failure ? path : target.u8string();
}

/// The texts that the templates of one type, or of all that share a catalogue, mark.
class Catalogues {
public:
    Catalogues(DataDirectory directory, const ReportType& type)
        : directory_(std::move(directory)), type_(type), own_(collectTexts(directory_, {type})) {}

    const CollectedTexts& texts() const { return own_; }

    /// Returns whether the file was changed.
    bool merge(const std::string& language, Console& console) {
        const std::string path = pathFor(language);
        const CatalogueFile file = readOrBegin(path, language);
        const std::string content = poText(merged(file, textsIn(path, language), console));
        if (content == file.content) return false;
        std::error_code reportedLater;
        fs::create_directories(fs::u8path(folderOf(path)), reportedLater);
        writeOutputFile(withoutLinks(path), content);
        return true;
    }

    LanguageState state(const std::string& language) const {
        LanguageState state;
        state.language = language;
        state.path = pathFor(language);
        const CatalogueFile file = readOrBegin(state.path, language);
        std::set<std::string> usable;
        std::set<std::string> fuzzy;
        for (const PoEntry& entry : file.po.entries) {
            if (entry.isUsable()) usable.insert(entry.id);
            if (!entry.isObsolete && entry.isFuzzy() && entry.hasTranslation())
                fuzzy.insert(entry.id);
        }
        for (const PoEntry& entry : own_.entries) {
            if (usable.count(entry.id) > 0) {
                ++state.translated;
            } else {
                (fuzzy.count(entry.id) > 0 ? state.fuzzy : state.missing).push_back(entry.id);
            }
        }
        state.stale = staleTexts(file.po, textsIn(state.path, language));
        return state;
    }

private:
    std::string pathFor(const std::string& language) const {
        const std::string path = cataloguePath(directory_, type_, language);
        return path.empty() ? ownCataloguePath(directory_, type_, language) : path;
    }

    std::vector<PoEntry> textsIn(const std::string& path, const std::string& language) const {
        std::vector<ReportType> users = typesUsing(directory_, path, language);
        if (users.size() <= 1) return own_.entries;
        return collectTexts(directory_, users).entries;
    }

    static std::vector<std::string> staleTexts(const PoFile& file,
                                               const std::vector<PoEntry>& texts) {
        std::set<std::string> known;
        for (const PoEntry& entry : texts)
            known.insert(entry.id);
        std::vector<std::string> stale;
        for (const PoEntry& entry : file.entries) {
            const bool counts = !entry.isObsolete && !entry.id.empty();
            if (counts && known.count(entry.id) == 0) stale.push_back(entry.id);
        }
        return stale;
    }

    DataDirectory directory_;
    const ReportType& type_;
    CollectedTexts own_;
};

std::string tableOf(const std::vector<LanguageState>& states) {
    TextTable table({"language", "translated", "missing", "fuzzy", "stale", "catalogue"});
    for (const LanguageState& state : states) {
        table.add({state.language, std::to_string(state.translated),
                   std::to_string(state.missing.size()), std::to_string(state.fuzzy.size()),
                   std::to_string(state.stale.size()), inOneLine(state.path)});
    }
    return table.text();
}

JsonDocument documentOf(const LanguageState& state) {
    JsonDocument row;
    row.set("language", state.language);
    row.set("catalogue", state.path);
    row.set("translated", static_cast<std::int64_t>(state.translated));
    row.set("missing", state.missing);
    row.set("fuzzy", state.fuzzy);
    row.set("stale", state.stale);
    return row;
}

std::vector<JsonDocument> textRows(const CollectedTexts& texts) {
    std::vector<JsonDocument> rows;
    for (const PoEntry& entry : texts.entries) {
        JsonDocument row;
        row.set("text", entry.id);
        row.set("places", entry.references);
        rows.push_back(std::move(row));
    }
    return rows;
}

std::string firstOf(const std::vector<std::string>& texts) {
    constexpr std::size_t mostNamed = 3;
    std::vector<std::string> named;
    for (std::size_t i = 0; i < std::min(texts.size(), mostNamed); ++i)
        named.push_back("\"" + shortened(texts[i]) + "\"");
    if (texts.size() > mostNamed) named.emplace_back("...");
    return joined(named);
}

void sayIncomplete(const LanguageState& state, Console& console) {
    if (!state.missing.empty()) {
        console.say(state.language + ": " + countText(state.missing.size(), "text") +
                    " without a translation: " + firstOf(state.missing));
    }
    if (!state.fuzzy.empty()) {
        console.say(state.language + ": " + countText(state.fuzzy.size(), "fuzzy translation") +
                    ", not used in reports: " + firstOf(state.fuzzy));
    }
}

/// An earlier file of this command may be replaced, also in the data directory.
void requireOwnOutput(const std::string& output, const DataDirectory& directory) {
    if (output.empty() || output == "-") return;
    FileSet files;
    addDataDirectoryFiles(directory, files);
    if (!files.find(output) || fs::u8path(output).extension() == ".pot") return;
    throw usageErrorOf("messages", "\"" + output + "\" is a file of the data directory",
                       "choose another --output");
}

std::string templateText(const CollectedTexts& texts) {
    PoFile file;
    file.entries = texts.entries;
    file.entries.insert(file.entries.begin(), newHeader(""));
    return poText(file);
}

ReportType wantedType(const Arguments& arguments, const DataDirectory& directory) {
    if (arguments.operands.empty()) return findReportType(directory, arguments.type);
    if (arguments.type)
        throw usageErrorOf("messages", "the report type is given twice", "leave --type out");
    return findReportType(directory, arguments.operands.front());
}

std::vector<std::string> wantedLanguages(const Arguments& arguments, const DataDirectory& directory,
                                         const ReportType& type) {
    std::vector<std::string> languages = catalogueLanguages(directory, type);
    const std::string& added = arguments.messages.language;
    if (added.empty()) return languages;
    if (!looksLikeLanguage(added))
        throw usageErrorOf("messages", "\"" + added + "\" is not a language",
                           "write \"de\" or \"pt_BR\"");
    if (!arguments.messages.merge)
        throw usageErrorOf("messages", "--lang makes a catalogue", "give --merge, too");
    const bool isKnown = std::find(languages.begin(), languages.end(), added) != languages.end();
    if (!isKnown)
        languages.insert(std::upper_bound(languages.begin(), languages.end(), added), added);
    return languages;
}

/// What the command found and did.
struct Outcome {
    std::vector<LanguageState> states;
    /// The catalogues that were changed.
    std::vector<std::string> changed;

    bool isComplete() const {
        return std::all_of(states.begin(), states.end(),
                           [](const LanguageState& state) { return state.isComplete(); });
    }
};

Outcome bringUpToDate(Catalogues& catalogues, const std::vector<std::string>& languages,
                      bool merges, Console& console) {
    Outcome outcome;
    for (const std::string& language : languages) {
        const bool isChanged = merges && catalogues.merge(language, console);
        outcome.states.push_back(catalogues.state(language));
        if (isChanged) outcome.changed.push_back(outcome.states.back().path);
    }
    return outcome;
}

void describe(const CollectedTexts& texts, const Outcome& outcome, Console& console,
              JsonDocument& document) {
    std::vector<JsonDocument> rows;
    for (const LanguageState& state : outcome.states)
        rows.push_back(documentOf(state));
    document.set("texts", textRows(texts));
    document.set("languages", rows);
    document.set("changed", outcome.changed);
    document.set("notes", console.notes());
}

void sayOutcome(const std::string& type, std::size_t texts, const Outcome& outcome, bool checks,
                Console& console) {
    console.say(countText(texts, "text") + " in the templates of " + type +
                (outcome.states.empty() ? "; there is no catalogue" : ""));
    for (const std::string& path : outcome.changed)
        console.say("changed \"" + path + "\"");
    for (const LanguageState& state : outcome.states) {
        if (checks) sayIncomplete(state, console);
    }
}

}  // namespace

ExitCode runMessages(const Arguments& arguments, Console& console, JsonDocument& document) {
    requireOneOutput(arguments);
    const std::string& output = arguments.report.output;
    const DataDirectory directory = openDataDirectory(arguments.dataDir);
    const ReportType type = wantedType(arguments, directory);
    const std::vector<std::string> languages = wantedLanguages(arguments, directory, type);
    requireOwnOutput(output, directory);
    Catalogues catalogues(directory, type);
    const CollectedTexts& texts = catalogues.texts();
    for (const std::string& note : texts.notes)
        console.note(note);
    if (!output.empty()) writeOutput(output, templateText(texts));
    const Outcome outcome = bringUpToDate(catalogues, languages, arguments.messages.merge, console);
    const bool checks = arguments.messages.check;
    const bool isFine = outcome.isComplete() || !checks;
    document.set("ok", isFine);
    document.set("type", type.name);
    describe(texts, outcome, console, document);
    const bool printsTable = !arguments.json && output != "-" && !outcome.states.empty();
    if (printsTable) printLines(tableOf(outcome.states));
    sayOutcome(type.name, texts.entries.size(), outcome, checks, console);
    return isFine ? ExitCode::Done : ExitCode::Findings;
}

}  // namespace cli
