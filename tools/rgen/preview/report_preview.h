// Makes the reports that the preview shows, from the files as they are at that moment.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "base/command_error.h"
#include "base/json_document.h"
#include "preview/data_choices.h"
#include "preview/page_store.h"
#include "preview/preview_settings.h"
#include "preview/scratch_directory.h"
#include "report/report_generation.h"

namespace cli {

/// What a browser asks for. A language or data choice that there is not is reported like a mistake
/// in a file.
struct WantedView {
    std::string format;
    /// Empty for the texts of the template itself.
    std::string language;
    /// The identifier of a DataChoice; empty for the first one.
    std::string data;
};

struct TemplatePlace {
    std::string format;
    std::size_t line = 0;
    std::size_t column = 0;
};

/// May be used by several threads at once; one report is made at a time.
class ReportPreview {
public:
    /// Throws a CommandError when there is no such data directory or report type.
    explicit ReportPreview(PreviewSettings settings);

    /// Makes the report and describes it: its page, or the last good one and the mistakes, and what
    /// can be chosen. Throws a CommandError only after Ctrl-C.
    JsonDocument view(const WantedView& wanted);

    /// The converted report. Throws a CommandError.
    std::string pdf(const WantedView& wanted);

    std::shared_ptr<const StoredPage> page(std::uint64_t number) const {
        return pages_.find(number);
    }

    /// The path of the template and the line of the place: "file", "line", "column", "source".
    JsonDocument describe(const TemplatePlace& place);
    /// The path of the template of a format, absolute.
    std::string templateFile(const std::string& format);

    /// The bytes of a file that a report shows, such as an image. Its changes count from now on.
    std::string readShownFile(const std::string& path);

    /// All files that a view can depend on, existing or not.
    std::vector<std::string> involvedFiles();

private:
    void readType();
    WantedView completed(const WantedView& wanted) const;
    void describeChoices(JsonDocument& document) const;
    std::string make(const WantedView& wanted, LineMarks marks, Console& console);
    std::string makeMarked(const WantedView& wanted, Console& console);
    ReportRequest requestFor(const WantedView& wanted, Console& console);
    std::optional<CommandError> tryToMake(const WantedView& wanted, Console& console,
                                          std::string& page);
    std::uint64_t store(const WantedView& wanted, std::string page, bool isGood);

    PreviewSettings settings_;
    std::mutex mutex_;
    ScratchDirectory scratch_;
    repgen::Generator generator_;
    ReportType type_;
    PageStore pages_;
    std::set<std::string> shownFiles_;
};

}  // namespace cli
