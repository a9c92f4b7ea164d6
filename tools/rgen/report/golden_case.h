// A test of a report type: values and the reports that are expected of them, in
// ".rgen/tests/TYPE/CASE".
//
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "base/interruption.h"
#include "data/golden_options.h"
#include "data/po_catalogue.h"
#include "data/report_input.h"
#include "data/report_type.h"
#include "library/library_calls.h"
#include "templates/template_text.h"

namespace cli {

class Console;

struct GoldenCase {
    DataDirectory directory;
    ReportType type;
    std::string name;
    /// With "data.json".
    std::string folder;

    std::string file(const std::string& fileName) const;
    /// "expected.html"; of a pdf the page before its conversion, "expected.pdf.html".
    std::string expectedFile(const std::string& format) const;
    /// "acquisition/full".
    std::string title() const { return type.name + "/" + name; }
};

/// The tests of a report type, sorted by name.
std::vector<GoldenCase> goldenCases(const DataDirectory& directory, const ReportType& type);

/// One case, set up in a data directory of its own: with the templates of the report type, and with
/// no persistent data but the case's. The process then has the case's time zone.
class GoldenRun {
public:
    /// Throws a CommandError that names the file of the case which cannot be used.
    GoldenRun(const GoldenCase& golden, Console& console);

    const GoldenOptions& options() const { return options_; }

    /// The formats that are tested: those of the options, else those with an expected report, else
    /// html and txt as far as there are templates.
    std::vector<std::string> formats() const;

    /// The report of the library. Throws a CommandError.
    std::string report(const std::string& format);

    /// What the template transforms, and the template as it is compiled.
    std::string document() const;
    TemplateText templateText(const std::string& format) const;

private:
    void makeDirectory(Console& console);
    void storePersistentData(Console& console);
    ValueSet valuesOf(const std::string& path, Console& console) const;

    GoldenCase case_;
    GoldenOptions options_;
    TemporaryFolder stage_;
    DataDirectory directory_;
    ReportType type_;
    std::unique_ptr<PoCatalogue> catalogue_;
    std::unique_ptr<Translator> translator_;
    repgen::Generator generator_;
    ReportInput input_;
};

}  // namespace cli
