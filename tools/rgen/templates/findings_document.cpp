// SPDX-License-Identifier: MIT
#include "templates/findings_document.h"

#include <algorithm>
#include <set>

#include "base/rgen_version.h"

namespace cli {
namespace {

/// Characters that a URI reference does not allow are written as "%20".
std::string uriOf(const std::string& path) {
    static constexpr char digits[] = "0123456789ABCDEF";
    static const std::string plain =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
    std::string uri;
    for (const char character : path) {
        const auto byte = static_cast<unsigned char>(character);
        if (plain.find(character) != std::string::npos) {
            uri += character;
        } else if (character == '\\') {
            uri += '/';
        } else {
            uri += '%';
            uri += digits[byte >> 4U];
            uri += digits[byte & 0xFU];
        }
    }
    return uri;
}

JsonDocument messageOf(const std::string& text) {
    JsonDocument message;
    message.set("text", text);
    return message;
}

JsonDocument regionOf(const Finding& finding) {
    const auto column = static_cast<std::int64_t>(finding.position.column);
    JsonDocument region;
    region.set("startLine", static_cast<std::int64_t>(finding.position.line));
    region.set("startColumn", column);
    if (finding.length > 0)
        region.set("endColumn", column + static_cast<std::int64_t>(finding.length));
    return region;
}

JsonDocument resultOf(const Finding& finding) {
    JsonDocument artifact;
    artifact.set("uri", uriOf(finding.file));
    JsonDocument physical;
    physical.set("artifactLocation", artifact);
    physical.set("region", regionOf(finding));
    JsonDocument location;
    location.set("physicalLocation", physical);
    JsonDocument result;
    result.set("ruleId", finding.code);
    result.set("level", severityName(finding.severity));
    result.set("message", messageOf(findingText(finding)));
    std::vector<JsonDocument> locations;
    locations.push_back(std::move(location));
    result.set("locations", locations);
    return result;
}

std::vector<JsonDocument> rulesOf(const Findings& findings) {
    std::set<std::string> codes;
    for (const Finding& finding : findings.all())
        codes.insert(finding.code);
    std::vector<JsonDocument> rules;
    for (const std::string& code : codes) {
        JsonDocument rule;
        rule.set("id", code);
        rules.push_back(std::move(rule));
    }
    return rules;
}

JsonDocument toolOf(const Findings& findings) {
    JsonDocument driver;
    driver.set("name", "rgen check");
    driver.set("version", rgenVersion());
    driver.set("rules", rulesOf(findings));
    JsonDocument tool;
    tool.set("driver", driver);
    return tool;
}

}  // namespace

std::vector<JsonDocument> findingRows(const Findings& findings) {
    std::vector<JsonDocument> rows;
    for (const Finding& finding : findings.all()) {
        JsonDocument row;
        row.set("severity", severityName(finding.severity));
        row.set("code", finding.code);
        row.set("file", finding.file);
        row.set("line", static_cast<std::int64_t>(finding.position.line));
        row.set("column", static_cast<std::int64_t>(finding.position.column));
        row.set("length", static_cast<std::int64_t>(finding.length));
        row.set("message", finding.what);
        row.set("advice", finding.advice);
        rows.push_back(std::move(row));
    }
    return rows;
}

JsonDocument sarifDocument(const Findings& findings) {
    std::vector<JsonDocument> results;
    for (const Finding& finding : findings.all())
        results.push_back(resultOf(finding));
    JsonDocument run;
    run.set("tool", toolOf(findings));
    run.set("columnKind", "unicodeCodePoints");
    run.set("results", results);
    std::vector<JsonDocument> runs;
    runs.push_back(std::move(run));
    JsonDocument log;
    log.set("$schema", "https://json.schemastore.org/sarif-2.1.0.json");
    log.set("version", "2.1.0");
    log.set("runs", runs);
    return log;
}

}  // namespace cli
