// What the tests of a report type leave untried: templates, places that show no text, values.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>

#include "report/golden_case.h"
#include "templates/finding.h"
#include "templates/template_run.h"
#include "templates/template_tree.h"

namespace cli {

class TestCoverage {
public:
    /// Runs the template of a case once more, and keeps what it reached.
    void add(const GoldenRun& run, const std::string& format);

    /// Notes at what no test reached in the templates of the report type.
    Findings findings(const DataDirectory& directory, const ReportType& type) const;

private:
    /// Elements by the offsets of their start tags in the template's file.
    struct Reached {
        std::set<std::size_t> templates;
        /// Of each xsl:value-of that ran: whether it wrote a text.
        std::map<std::size_t, bool> texts;
        std::set<std::string> values;

        void add(const Reached& other);
    };

    static Findings findingsOf(const TemplateText& text, const Reached& reached);

    std::map<std::string, Reached> formats_;
};

}  // namespace cli
