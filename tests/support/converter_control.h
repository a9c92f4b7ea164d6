// The test side of the stand-in converter: lets the library find it and tells it what to do.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_SUPPORT_CONVERTER_CONTROL_H
#define RGEN_TESTS_SUPPORT_CONVERTER_CONTROL_H

#include <cstddef>
#include <string>
#include <vector>

#include "support/temp_folder.h"
#include "support/test_platform.h"

namespace rgen_test {

// The commands of a control file; stand_in_converter.cpp lists them.
using ConverterCommands = std::vector<std::vector<std::string>>;

// While it lives, the stand-in is the first "vellum" of the program search and obeys obey().
// The folder must outlive it.
class ConverterControl {
public:
    explicit ConverterControl(const TempFolder& folder);

    // Says what the converters that are started from now on do. Without it they succeed at once
    // and write nothing.
    void obey(const ConverterCommands& commands) const;
    // Writes a control file of its own, for the command "background"; returns its path.
    std::string writeCommands(const std::string& name, const ConverterCommands& commands) const;

private:
    const TempFolder& folder_;
    ScopedEnvironmentText path_;
    ScopedEnvironmentText control_;
};

// Wait until a file exists, or until a folder holds that many entries. The bound is far above what
// a working converter needs; when it passes, the test fails and the result is false.
bool waitForFile(const std::string& path);
bool waitForFiles(const std::string& folder, std::size_t count);

// The rest of each line of a stand-in's log that starts with that word and a tab.
std::vector<std::string> loggedFacts(const std::string& logPath, const std::string& word);

}  // namespace rgen_test

#endif
