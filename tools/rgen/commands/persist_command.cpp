// rgen persist: the library replaces the whole set, so "set" and "unset" read, merge and write back
// under a lock. The stored values are read again, so that every lost text is reported.
//
// SPDX-License-Identifier: MIT
#include <algorithm>
#include <filesystem>
#include <map>
#include <optional>

#include "base/interruption.h"
#include "base/paths.h"
#include "base/suggestion.h"
#include "base/text_functions.h"
#include "base/xml_text.h"
#include "commands/commands.h"
#include "data/persistent_store.h"
#include "data/report_input.h"
#include "data/report_type.h"
#include "data/xml_documents.h"
#include "library/library_calls.h"
#include "report/report_generation.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

class PersistentData {
public:
    PersistentData(const Arguments& arguments, Console& console)
        : console_(console), directory_(openDataDirectory(arguments.dataDir)) {
        setDataDir(generator_, directory_.folder);
        type_ = findReportType(directory_, arguments.type);
    }

    /// To be called before reading without a lock.
    void recover() { recoverForReading(directory_, type_, console_); }

    /// To be called before reading data that will be changed: no other run changes it from here on.
    void lock() {
        requireStore();
        lock_.emplace(path(), console_);
        restoreKeptData(path(), console_);
    }

    const repgen::Generator& generator() const { return generator_; }
    std::string path() const { return directory_.path(type_.persistDataFile); }

    /// No data, or no file yet, is an empty set; a file that cannot be read is an error.
    std::vector<Value> read() const {
        RgenStatus status = RGEN_OK;
        std::vector<Value> values = persistentValues(generator_, type_.guid, status);
        const bool hasStore = !type_.persistDataFile.empty() && hasFile();
        if (hasStore) requireUndamaged();
        const bool isEmpty = status == RGEN_E_NO_PERSIST_VALUES ||
                             status == RGEN_E_NO_VALID_PERSIST_VALUES ||
                             (status == RGEN_E_OPEN_PERSIST && !hasStore);
        if (status >= 0 || isEmpty) return values;
        fail(status);
    }

    /// Stores exactly these values. The library first writes and reads them next to the file; after
    /// any failure the old file is unchanged. Notes which values of `wanted` the library changed;
    /// returns the number of stored values.
    std::size_t write(const ValueSet& values, const ValueSet& wanted) {
        const InterruptGuard guard;
        StagedStore stage(path(), type_.guid, type_.guidText);
        writeTo(stage, values);
        const std::map<std::string, std::string> stored = checked(stage);
        throwIfInterrupted();
        stage.deliver();
        for (const auto& [name, value] : wanted.values())
            compare(value, stored);
        return stored.size();
    }

    void describe(std::size_t stored, JsonDocument& document) const {
        describeType(document);
        document.set("stored", static_cast<std::int64_t>(stored));
        document.set("notes", console_.notes());
        console_.say(countText(stored, "value") + " stored");
    }

    void describeType(JsonDocument& document) const {
        JsonDocument type;
        type.set("guid", type_.guidText);
        type.set("name", type_.name);
        document.set("type", type);
    }

private:
    bool hasFile() const {
        requireAccess(path());
        return exists(path());
    }

    /// Requires that the configuration names a file and that this is a regular file or missing.
    void requireStore() const {
        if (type_.persistDataFile.empty()) {
            RgenStatus status = RGEN_OK;
            persistentValues(generator_, type_.guid, status);
            fail(status < 0 ? status : RGEN_E_GUID_NOT_IN_CONFIG);
        }
        std::error_code ignored;
        if (!hasFile() || fs::is_regular_file(fs::u8path(path()), ignored)) return;
        throw CommandError(
            ExitCode::Environment, "\"" + path() + "\" is no ordinary file",
            "move it away, or name another file in \"" + directory_.configPath() + "\"");
    }

    /// The texts that the library wrote, as a report would read them.
    std::map<std::string, std::string> checked(const StagedStore& stage) const {
        const std::string damage = stage.damage();
        if (!damage.empty()) {
            throw CommandError(ExitCode::Unverified,
                               "the new data would be damaged: " + damage + "; nothing was stored",
                               "store fewer values at once to find the one that does it");
        }
        RgenStatus status = RGEN_OK;
        std::map<std::string, std::string> stored;
        for (const Value& value : stage.read(status))
            stored[value.name] = value.content.text();
        if (status == RGEN_E_OPEN_PERSIST) fail(status);
        return stored;
    }

    /// The library reads only a part of a damaged file; writing that back would lose the rest.
    void requireUndamaged() const {
        requireReadable(path());
        const std::string damage = damageOf(path());
        if (damage.empty()) return;
        throw CommandError(ExitCode::Refused, "\"" + path() + "\" is damaged: " + damage,
                           "correct it, or replace all of it with rgen persist replace");
    }

    [[noreturn]] void fail(RgenStatus status) const {
        const bool isUnknown = status == RGEN_E_GUID_NOT_IN_CONFIG;
        const std::string advice =
            isUnknown ? "\"rgen types\" lists the report types of \"" + directory_.folder + "\""
            : status == RGEN_E_OPEN_PERSIST
                ? "correct the file, or replace all of it with rgen persist replace"
                : "\"rgen explain " + statusHex(status) + "\" says more";
        throw statusFailure(isUnknown ? directory_.configPath() : path(), status, advice);
    }

    /// The library does not report why it cannot create a file. The folder is writable, so the disk
    /// is full.
    void writeTo(StagedStore& stage, const ValueSet& values) const try {
        stage.write(values);
    } catch (const repgen::ArgumentError& failure) {
        throw usageError(failure.what(), "shorten it");
    } catch (const repgen::StatusError& failure) {
        if (failure.status() != RGEN_E_CREATE_PERSIST) fail(failure.status());
        CommandError error =
            statusFailure(path(), failure.status(),
                          "check that the disk of \"" + folderOf(path()) + "\" has room");
        error.exitCode = ExitCode::Unverified;
        throw error;
    }

    void compare(const Value& wanted, const std::map<std::string, std::string>& stored) const {
        const std::string name = "\"" + shortened(wanted.name) + "\": the library stor";
        const auto found = stored.find(wanted.name);
        if (found != stored.end()) {
            if (!wanted.isText()) return;
            const std::string content = storedContentOf(wanted.content.markedText());
            if (found->second == content) return;
            console_.note(name + "ed \"" + shortened(unescaped(found->second)) +
                          "\" instead of \"" + shortened(unescaped(content)) + "\"");
        } else if (trimmed(wanted.name).empty()) {
            console_.note(name + "es no value without a name");
        } else {
            console_.note(name + "es no value without a text");
        }
    }

    Console& console_;
    DataDirectory directory_;
    repgen::Generator generator_;
    ReportType type_;
    std::optional<StoreLock> lock_;
};

/// XML content that is read once becomes content that is read twice, as persistent data is. Plain
/// texts are escaped by the library.
void prepareForStore(Value& value) {
    if (!value.isText()) return;
    const repgen::Text& text = value.content.markedText();
    if (text.form() == repgen::TextForm::Plain) return;
    value.content = repgen::Text::markup(contentOf(repgen::Text(text.content())));
}

/// Values that the library returned, so that storing them again does not change them.
ValueSet storedAgain(std::vector<Value> values) {
    ValueSet set;
    for (Value& value : values) {
        prepareForStore(value);
        set.replace(std::move(value));
    }
    return set;
}

/// An unknown reference makes the file invalid XML and damages all other values. One that appears
/// only after reading does the same to a report.
void requireKnownReferences(const std::string& content, const std::string& subject) {
    std::optional<std::string> unknown = findUnknownReference(content);
    if (!unknown) unknown = findUnknownReference(unescaped(content));
    if (!unknown) return;
    throw usageError(subject + ": persistent data cannot hold \"" + shortened(*unknown) + "\"",
                     "write \"&amp;amp;\" for a plain \"&\", or leave out --raw");
}

/// Refuses texts that persistent data cannot contain, and notes what it replaces.
void checkText(const Value& value, bool raw, Console& console) {
    const std::string subject = "\"" + shortened(value.name) + "\"";
    if (raw) requireKnownReferences(value.content.text(), subject);
    try {
        storedContentOf(value.content.markedText());
    } catch (const repgen::ArgumentError& error) {
        throw usageError(subject + ": " + error.what(), "shorten it");
    }
    const std::string replaced = invalidCharacterIn(value.content.text());
    if (!replaced.empty()) {
        console.note(subject + ": " + replaced + "; such characters are stored as U+FFFD");
    }
}

/// The name as the library stores it.
void makeNameStorable(Value& value, Console& console) {
    const std::string name = withInvalidCharactersReplaced(trimmed(value.name));
    if (name == value.name || name.empty()) return;
    console.note("\"" + shortened(value.name) + "\": the library stored it as \"" +
                 shortened(name) + "\"");
    value.name = name;
}

ValueSet newValues(const Arguments& arguments, const PersistentData& data, Console& console) {
    const bool raw = arguments.values.raw;
    ReportInput input = collectInput(arguments.values, data.generator(), console);
    addAssignments(arguments.operands, "value", raw, input.values);
    noteLosses(input, raw, console, Readings::Twice);
    ValueSet set;
    for (auto [name, value] : input.values.values()) {
        if (!raw) prepareForStore(value);
        if (value.isText()) checkText(value, raw, console);
        makeNameStorable(value, console);
        set.add(std::move(value));
    }
    set.noteRepeated(console);
    return set;
}

/// Tells whether the library would store nothing, so that setting it would remove the old value.
bool isWithoutText(const repgen::Value& content) {
    if (content.type() == repgen::ValueType::ByteArray) return content.bytes().empty();
    if (content.type() != repgen::ValueType::Text) return false;
    const bool isPlain = content.markedText().form() == repgen::TextForm::Plain;
    return isPlain ? content.text().empty() : trimmed(unescaped(content.text())).empty();
}

void requireTexts(const ValueSet& values) {
    for (const auto& [name, value] : values.values()) {
        if (!isWithoutText(value.content)) continue;
        throw usageError("\"" + shortened(name) + "\": persistent data keeps no empty text",
                         "remove the value with: rgen persist unset \"" + shortened(name) + "\"");
    }
}

[[noreturn]] void failUnknown(const std::string& name, const std::vector<Value>& values) {
    std::vector<std::string> names;
    names.reserve(values.size());
    for (const Value& value : values)
        names.push_back(value.name);
    throw usageError("persistent data has no \"" + shortened(name) + "\"",
                     didYouMean(name, names, "\"rgen persist get\" lists the names"));
}

const Value& findValue(const std::vector<Value>& values, const std::string& name) {
    for (const Value& value : values) {
        if (value.name == name) return value;
    }
    failUnknown(name, values);
}

void printValues(const std::vector<std::string>& names,
                 const std::map<std::string, std::string>& texts) {
    if (names.size() == 1) {
        printLines(texts.at(names.front()) + "\n");
        return;
    }
    std::string lines;
    for (const auto& [name, text] : texts)
        lines.append(name).append("=").append(text).append("\n");
    printLines(lines);
}

}  // namespace

ExitCode runPersistGet(const Arguments& arguments, Console& console, JsonDocument& document) {
    PersistentData data(arguments, console);
    data.recover();
    const std::vector<Value> values = data.read();
    if (values.empty()) console.note("there is no persistent data yet");
    std::vector<std::string> names = arguments.operands;
    if (names.empty()) {
        for (const Value& value : values)
            names.push_back(value.name);
    }
    std::map<std::string, std::string> texts;
    for (const std::string& name : names) {
        const std::string& content = findValue(values, name).content.text();
        texts[name] = arguments.values.raw ? content : unescaped(content);
    }
    data.describeType(document);
    JsonDocument object;
    for (const auto& [name, text] : texts)
        object.set(name, text);
    document.set("values", object);
    document.set("notes", console.notes());
    if (!arguments.json) printValues(arguments.operands, texts);
    return ExitCode::Done;
}

ExitCode runPersistSet(const Arguments& arguments, Console& console, JsonDocument& document) {
    PersistentData data(arguments, console);
    const ValueSet added = newValues(arguments, data, console);
    requireTexts(added);
    data.lock();
    ValueSet all = storedAgain(data.read());
    for (const auto& [name, value] : added.values())
        all.replace(value);
    data.describe(data.write(all, added), document);
    return ExitCode::Done;
}

ExitCode runPersistUnset(const Arguments& arguments, Console& console, JsonDocument& document) {
    PersistentData data(arguments, console);
    data.lock();
    const std::vector<Value> values = data.read();
    std::vector<Value> kept = values;
    for (const std::string& name : arguments.operands) {
        findValue(values, name);
        kept.erase(std::remove_if(kept.begin(), kept.end(),
                                  [&name](const Value& value) { return value.name == name; }),
                   kept.end());
    }
    const ValueSet rest = storedAgain(std::move(kept));
    data.describe(data.write(rest, rest), document);
    return ExitCode::Done;
}

ExitCode runPersistReplace(const Arguments& arguments, Console& console, JsonDocument& document) {
    PersistentData data(arguments, console);
    const ValueSet values = newValues(arguments, data, console);
    data.lock();
    data.describe(data.write(values, values), document);
    return ExitCode::Done;
}

}  // namespace cli
