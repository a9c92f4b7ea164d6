// What templates use, with the lines that use it; and data files with all of their values.
//
// SPDX-License-Identifier: MIT
#include "commands/explain_template.h"

#include <algorithm>

#include "base/paths.h"
#include "base/text_functions.h"
#include "report/report_output.h"
#include "templates/template_files.h"
#include "templates/template_summary.h"

namespace cli {
namespace {

using Kind = ValueRequest::Kind;

bool hasFormat(const TemplateFile& file, const std::string& format) {
    const std::vector<std::string>& others = file.sameFormats;
    return format.empty() || file.format == format ||
           std::find(others.begin(), others.end(), format) != others.end();
}

std::vector<TemplateFile> wantedTemplates(const Arguments& arguments) {
    std::vector<TemplateFile> files =
        namedTemplates(arguments.operands, arguments.type, arguments.dataDir);
    const std::string& format = arguments.report.format;
    files.erase(
        std::remove_if(files.begin(), files.end(),
                       [&format](const TemplateFile& file) { return !hasFormat(file, format); }),
        files.end());
    if (!files.empty()) return files;
    throw usageErrorOf("explain", "there is no template of the format " + format,
                       "leave --format out to see all of them");
}

std::string formatsOf(const TemplateFile& file) {
    std::vector<std::string> formats = file.sameFormats;
    if (!file.format.empty()) formats.insert(formats.begin(), file.format);
    return joined(formats);
}

/// "12, 40": each line once.
std::string linesOf(const Places& places) {
    std::vector<std::string> lines;
    for (const TextPosition& place : places) {
        const std::string line = std::to_string(place.line);
        if (lines.empty() || lines.back() != line) lines.push_back(line);
    }
    return joined(lines);
}

/// Rows of two columns below a heading; empty without rows.
class Section {
public:
    explicit Section(std::string heading) : heading_(std::move(heading)) {}

    void add(const std::string& name, const std::string& text) { rows_.emplace_back(name, text); }

    std::string text() const {
        constexpr std::size_t widest = 44;
        std::size_t width = 0;
        for (const auto& [name, text] : rows_)
            width = std::max(width, std::min(name.size(), widest));
        std::string lines = rows_.empty() ? "" : "\n" + heading_ + "\n";
        for (const auto& [name, text] : rows_) {
            const std::size_t blanks = width - std::min(width, name.size()) + 2;
            lines.append("  ").append(name).append(blanks, ' ').append(text).append("\n");
        }
        return lines;
    }

private:
    std::string heading_;
    std::vector<std::pair<std::string, std::string>> rows_;
};

std::string valueSection(const TemplateSummary& summary, Kind kind, const std::string& heading) {
    Section section(heading);
    for (const ValueSummary& value : summary.values) {
        const std::string hint = value.hint.empty() ? "" : ":" + value.hint;
        if (value.kind == kind) section.add(value.name + hint, linesOf(value.places));
    }
    return section.text();
}

std::string textSection(const std::vector<TextSummary>& texts, const std::string& heading) {
    Section section(heading);
    for (const TextSummary& text : texts)
        section.add("\"" + text.text + "\"", linesOf(text.places));
    return section.text();
}

std::string keySection(const TemplateSummary& summary) {
    Section section("Keys, and the lines that use them:");
    for (const KeySummary& key : summary.keys)
        section.add(key.name + " (line " + std::to_string(key.position.line) + ")",
                    key.places.empty() ? "never" : linesOf(key.places));
    return section.text();
}

std::string describe(const TemplateFile& file, const TemplateSummary& summary) {
    const std::string formats = formatsOf(file);
    std::string text = file.path + (formats.empty() ? "" : " (" + formats + ")") + "\n";
    text += "Output: method " + (summary.method.empty() ? "not set" : summary.method) +
            ", encoding " + (summary.encoding.empty() ? "not set" : summary.encoding) + "\n";
    text += valueSection(summary, Kind::Name, "Values, with guessed hints, and their lines:");
    text += valueSection(summary, Kind::List, "Lists, N is the number of an entry:");
    text += valueSection(summary, Kind::Prefix, "All names that begin with:");
    text += valueSection(summary, Kind::Part, "Names that are composed, and end with:");
    text += keySection(summary);
    text += textSection(summary.numberFormats, "Formats of numbers:");
    return text + textSection(summary.texts, "Texts to translate:");
}

std::vector<JsonDocument> placeRows(const Places& places) {
    std::vector<JsonDocument> rows;
    for (const TextPosition& place : places) {
        JsonDocument row;
        row.set("line", static_cast<std::int64_t>(place.line));
        row.set("column", static_cast<std::int64_t>(place.column));
        rows.push_back(std::move(row));
    }
    return rows;
}

const char* kindName(Kind kind) {
    switch (kind) {
        case Kind::Name:
            return "value";
        case Kind::List:
            return "list";
        case Kind::Prefix:
            return "prefix";
        case Kind::Part:
            return "ending";
    }
    return "";
}

std::vector<JsonDocument> textRows(const std::vector<TextSummary>& texts, const char* member) {
    std::vector<JsonDocument> rows;
    for (const TextSummary& text : texts) {
        JsonDocument row;
        row.set(member, text.text);
        row.set("places", placeRows(text.places));
        rows.push_back(std::move(row));
    }
    return rows;
}

std::vector<JsonDocument> valueRows(const TemplateSummary& summary) {
    std::vector<JsonDocument> rows;
    for (const ValueSummary& value : summary.values) {
        JsonDocument row;
        row.set("name", value.name);
        row.set("kind", kindName(value.kind));
        row.set("hint", value.hint);
        row.set("places", placeRows(value.places));
        rows.push_back(std::move(row));
    }
    return rows;
}

std::vector<JsonDocument> keyRows(const TemplateSummary& summary) {
    std::vector<JsonDocument> rows;
    for (const KeySummary& key : summary.keys) {
        JsonDocument row;
        row.set("name", key.name);
        row.set("match", key.match);
        row.set("use", key.use);
        row.set("line", static_cast<std::int64_t>(key.position.line));
        row.set("places", placeRows(key.places));
        rows.push_back(std::move(row));
    }
    return rows;
}

JsonDocument documentOf(const TemplateFile& file, const TemplateSummary& summary) {
    JsonDocument document;
    document.set("file", file.path);
    std::vector<std::string> formats = file.sameFormats;
    if (!file.format.empty()) formats.insert(formats.begin(), file.format);
    document.set("formats", formats);
    document.set("method", summary.method);
    document.set("encoding", summary.encoding);
    document.set("values", valueRows(summary));
    document.set("keys", keyRows(summary));
    document.set("numberFormats", textRows(summary.numberFormats, "format"));
    document.set("texts", textRows(summary.texts, "text"));
    return document;
}

void noteComposedNames(const std::vector<TemplateSummary>& summaries, Console& console) {
    std::vector<std::string> endings;
    for (const TemplateSummary& summary : summaries) {
        for (const ValueSummary& value : summary.values) {
            const std::string ending = "\"*" + value.name + "\"";
            const bool isNew = std::find(endings.begin(), endings.end(), ending) == endings.end();
            if (value.kind == Kind::Part && isNew) endings.push_back(ending);
        }
    }
    if (endings.empty()) return;
    console.note("names that are composed when the template runs are not in the data file: " +
                 joined(endings));
}

void writeSkeleton(const std::string& path, const std::vector<TemplateSummary>& summaries,
                   Console& console) {
    if (path != "-" && exists(path)) {
        throw usageErrorOf("explain", "\"" + path + "\" exists already",
                           "give --skeleton the name of a new file");
    }
    writeOutput(path, skeletonOf(summaries));
    noteComposedNames(summaries, console);
    console.note("the hints are guessed from how the template uses the values");
    if (path != "-") console.say(path + ": a data file with every value");
}

void requireOneDocument(const Arguments& arguments) {
    if (!arguments.json || arguments.skeleton != "-") return;
    throw usageErrorOf("explain", "--json and --skeleton - exclude each other",
                       "both write to standard output");
}

}  // namespace

bool isAboutTemplate(const Arguments& arguments) {
    if (arguments.type) return true;
    if (!arguments.operands.empty()) return looksLikeFile(arguments.operands.front());
    const bool hasOption =
        !arguments.skeleton.empty() || !arguments.report.format.empty() || arguments.dataDir;
    return hasOption;
}

ExitCode explainTemplates(const Arguments& arguments, Console& console, JsonDocument& document) {
    requireOneDocument(arguments);
    std::vector<TemplateSummary> summaries;
    std::vector<JsonDocument> templates;
    std::string text;
    for (const TemplateFile& file : wantedTemplates(arguments)) {
        summaries.push_back(
            summaryOf(TemplateText::read(file.path, "check the path of the template")));
        text += (text.empty() ? "" : "\n") + describe(file, summaries.back());
        templates.push_back(documentOf(file, summaries.back()));
    }
    document.set("templates", templates);
    document.set("skeleton", arguments.skeleton);
    if (!arguments.skeleton.empty()) writeSkeleton(arguments.skeleton, summaries, console);
    if (!arguments.json && arguments.skeleton.empty()) printLines(text);
    return ExitCode::Done;
}

}  // namespace cli
