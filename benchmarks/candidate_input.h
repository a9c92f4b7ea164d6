// Input of the measured programs: options of the command line and values of a workload.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace benchmarks {

/// One line of a file of values.
struct Value {
    std::string name;
    bool isNumber = false;
    std::int64_t number = 0;
    std::string text;
};

/// Passes the values to `take` one by one, so that each candidate stores them only in its own form.
/// Throws std::runtime_error when the file cannot be read or a line is not
/// "name<tab>type<tab>text".
void readValueFile(const std::string& path, const std::function<void(const Value&)>& take);

/// Reads the value of "--name=value" if `name` is "--name="; returns false for another argument.
bool takeOption(std::string_view argument, std::string_view name, std::string& value);

}  // namespace benchmarks
