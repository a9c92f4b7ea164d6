// SPDX-License-Identifier: MIT
#include "templates/same_formats.h"

#include <algorithm>
#include <sstream>

#include "base/input_file.h"
#include "base/paths.h"
#include "templates/markup_scanner.h"

namespace cli {
namespace {

constexpr std::string_view start = "<?rgen-same ";

Finding differenceFrom(const std::string& path) {
    Finding finding;
    finding.code = "different-copy";
    finding.what = "\"" + path + "\" is to be the same as this file, and is not";
    finding.advice = "copy this file there, or remove this line from both";
    return finding;
}

}  // namespace

Findings differingFormats(const TemplateFile& file, const TemplateText& text) {
    Findings findings;
    if (!file.directory || !file.type) return findings;
    const std::vector<std::string>& formats = outputFormats();
    for (const TextRange& range : scanMarkup(text.text()).instructions) {
        const std::string instruction = text.text().substr(range.begin, range.size());
        if (instruction.rfind(start, 0) != 0) continue;
        std::istringstream words(
            instruction.substr(start.size(), instruction.size() - start.size() - 2));
        for (std::string format; words >> format;) {
            if (std::find(formats.begin(), formats.end(), format) == formats.end()) continue;
            const std::string path = templatePath(*file.directory, *file.type, format);
            if (!exists(path) || readInputFile(path, "check the data directory") == text.original())
                continue;
            findings.add(text.at(range.begin, range.end, differenceFrom(path)));
        }
    }
    return findings;
}

}  // namespace cli
