// rgen persist: the library replaces the whole set, so "set" and "unset" read, merge and write
// back. What was stored is read again, so that nothing gets lost unsaid.
//
// SPDX-License-Identifier: MIT
#include <algorithm>
#include <filesystem>
#include <memory>

#include "commands.h"
#include "generator.h"
#include "input_file.h"
#include "interruption.h"
#include "report_input.h"
#include "report_run.h"
#include "report_type.h"
#include "suggestion.h"
#include "xml_content.h"
#include "xml_documents.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

/// The persistent data file, kept aside until the new one is written and read again. Put back
/// unless it is dropped.
class KeptFile {
public:
    /// What the kept file's name has behind the other's.
    static constexpr const char* ending = ".kept";

    explicit KeptFile(const std::string& path) : path_(fs::u8path(path)), kept_(path_) {
        kept_ += ending;
        std::error_code failure;
        if (!fs::exists(path_, failure)) return;
        isKept_ = fs::copy_file(path_, kept_, fs::copy_options::overwrite_existing, failure);
        if (isKept_) return;
        const std::string reason = failure.message();
        fs::remove(kept_, failure);
        throw CommandError(ExitCode::Environment,
                           "cannot keep a copy of \"" + path + "\": " + reason,
                           "check the rights of the folder and the room on the disk");
    }
    ~KeptFile() {
        std::error_code ignored;
        if (isKept_) fs::rename(kept_, path_, ignored);
    }
    KeptFile(const KeptFile&) = delete;
    KeptFile& operator=(const KeptFile&) = delete;

    void drop() {
        std::error_code ignored;
        if (isKept_) fs::remove(kept_, ignored);
        isKept_ = false;
    }

private:
    fs::path path_;
    fs::path kept_;
    bool isKept_ = false;
};

class PersistentData {
public:
    PersistentData(const Arguments& arguments, Console& console)
        : console_(console), directory_(openDataDirectory(arguments.dataDir)) {
        generator_.setDataDir(directory_.folder);
        type_ = findReportType(directory_, arguments.type);
        recover();
    }

    Generator& generator() { return generator_; }
    std::string path() const { return directory_.path(type_.persistDataFile); }

    /// No data, or no file yet, is an empty set; a file that cannot be read is an error.
    std::vector<Value> read() const {
        RgenStatus status = RGEN_OK;
        std::vector<Value> values = generator_.persistentData(type_.guid, status);
        const bool hasStore = !type_.persistDataFile.empty() && hasFile();
        if (hasStore) requireUndamaged();
        const bool isEmpty = status == RGEN_E_NO_PERSIST_VALUES ||
                             status == RGEN_E_NO_VALID_PERSIST_VALUES ||
                             (status == RGEN_E_OPEN_PERSIST && !hasStore);
        if (status >= 0 || isEmpty) return values;
        fail(status);
    }

    /// Stores exactly these values and reads them again; whatever goes wrong, the old file comes
    /// back. Says what of `wanted` the library did not keep as it was; returns the number of stored
    /// values.
    std::size_t write(const ValueSet& values, const ValueSet& wanted) {
        const InterruptGuard guard;
        KeptFile kept(path());
        const RgenStatus status = generator_.setPersistentData(type_.guid, inOrder(values));
        if (status < 0) fail(status);
        std::map<std::string, std::string> stored;
        for (const Value& value : read())
            stored[value.name] = value.content;
        kept.drop();
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
    bool hasFile() const { return exists(path()); }

    /// A run that was killed while it wrote has left the old file aside. It comes back unless the
    /// new one is whole.
    void recover() {
        const std::string kept = path() + KeptFile::ending;
        if (type_.persistDataFile.empty() || !exists(kept)) return;
        std::error_code failure;
        if (hasFile() && damageOf(path()).empty()) {
            fs::remove(fs::u8path(kept), failure);
            return;
        }
        fs::rename(fs::u8path(kept), fs::u8path(path()), failure);
        if (failure) {
            throw CommandError(ExitCode::Environment,
                               "cannot put \"" + kept + "\" back: " + failure.message(),
                               "rename it to \"" + path() + "\"");
        }
        console_.note("an earlier run was ended while it wrote; its old data was put back");
    }

    /// The library reads what it can of a damaged file; writing that back would lose the rest.
    void requireUndamaged() const {
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
                : "\"rgen explain " + Generator::statusHex(status) + "\" says more";
        throw generator_.failure(isUnknown ? directory_.configPath() : path(), status, advice);
    }

    void compare(const Value& wanted, const std::map<std::string, std::string>& stored) const {
        const std::string name = "\"" + shortened(wanted.name) + "\": the library stor";
        const auto found = stored.find(wanted.name);
        if (found != stored.end()) {
            const std::string text = withoutReferences(wanted.content);
            if (wanted.type != RGEN_TYPE_STRING || found->second == text) return;
            console_.note(name + "ed \"" + shortened(withoutReferences(found->second)) +
                          "\" instead of \"" + shortened(withoutReferences(text)) + "\"");
        } else if (trimmed(wanted.name).empty()) {
            console_.note(name + "es no value without a name");
        } else {
            console_.note(name + "es no value without a text");
        }
    }

    Console& console_;
    DataDirectory directory_;
    Generator generator_;
    ReportType type_;
};

/// Values as they came from the library, ready to be stored again as they are.
ValueSet storedAgain(std::vector<Value> values) {
    ValueSet set;
    for (Value& value : values) {
        value.content = escapedAmpersands(value.content);
        set.replace(std::move(value));
    }
    return set;
}

/// What the library would store and read only a part of is refused. A name stands in an attribute,
/// where a character takes up to six bytes of what is read.
void requireStorable(const Value& value) {
    constexpr std::size_t longestText = 10000000;
    constexpr std::size_t longestName = 1000000;
    const std::string name = "\"" + shortened(value.name) + "\": ";
    if (value.name.size() > longestName) {
        throw usageError(name + "names of persistent data hold at most 1,000,000 bytes",
                         "shorten it");
    }
    // Bytes are stored as a hex dump, which has three characters for each.
    const bool isText = value.type == RGEN_TYPE_STRING;
    const std::size_t size =
        isText ? withoutReferences(value.content).size() : 3 * value.bytes.size();
    if (size <= longestText) return;
    throw usageError(name + "persistent texts hold at most 10,000,000 bytes" +
                         (isText ? ", \"&\" counted as \"&amp;\"" : ", each byte counted as three"),
                     "shorten it");
}

/// What stands in the file for the text; U+FFFE and U+FFFF would make it no XML.
void makeStorable(Value& value, Console& console) {
    std::string content = withoutNoncharacters(value.content);
    if (content != value.content) {
        console.note("\"" + shortened(value.name) + "\": U+FFFE and U+FFFF are stored as U+FFFD");
    }
    value.content = std::move(content);
    requireStorable(value);
}

/// The new values of the arguments. Texts are escaped a second time, since they are read twice.
ValueSet newValues(const Arguments& arguments, PersistentData& data, Console& console) {
    ReportInput input = collectInput(arguments.values, data.generator(), console);
    addAssignments(arguments.operands, "value", arguments.values.raw, input.values);
    noteLosses(input, arguments.values.raw, console);
    ValueSet set;
    for (Value value : inOrder(input.values)) {
        if (!arguments.values.raw) value.content = escapedAmpersands(value.content);
        makeStorable(value, console);
        const std::string name = withoutNoncharacters(trimmed(value.name));
        if (name != value.name && !name.empty()) {
            console.note("\"" + shortened(value.name) + "\": the library stored it as \"" +
                         shortened(name) + "\"");
            value.name = name;
        }
        set.replace(std::move(value));
    }
    return set;
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
    const PersistentData data(arguments, console);
    const std::vector<Value> values = data.read();
    if (values.empty()) console.note("there is no persistent data yet");
    std::vector<std::string> names = arguments.operands;
    if (names.empty()) {
        for (const Value& value : values)
            names.push_back(value.name);
    }
    std::map<std::string, std::string> texts;
    for (const std::string& name : names) {
        const std::string& content = findValue(values, name).content;
        texts[name] = arguments.values.raw ? content : withoutReferences(content);
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
    ValueSet all = storedAgain(data.read());
    for (const auto& [name, value] : added.values())
        all.replace(value);
    data.describe(data.write(all, added), document);
    return ExitCode::Done;
}

ExitCode runPersistUnset(const Arguments& arguments, Console& console, JsonDocument& document) {
    PersistentData data(arguments, console);
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
    data.describe(data.write(values, values), document);
    return ExitCode::Done;
}

}  // namespace cli
