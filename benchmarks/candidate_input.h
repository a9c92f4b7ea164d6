// What every measured program reads: options of its command line and the values of a workload.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace benchmarks {

/// One line of a file of values, as a host holds it.
struct Value {
    std::string name;
    bool isNumber = false;
    std::int64_t number = 0;
    std::string text;
};

/// Hands the values over one by one, so that each candidate keeps them in its own form alone.
/// Raises std::runtime_error when the file cannot be read or a line is not
/// "name<tab>type<tab>text".
void readValueFile(const std::string& path, const std::function<void(const Value&)>& take);

/// Takes the value of "--name=value" when `name` is "--name="; false when it is another argument.
bool takeOption(std::string_view argument, std::string_view name, std::string& value);

}  // namespace benchmarks
