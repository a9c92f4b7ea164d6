// The parsed command line: front/command_line.cpp fills it, the commands read it.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace cli {

/// The formats of the library, separated by "|".
inline constexpr const char* outputFormatChoices = "html|pdf|txt";

/// The sources of the values.
struct ValueArguments {
    /// "NAME[:HINT]=VALUE", as given.
    std::vector<std::string> set;
    /// "NAME=TEXT", as given.
    std::vector<std::string> pair;
    std::vector<std::string> data;
    /// What a message about a path in `data` says to check.
    std::string dataHint = "check the path given to --data";
    bool raw = false;
};

struct ReportArguments {
    std::string output;
    std::string format;
    std::string lang;
    std::string mode = "file";
    std::string base;
    bool noConvert = false;
};

struct CheckArguments {
    bool strict = false;
    std::string sarif;
};

struct NewTypeArguments {
    std::string title;
    /// Separated by commas.
    std::string languages;
    std::string formats = "html,pdf,txt";
    std::string fromData;
};

struct MessagesArguments {
    bool merge = false;
    bool check = false;
    /// A language to begin a catalogue for.
    std::string language;
};

struct PreviewArguments {
    bool open = false;
    std::string port;
    std::string editor;
};

struct TestArguments {
    bool accept = false;
    std::string junit;
};

struct BundleArguments {
    std::vector<std::string> parts;
    bool check = false;
};

struct Arguments {
    /// "report", "persist get"; empty for rgen itself.
    std::string command;
    bool help = false;
    bool version = false;
    bool json = false;
    bool quiet = false;
    std::optional<std::string> dataDir;
    std::optional<std::string> type;
    ValueArguments values;
    ReportArguments report;
    CheckArguments check;
    NewTypeArguments newType;
    MessagesArguments messages;
    PreviewArguments preview;
    TestArguments test;
    /// The file of --skeleton.
    std::string skeleton;
    BundleArguments bundle;
    bool showData = false;
    bool timing = false;
    std::string batch;
    std::string timezone;
    std::string sample = "acquisition";
    /// The arguments that belong to no option.
    std::vector<std::string> operands;
};

}  // namespace cli
