// Copies the source line by line. Before each piece of a file there is an instruction that names
// its file and line; blanks before a piece that begins within a line keep its column.
//
// SPDX-License-Identifier: MIT
#include "templates/bundle.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <set>

#include "base/input_file.h"
#include "base/paths.h"
#include "base/suggestion.h"
#include "base/text_functions.h"
#include "templates/bundle_marks.h"
#include "templates/bundle_part.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

constexpr const char* warning =
    "<!-- Made by \"rgen bundle\" from the files that the instructions here name: edit those "
    "files, "
    "not this one. -->\n";

fs::path canonicalPath(const std::string& path) {
    std::error_code ignored;
    const fs::path canonical = fs::weakly_canonical(fs::absolute(fs::u8path(path)), ignored);
    return canonical.empty() ? fs::u8path(path) : canonical;
}

bool isFile(const std::string& path) {
    std::error_code ignored;
    return fs::is_regular_file(fs::u8path(path), ignored);
}

std::vector<std::string> namesIn(const std::string& folder) {
    std::vector<std::string> names;
    std::error_code failure;
    for (fs::directory_iterator entry(fs::u8path(folder), failure), end; !failure && entry != end;
         entry.increment(failure)) {
        names.push_back(entry->path().filename().u8string());
    }
    return names;
}

std::string inQuotes(const std::string& text) {
    return "\"" + text + "\"";
}

Finding error(const char* code, std::string what, std::string advice) {
    Finding finding;
    finding.code = code;
    finding.what = std::move(what);
    finding.advice = std::move(advice);
    return finding;
}

/// Later places first, so that an edit does not move the ones after it.
struct BeginsLater {
    bool operator()(const TextRange& one, const TextRange& other) const {
        return one.begin > other.begin;
    }
};

class Bundler {
public:
    explicit Bundler(const BundleRequest& request)
        : request_(request),
          outputFolder_(canonicalPath(request.output == "-" ? "." : folderOf(request.output))) {}

    Bundle make() {
        load(request_.source);
        if (bundle_.findings.empty()) write();
        bundle_.findings.sort();
        return std::move(bundle_);
    }

private:
    using Path = std::string;

    // ---- Reading ----

    /// Reads a file and everything that it includes.
    void load(const std::string& path) {
        const Path key = canonicalPath(path).u8string();
        auto part = std::make_unique<BundlePart>(TemplateText::read(path, "check its path"));
        BundlePart& loaded = *part;
        parts_[key] = std::move(part);
        bundle_.files.push_back(path);
        if (!isUsable(loaded)) return;
        addDefinitions(loaded);
        checkNamespaces(loaded);
        chain_.push_back(key);
        for (const MarkupElement* include : loaded.includes())
            loadIncluded(loaded, *include);
        chain_.pop_back();
    }

    bool isUsable(const BundlePart& part) {
        if (bundleHeader(part.text().original())) {
            addAt(part, {0, 0},
                  error("bundled-part", "\"rgen bundle\" made this file",
                        "include the files that it was made from"));
            return false;
        }
        const Findings findings = part.findings();
        bundle_.findings.add(findings);
        return findings.empty();
    }

    void loadIncluded(const BundlePart& part, const MarkupElement& include) {
        const std::string path = resolve(part, include);
        if (path.empty()) return;
        const Path key = canonicalPath(path).u8string();
        targets_[&include] = key;
        if (std::find(chain_.begin(), chain_.end(), key) != chain_.end()) {
            addAt(part, include.nameRange,
                  error("include-cycle", inQuotes(path) + " includes itself: " + chainTo(key),
                        "remove one of these xsl:include elements"));
        } else if (parts_.count(key) == 0) {
            load(path);
        }
    }

    /// "b.xsl -> c.xsl -> b.xsl".
    std::string chainTo(const Path& key) const {
        std::vector<std::string> names;
        for (auto at = std::find(chain_.begin(), chain_.end(), key); at != chain_.end(); ++at)
            names.push_back(fs::u8path(*at).filename().u8string());
        names.push_back(fs::u8path(key).filename().u8string());
        return joined(names, " -> ");
    }

    std::string resolve(const BundlePart& part, const MarkupElement& include) {
        const std::string href = part.attribute(include, "href");
        if (href.empty()) {
            addAt(part, include.nameRange,
                  error("missing-href", "xsl:include without a file", "write href=\"...\""));
            return {};
        }
        std::vector<std::string> folders = {folderOf(part.text().path())};
        folders.insert(folders.end(), request_.partFolders.begin(), request_.partFolders.end());
        for (const std::string& folder : folders) {
            const fs::path path = fs::u8path(folder) / fs::u8path(href);
            const std::string name = path.lexically_normal().generic_u8string();
            if (isFile(name)) return name;
        }
        const fs::path wanted = fs::u8path(folders[0]) / fs::u8path(href);
        const std::vector<std::string> names = namesIn(folderOf(wanted.u8string()));
        addAt(part, include.find("href")->valueRange,
              error("missing-part", "there is no part " + inQuotes(href),
                    didYouMean(wanted.filename().u8string(), names,
                               "name its path from this file, or its folder with --parts")));
        return {};
    }

    // ---- Conflicts ----

    void addAt(const BundlePart& part, TextRange place, Finding finding) {
        bundle_.findings.add(part.text().at(place.begin, place.end, std::move(finding)));
    }

    /// Within one file, repeated definitions are left to "rgen check".
    void addDefinitions(const BundlePart& part) {
        for (const Definition& definition : part.definitions()) {
            const auto [known, isNew] =
                definitions_.emplace(definition.name, std::make_pair(&part, definition));
            if (isNew || known->second.first == &part) continue;
            const Definition& first = known->second.second;
            if (!definition.content.empty() && definition.content == first.content) continue;
            const BundlePart& other = *known->second.first;
            const Finding place = other.text().at(first.place.begin, first.place.end, Finding());
            addAt(part, definition.place,
                  error("repeated-definition",
                        definition.name + " exists in " + placeText(place.file, place.position) +
                            ", too",
                        "rename or remove one of them"));
        }
    }

    void checkNamespaces(const BundlePart& part) {
        const bool isSource = parts_.size() == 1;
        for (const MarkupAttribute& attribute : part.root().attributes) {
            const bool isPrefix = attribute.name.rfind("xmlns:", 0) == 0;
            if (!isPrefix && attribute.name != "xmlns") continue;
            const std::string value = part.attribute(part.root(), attribute.name);
            const auto [known, isNew] = namespaces_.emplace(attribute.name, value);
            const bool isOther = isNew ? !isPrefix && !isSource : known->second != value;
            if (!isOther) continue;
            addAt(part, attribute.nameRange,
                  error("other-namespace",
                        inQuotes(attribute.name) + " is another namespace than in the other files",
                        isPrefix ? "use another prefix here" : "write a prefix here"));
        }
        const bool lacksDefault =
            namespaces_.count("xmlns") > 0 && part.root().find("xmlns") == nullptr;
        if (lacksDefault) {
            addAt(part, part.root().nameRange,
                  error("other-namespace",
                        "the including file has a default namespace, this has none",
                        "write xmlns=" + inQuotes(namespaces_["xmlns"]) + ", or remove it there"));
        }
    }

    // ---- Writing ----

    void write() {
        const BundlePart& source = *parts_[canonicalPath(request_.source).u8string()];
        const std::string& text = source.text().text();
        const std::size_t start = endOfDeclaration(text);
        const std::size_t tagEnd = source.root().startTag.end;
        const std::size_t tagStart = source.root().startTag.begin;
        writePiece(source, {start, tagStart});
        writeRootTag(source);
        writeBody(source, {tagEnd, text.size()});
        const std::string written = "\n" + std::string(warning) + out_;
        const std::string declaration = text.substr(0, start);
        constexpr std::size_t byteOrderMarkSize = 3;
        bundle_.text = declaration + (declaration.size() > byteOrderMarkSize ? "\n" : "") +
                       bundleInstruction(markName(source), partFolders(), written) + written;
    }

    /// The file's path from the folder of the bundle.
    std::string markName(const BundlePart& part) const { return nameFrom(part.text().path()); }

    std::vector<std::string> partFolders() const {
        std::vector<std::string> names;
        for (const std::string& folder : request_.partFolders)
            names.push_back(nameFrom(folder));
        return names;
    }

    std::string nameFrom(const std::string& path) const {
        const fs::path canonical = canonicalPath(path);
        const fs::path relative = canonical.lexically_relative(outputFolder_);
        return (relative.empty() ? canonical : relative).generic_u8string();
    }

    /// A range without includes, after the instruction that says where it comes from.
    void writePiece(const BundlePart& part, TextRange range) {
        const std::string& text = part.text().text();
        const std::size_t lineEnd = text.find('\n', range.begin);
        const bool isRestBlank =
            text.find_first_not_of(" \t\r\n", range.begin) > std::min(lineEnd, range.end);
        if (isRestBlank && lineEnd < range.end) range.begin = lineEnd + 1;
        if (text.find_first_not_of(" \t\r\n", range.begin) >= range.end) return;
        writeMark(part, range.begin);
        const std::size_t begin = part.text().originalOffset(range.begin);
        const std::size_t end = part.text().originalOffset(range.end);
        out_.append(part.text().original(), begin, end - begin);
    }

    void writeMark(const BundlePart& part, std::size_t offset) {
        if (!out_.empty() && out_.back() != '\n') out_ += '\n';
        const TextPosition place = part.text().lines().position(part.text().originalOffset(offset));
        out_ += partInstruction(markName(part), place.line);
        out_ += std::string(place.column - 1, ' ');
    }

    /// The root's tag with the namespaces and the excluded prefixes of the parts.
    void writeRootTag(const BundlePart& source) {
        const MarkupElement& root = source.root();
        std::string tag = source.text().text().substr(root.startTag.begin, root.startTag.size());
        std::size_t end = tag.size() - 1;
        if (tag[end - 1] == '/') --end;
        std::map<TextRange, std::string, BeginsLater> edits;
        std::string added;
        for (const auto& [name, value] : namespaces_) {
            if (root.find(name) == nullptr) added += " " + name + "=\"" + value + "\"";
        }
        for (const char* name : {"exclude-result-prefixes", "extension-element-prefixes"}) {
            const MarkupAttribute* known = root.find(name);
            const std::string prefixes = prefixesOfParts(name);
            if (known != nullptr) {
                edits[known->valueRange] = prefixes;
            } else if (!prefixes.empty()) {
                added += std::string(" ") + name + "=\"" + prefixes + "\"";
            }
        }
        tag.insert(end, added);
        for (const auto& [range, value] : edits)
            tag.replace(range.begin - root.startTag.begin, range.size(), value);
        writeMark(source, root.startTag.begin);
        out_ += tag;
    }

    std::string prefixesOfParts(const char* attribute) const {
        std::set<std::string> prefixes;
        for (const auto& [key, part] : parts_) {
            for (const std::string& prefix : split(part->attribute(part->root(), attribute), ' '))
                prefixes.insert(prefix);
        }
        prefixes.erase("");
        return joined({prefixes.begin(), prefixes.end()}, " ");
    }

    void writeBody(const BundlePart& part, TextRange range) {
        std::size_t at = range.begin;
        for (const MarkupElement* include : part.includes()) {
            const TextRange place = BundlePart::rangeOf(*include);
            writePiece(part, {at, place.begin});
            at = place.end;
            const Path& key = targets_[include];
            if (!written_.insert(key).second) continue;
            writeBody(*parts_[key], parts_[key]->body());
        }
        writePiece(part, {at, range.end});
    }

    const BundleRequest& request_;
    fs::path outputFolder_;
    Bundle bundle_;
    std::map<Path, std::unique_ptr<BundlePart>> parts_;
    std::map<const MarkupElement*, Path> targets_;
    std::map<std::string, std::pair<const BundlePart*, Definition>> definitions_;
    /// "xmlns:svg" with its namespace.
    std::map<std::string, std::string> namespaces_;
    /// The files that are being read, from the source to the innermost part.
    std::vector<Path> chain_;
    std::set<Path> written_;
    std::string out_;
};

}  // namespace

Bundle makeBundle(const BundleRequest& request) {
    return Bundler(request).make();
}

}  // namespace cli
