// A copy of a data directory for the preview: its templates have line marks, and persistent data
// can be left out. The data directory itself is never written to.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <string>

#include "base/interruption.h"
#include "data/report_type.h"

namespace cli {

enum class LineMarks { With, Without };

class ScratchDirectory {
public:
    /// The folder that holds the copy of ".rgen".
    std::string folder() const { return copy().folder; }

    /// The path of another file in the same temporary folder.
    std::string file(const std::string& name) const { return temporary_.file(name); }

    /// Copies what a report needs; files that have not changed are not written again. Throws a
    /// CommandError.
    void update(const DataDirectory& original, const ReportType& type, const std::string& format,
                LineMarks marks, bool withPersistentData);

private:
    DataDirectory copy() const { return {temporary_.file("data")}; }
    void put(const std::string& name, const std::string& content);
    void remove(const std::string& name);

    TemporaryFolder temporary_;
    /// By name inside ".rgen".
    std::map<std::string, std::string> written_;
};

}  // namespace cli
