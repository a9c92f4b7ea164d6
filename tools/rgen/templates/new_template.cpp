// SPDX-License-Identifier: MIT
#include "templates/new_template.h"

#include <algorithm>
#include <map>
#include <vector>

#include "base/text_functions.h"

namespace cli {
namespace {

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}
bool isUpper(char character) {
    return character >= 'A' && character <= 'Z';
}

bool isNumber(const std::string& text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), isDigit);
}

/// A list: entries "Err.10.Address", or "Hours.10" with a single column "".
struct List {
    std::string name;
    /// Their names, in the order in which they were found first, and how many entries have them.
    std::vector<std::pair<std::string, std::size_t>> columns;

    /// The column that most entries have; the rows are those of its values.
    const std::string& leading() const {
        const auto most = std::max_element(
            columns.begin(), columns.end(),
            [](const auto& one, const auto& other) { return one.second < other.second; });
        return most->first;
    }
};

struct Shown {
    std::vector<std::string> single;
    std::vector<List> lists;
};

List& listNamed(Shown& shown, const std::string& name) {
    for (List& list : shown.lists) {
        if (list.name == name) return list;
    }
    shown.lists.push_back({name, {}});
    return shown.lists.back();
}

void addToList(Shown& shown, const std::string& list, const std::string& column) {
    auto& columns = listNamed(shown, list).columns;
    for (auto& [name, count] : columns) {
        if (name != column) continue;
        ++count;
        return;
    }
    columns.emplace_back(column, 1);
}

/// Names of one part are values; "List.2.Column" and "List.2" belong to lists.
Shown arranged(const std::vector<Value>& values) {
    Shown shown;
    for (const Value& value : values) {
        const std::string& name = value.name;
        const std::vector<std::string> parts = split(name, '.');
        if (parts.size() == 3 && isNumber(parts[1])) {
            addToList(shown, parts[0], parts[2]);
        } else if (parts.size() == 2 && isNumber(parts[1])) {
            addToList(shown, parts[0], "");
        } else {
            shown.single.push_back(name);
        }
    }
    return shown;
}

/// For an element's content, and for an attribute in double quotes.
std::string escaped(const std::string& text) {
    std::string result;
    for (const char character : text) {
        if (character == '&') {
            result += "&amp;";
        } else if (character == '<') {
            result += "&lt;";
        } else if (character == '>') {
            result += "&gt;";
        } else if (character == '"') {
            result += "&quot;";
        } else {
            result += character;
        }
    }
    return result;
}

/// A marker. Its text must not contain a quote, so one is written as a reference.
std::string marked(const std::string& text) {
    return "QT_TRANSLATE_NOOP(\"QObject\", \"" + escaped(text) + "\")";
}

/// A literal of an expression in an attribute in double quotes. XPath has no escapes: a name with
/// both quotes is put together.
std::string literal(const std::string& name) {
    if (name.find('\'') == std::string::npos) return "'" + escaped(name) + "'";
    std::string joinedParts;
    for (const std::string& part : split(name + "'", '\''))
        joinedParts += (joinedParts.empty() ? "'" : ", &quot;'&quot;, '") + escaped(part) + "'";
    return "concat(" + joinedParts + ", '')";
}

/// Dates begin, and bytes end, with a space.
std::string selected(const std::string& path) {
    return "<xsl:value-of select=\"normalize-space(" + path + ")\"/>";
}

std::string valueNamed(const std::string& name) {
    return selected("key('p', " + literal(name) + ")");
}

std::string entryPath(const List& list, const std::string& column) {
    if (column.empty()) return ".";
    return "key('p', concat(" + literal(list.name + ".") + ", $entry, " + literal("." + column) +
           "))";
}

std::string labelOf(const List& list, const std::string& column) {
    return labelFor(column.empty() ? list.name : column);
}

/// "  <xsl:for-each ...>" over the entries, with the number of the entry in $entry.
std::string beginOfEntries(const List& list, const std::string& indent) {
    const std::string& leading = list.leading();
    std::string lines = indent + "<xsl:for-each select=\"";
    if (leading.empty()) {
        lines += "//property[starts-with(@name, " + literal(list.name + ".") + ")]\">\n" + indent +
                 "  <xsl:sort select=\"substring-after(@name, '.')\" data-type=\"number\"/>\n";
        return lines;
    }
    lines += "key('list', " + literal(list.name + "*" + leading) + ")\">\n" + indent +
             "  <xsl:sort select=\"substring-before(substring-after(@name, '.'), '.')\" "
             "data-type=\"number\"/>\n" +
             indent +
             "  <xsl:variable name=\"entry\" "
             "select=\"substring-before(substring-after(@name, '.'), '.')\"/>\n";
    return lines;
}

bool needsListKey(const Shown& shown) {
    return std::any_of(shown.lists.begin(), shown.lists.end(),
                       [](const List& list) { return !list.leading().empty(); });
}

bool needsValueKey(const Shown& shown) {
    return !shown.single.empty() || needsListKey(shown);
}

std::string keysFor(const Shown& shown) {
    std::string keys;
    if (needsValueKey(shown)) keys += "  <xsl:key name=\"p\" match=\"property\" use=\"@name\"/>\n";
    if (!needsListKey(shown)) return keys;
    return keys +
           "  <!-- The values of a list by the ends of their names: \"Items.2.Name\" under "
           "\"Items*Name\". -->\n"
           "  <xsl:key name=\"list\" match=\"property[contains(substring-after(@name, '.'), "
           "'.')]\"\n"
           "    use=\"concat(substring-before(@name, '.'), '*', "
           "substring-after(substring-after(@name, '.'), '.'))\"/>\n";
}

std::string beginOfStylesheet(const std::string& comment, const std::string& output,
                              const Shown& shown) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" + comment +
           "<xsl:stylesheet version=\"1.0\" "
           "xmlns:xsl=\"http://www.w3.org/1999/XSL/Transform\">\n" +
           "  " + output + "\n" + keysFor(shown) + "\n  <xsl:template match=\"/\">\n";
}

constexpr const char* endOfStylesheet = "  </xsl:template>\n</xsl:stylesheet>\n";

constexpr const char* pageStyle =
    "        <style>\n"
    "          body { font: 11pt/1.45 sans-serif; max-width: 48em; margin: 2em auto; "
    "padding: 0 1em; }\n"
    "          table { border-collapse: collapse; width: 100%; margin: 1em 0; }\n"
    "          th, td { text-align: start; vertical-align: top; padding: .3em .6em; "
    "border-bottom: 1px solid #bbb; overflow-wrap: anywhere; }\n"
    "          caption { text-align: start; font-weight: bold; padding: .3em 0; }\n"
    "          @media print { body { margin: 0; max-width: none; } tr { break-inside: avoid; } }\n"
    "        </style>\n";

std::string pageTableOf(const std::vector<std::string>& names) {
    if (names.empty()) return {};
    std::string lines = "        <table>\n";
    for (const std::string& name : names) {
        lines += "          <tr>\n            <th scope=\"row\">" + marked(labelFor(name)) +
                 "</th>\n            <td>" + valueNamed(name) + "</td>\n          </tr>\n";
    }
    return lines + "        </table>\n";
}

std::string pageTableOf(const List& list) {
    const std::string indent = "          ";
    std::string head = indent + "<tr>\n";
    std::string cells = indent + "  <tr>\n";
    for (const auto& [column, count] : list.columns) {
        head += indent + "  <th scope=\"col\">" + marked(labelOf(list, column)) + "</th>\n";
        cells += indent + "    <td>" + selected(entryPath(list, column)) + "</td>\n";
    }
    return "        <table>\n" + indent + "<caption>" + marked(labelFor(list.name)) +
           "</caption>\n" + head + indent + "</tr>\n" + beginOfEntries(list, indent) + cells +
           indent + "  </tr>\n" + indent + "</xsl:for-each>\n        </table>\n";
}

std::string textLinesOf(const List& list) {
    std::string cells = "      <xsl:text>- </xsl:text>\n";
    for (std::size_t i = 0; i < list.columns.size(); ++i) {
        if (i > 0) cells += "      <xsl:text>, </xsl:text>\n";
        cells += "      " + selected(entryPath(list, list.columns[i].first)) + "\n";
    }
    return "    <xsl:text>&#10;" + marked(labelFor(list.name)) + "&#10;</xsl:text>\n" +
           beginOfEntries(list, "    ") + cells +
           "      <xsl:text>&#10;</xsl:text>\n    </xsl:for-each>\n";
}

}  // namespace

std::string labelFor(const std::string& name) {
    std::string label;
    for (std::size_t i = 0; i < name.size(); ++i) {
        const bool endsWord = i > 0 && isUpper(name[i]) && !isUpper(name[i - 1]) &&
                              name[i - 1] != '.' && name[i - 1] != ' ';
        if (name[i] == '.' || name[i] == '_') {
            label += ' ';
            continue;
        }
        if (endsWord) label += ' ';
        const bool isInAbbreviation = i + 1 < name.size() && isUpper(name[i + 1]);
        const bool isFirst = label.empty();
        label += !isFirst && isUpper(name[i]) && !isInAbbreviation ? lowerCase({name[i]})
                                                                   : std::string(1, name[i]);
    }
    return label;
}

std::string newPageTemplate(const NewTemplate& wanted, const std::vector<Value>& values) {
    const Shown shown = arranged(values);
    const std::string comment = wanted.servesPdf ? "<?rgen-same html pdf?>\n" : std::string();
    std::string text = beginOfStylesheet(comment,
                                         "<xsl:output method=\"html\" encoding=\"UTF-8\" "
                                         "doctype-system=\"about:legacy-compat\"/>",
                                         shown);
    text += "    <html lang='" + marked("en") + "'>\n      <head>\n        <title>" +
            marked(wanted.title) + "</title>\n" +
            "        <meta name=\"viewport\" content=\"width=device-width, initial-scale=1\"/>\n" +
            pageStyle + "      </head>\n      <body>\n        <h1>" + marked(wanted.title) +
            "</h1>\n" + pageTableOf(shown.single);
    for (const List& list : shown.lists)
        text += pageTableOf(list);
    return text + "      </body>\n    </html>\n" + endOfStylesheet;
}

std::string newTextTemplate(const NewTemplate& wanted, const std::vector<Value>& values) {
    const Shown shown = arranged(values);
    std::string text =
        beginOfStylesheet("", "<xsl:output method=\"text\" encoding=\"UTF-8\"/>", shown);
    text += "    <xsl:text>" + marked(wanted.title) + "&#10;&#10;</xsl:text>\n";
    for (const std::string& name : shown.single) {
        text += "    <xsl:text>" + marked(labelFor(name)) + ": </xsl:text>\n    " +
                valueNamed(name) + "\n    <xsl:text>&#10;</xsl:text>\n";
    }
    for (const List& list : shown.lists)
        text += textLinesOf(list);
    return text + endOfStylesheet;
}

}  // namespace cli
