// The help of each command: what it is for, examples, then its options.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace cli {

/// `options` is the generated text with the usage and the options of the command ("persist get";
/// empty for rgen itself); the examples are put before its usage.
std::string helpText(const std::string& command, const std::string& options);

}  // namespace cli
