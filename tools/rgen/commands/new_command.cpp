// rgen new: a new report type with templates, catalogues, sample data and a test.
//
// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <random>
#include <set>

#include "base/input_file.h"
#include "base/paths.h"
#include "base/text_functions.h"
#include "commands/commands.h"
#include "commands/new_files.h"
#include "data/data_file.h"
#include "data/report_type.h"
#include "report/report_output.h"
#include "templates/config_entry.h"
#include "templates/new_template.h"
#include "templates/translation_markers.h"

namespace cli {
namespace {

constexpr const char* sampleData = R"({
    "Report.Author": "Marta Lindqvell",
    "Report.Created:datetime": "2026-03-09T16:05:00Z",
    "Items": [
        {"Name": "First item", "Amount": 12, "Note": "A & B"},
        {"Name": "Second item", "Amount": 3, "Note": "to be checked"}
    ]
}
)";

/// What the arguments ask for, checked.
struct NewType {
    std::string name;
    std::string title;
    std::vector<std::string> formats;
    std::vector<std::string> languages;
    DataDirectory directory;
    std::string guid;
    /// The content of the data file, and the files that it names: paths relative to its folder.
    std::string data;
    std::string dataFolder;
    std::vector<std::string> dataParts;
    std::vector<Value> values;
};

/// A random GUID of version 4.
std::string randomGuid() {
    std::random_device random;
    std::array<unsigned, 4> words{};
    for (unsigned& word : words)
        word = random();
    words[1] = (words[1] & 0xFFFF0FFFU) | 0x4000U;
    words[2] = (words[2] & 0x3FFFFFFFU) | 0x80000000U;
    std::array<char, 37> text{};
    std::snprintf(text.data(), text.size(), "%08x-%04x-%04x-%04x-%04x%08x", words[0],
                  words[1] >> 16U, words[1] & 0xFFFFU, words[2] >> 16U, words[2] & 0xFFFFU,
                  words[3]);
    return text.data();
}

bool isNameCharacter(char letter) {
    return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') ||
           (letter >= '0' && letter <= '9') || letter == '-' || letter == '_';
}

/// Names that Windows does not allow for files, whatever their ending.
bool isReserved(const std::string& name) {
    static const std::set<std::string> reserved{"con", "prn", "aux", "nul"};
    const std::string lower = lowerCase(name);
    const bool isPort = lower.size() == 4 && lower[3] >= '0' && lower[3] <= '9' &&
                        (lower.rfind("com", 0) == 0 || lower.rfind("lpt", 0) == 0);
    return isPort || reserved.count(lower) != 0;
}

void checkName(const std::string& name) {
    constexpr std::size_t longest = 64;
    const bool isPlain = !name.empty() && name[0] != '-' && name.size() <= longest &&
                         std::all_of(name.begin(), name.end(), isNameCharacter);
    if (isPlain && !isReserved(name)) return;
    throw usageErrorOf("new", "\"" + name + "\" cannot be the name of a report type",
                       "use at most 64 letters from a to z, digits, \"-\" and \"_\"");
}

std::vector<std::string> checkedFormats(const std::string& list) {
    std::vector<std::string> formats = split(list, ',');
    for (const std::string& format : formats) {
        const std::vector<std::string>& known = outputFormats();
        if (std::find(known.begin(), known.end(), format) != known.end()) continue;
        throw usageErrorOf("new", "there is no format \"" + format + "\"",
                           "there is: " + joined(known));
    }
    return formats;
}

std::vector<std::string> checkedLanguages(const std::string& list) {
    std::vector<std::string> languages = split(list, ',');
    for (const std::string& language : languages) {
        const bool isPlain = std::all_of(language.begin(), language.end(), [](char letter) {
            return isNameCharacter(letter) || letter == '@';
        });
        if (looksLikeLanguage(language) && isPlain) continue;
        throw usageErrorOf("new", "\"" + language + "\" is not the code of a language",
                           "write codes such as de, ja or pt-BR");
    }
    return languages;
}

void requireNewName(const NewType& type) {
    if (!exists(type.directory.configPath())) return;
    for (const ReportType& known : reportTypes(type.directory)) {
        if (known.name != type.name) continue;
        throw usageErrorOf("new",
                           "\"" + type.directory.configPath() + "\" already has a report type \"" +
                               type.name + "\"",
                           "choose another name");
    }
}

/// The path of a file that the data names, relative to the folder of the data.
std::string partOf(const NewType& type, const std::string& path) {
    namespace fs = std::filesystem;
    const fs::path relative = fs::u8path(path).lexically_relative(fs::u8path(type.dataFolder));
    const bool isInside = !relative.empty() && *relative.begin() != ".." && !relative.is_absolute();
    if (isInside) return relative.generic_u8string();
    throw usageErrorOf("new", "the data names the file \"" + path + "\" outside of its folder",
                       "move it beside the data");
}

/// Reads the values twice: the files that they name are to be known without their content.
void readValues(const std::string& place, NewType& type) {
    std::vector<std::string> named;
    ValueReadOptions reading;
    reading.source = place;
    reading.folder = type.dataFolder;
    type.values = readJsonValues(type.data, place, reading);
    reading.filesNamed = &named;
    readJsonValues(type.data, place, reading);
    for (const std::string& path : named) {
        const std::string part = partOf(type, path);
        if (std::find(type.dataParts.begin(), type.dataParts.end(), part) == type.dataParts.end())
            type.dataParts.push_back(part);
    }
}

NewType checked(const Arguments& arguments) {
    NewType type;
    type.name = arguments.operands.front();
    checkName(type.name);
    type.title = arguments.newType.title.empty() ? labelFor(type.name) : arguments.newType.title;
    type.formats = checkedFormats(arguments.newType.formats);
    type.languages = checkedLanguages(arguments.newType.languages);
    type.directory = namedDataDirectory(arguments.dataDir);
    requireNewName(type);
    type.guid = randomGuid();
    const std::string& file = arguments.newType.fromData;
    type.data = file.empty() ? sampleData : readInputFile(file, "check the path");
    const std::string place = file.empty() ? type.name + ".json" : inputName(file);
    type.dataFolder = file.empty() ? "." : folderOf(file);
    readValues(place, type);
    return type;
}

bool has(const NewType& type, const std::string& format) {
    return std::find(type.formats.begin(), type.formats.end(), format) != type.formats.end();
}

std::string templateOf(const NewType& type, const std::string& format) {
    return type.directory.path("templates/" + format + "/" + type.name + ".xsl");
}

std::string testFolderOf(const NewType& type) {
    return type.directory.path("tests/" + type.name + "/first");
}

std::string poText(const std::string& text) {
    std::string escapedText;
    for (const char character : text) {
        if (character == '\\' || character == '"') escapedText += '\\';
        escapedText += character;
    }
    return "\"" + escapedText + "\"";
}

/// A catalogue with all marked texts and without translations.
std::string newCatalogue(const NewType& type, const std::string& language,
                         const std::vector<std::string>& templates) {
    std::string text = "# Texts of the report \"" + type.title +
                       "\".\n"
                       "msgid \"\"\nmsgstr \"\"\n"
                       "\"Project-Id-Version: " +
                       type.name +
                       "\\n\"\n"
                       "\"Language: " +
                       language +
                       "\\n\"\n"
                       "\"MIME-Version: 1.0\\n\"\n"
                       "\"Content-Type: text/plain; charset=UTF-8\\n\"\n"
                       "\"Content-Transfer-Encoding: 8bit\\n\"\n";
    std::set<std::string> messages;
    for (const std::string& one : templates) {
        for (const TranslationMarker& marker : findMarkers(one))
            messages.insert(marker.message);
    }
    for (const std::string& message : messages)
        text += "\nmsgid " + poText(message) + "\nmsgstr \"\"\n";
    return text;
}

/// The files of a new report type, apart from the configuration.
class Plan {
public:
    explicit Plan(const NewType& type) : type_(type) {
        const NewTemplate wanted{type.name, type.title, has(type, "html") && has(type, "pdf")};
        for (const std::string& format : type.formats) {
            const std::string text = format == "txt" ? newTextTemplate(wanted, type.values)
                                                     : newPageTemplate(wanted, type.values);
            templates_.push_back(text);
            const bool isLink = format == "pdf" && wanted.servesPdf;
            add(templateOf(type, format), text, isLink ? templateOf(type, "html") : "");
        }
        for (const std::string& language : type.languages)
            add(type.directory.path("translations/" + type.name + "-" + language + ".po"),
                newCatalogue(type, language, templates_));
        addData(type.directory.folder, type.name + ".json");
        addData(testFolderOf(type), "data.json");
    }

    std::vector<std::string> paths() const {
        std::vector<std::string> paths;
        for (const Row& row : rows_)
            paths.push_back(row.path);
        return paths;
    }

    /// The links come last, so that their targets exist.
    void write(NewFiles& files) const {
        for (const Row& row : rows_) {
            if (row.original.empty()) files.write(row.path, row.content);
        }
        for (const Row& row : rows_) {
            if (!row.original.empty()) files.repeat(row.path, row.original);
        }
    }

private:
    struct Row {
        std::string path;
        std::string content;
        std::string original;
    };

    void addData(const std::string& folder, const std::string& name) {
        add(joinedPath(folder, name), type_.data);
        for (const std::string& part : type_.dataParts)
            add(joinedPath(folder, part),
                readInputFile(joinedPath(type_.dataFolder, part), "check the data"));
    }

    void add(const std::string& path, const std::string& content,
             const std::string& original = {}) {
        requireAbsent(path);
        rows_.push_back({path, content, original});
    }

    const NewType& type_;
    std::vector<std::string> templates_;
    std::vector<Row> rows_;
};

/// The configuration is written last: until then the report type does not exist.
void writeConfiguration(const NewType& type, NewFiles& files) {
    const std::string path = type.directory.configPath();
    const ConfigEntry entry{type.guid, type.name + "_data.xml", type.name + ".xsl"};
    if (exists(path)) {
        writeOutput(path,
                    withReportType(readInputFile(path, "check the data directory"), entry, path));
    } else {
        files.write(path, newConfiguration(entry));
    }
}

/// The first page, made as by "rgen report".
std::string makeFirstPage(const NewType& type, const Arguments& given, Console& console) {
    const std::string format = has(type, "html") ? "html" : type.formats.front();
    Arguments arguments = given;
    arguments.command = "report";
    arguments.operands.clear();
    arguments.type = type.guid;
    arguments.report.output = joinedPath(type.directory.folder, type.name + "." + format);
    arguments.values.data = {joinedPath(type.directory.folder, type.name + ".json")};
    JsonDocument report;
    runReport(arguments, console, report);
    return arguments.report.output;
}

/// From now on "rgen test" compares with the reports as they are.
void acceptFirstTest(const NewType& type, const Arguments& given) {
    Arguments arguments = given;
    arguments.command = "test";
    arguments.operands.clear();
    arguments.type = type.guid;
    arguments.test.accept = true;
    arguments.json = true;
    Console silent(true);
    JsonDocument results;
    runTest(arguments, silent, results);
}

}  // namespace

ExitCode runNew(const Arguments& arguments, Console& console, JsonDocument& document) {
    const NewType type = checked(arguments);
    const Plan plan(type);
    std::string page = type.name + "." + (has(type, "html") ? "html" : type.formats.front());
    requireAbsent(joinedPath(type.directory.folder, page));
    NewFiles files;
    plan.write(files);
    writeConfiguration(type, files);
    files.keep();
    if (!arguments.json) {
        for (const std::string& path : plan.paths())
            printLines(path + "\n");
    }
    page = makeFirstPage(type, arguments, console);
    acceptFirstTest(type, arguments);
    const std::string at = " -d " + commandArgument(type.directory.folder);
    const std::vector<std::string> commands = {
        "rgen preview" + at + " -t " + type.name + " --open", "rgen check" + at + " " + type.name,
        "rgen test" + at + " " + type.name,
        "rgen report" + at + " -t " + type.name + " --data " +
            commandArgument(joinedPath(type.directory.folder, type.name + ".json")) + " -o " +
            commandArgument(page)};
    document.set("guid", type.guid);
    document.set("files", plan.paths());
    document.set("page", page);
    document.set("next", commands);
    if (arguments.json) return ExitCode::Done;
    printLines(page + "\n");
    console.say("made the report type " + type.name + " with the GUID " + type.guid + "; next:");
    for (const std::string& command : commands)
        console.say("  " + command);
    return ExitCode::Done;
}

}  // namespace cli
