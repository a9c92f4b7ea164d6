// What is known of an option of the command line.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "base/arguments.h"

namespace cli {

/// Where an option is stored. The type says what it takes: nothing, one text (the last one counts)
/// or any number of texts.
using OptionTarget = std::variant<bool& (*)(Arguments&), std::string& (*)(Arguments&),
                                  std::optional<std::string>& (*)(Arguments&),
                                  std::vector<std::string>& (*)(Arguments&)>;

enum class Need { Optional, Required };

/// What shells offer as the value of an option without choices.
enum class Completion { FileNames, ReportTypes };

struct Option {
    /// "-o"; may be empty.
    std::string_view shortName;
    /// "--output".
    std::string_view name;
    /// "FILE"; empty for a flag.
    std::string_view argument;
    /// One line for --help and the completion scripts.
    std::string_view summary;
    /// Sentences for the manual page and docs/rgen.md; `code` is in back quotes.
    std::string_view details;
    OptionTarget target;
    /// The possible values, separated by "|"; empty for any text.
    std::string_view choices = {};
    /// The option `unless` makes a required one optional.
    Need need = Need::Optional;
    std::string_view unless = {};
    Completion completion = Completion::FileNames;
};

}  // namespace cli
