// SPDX-License-Identifier: MIT
#include "candidate_input.h"

#include <cstddef>
#include <fstream>
#include <stdexcept>

namespace benchmarks {
namespace {

Value parseLine(const std::string& line) {
    const std::size_t first = line.find('\t');
    const std::size_t second = line.find('\t', first + 1);
    if (second == std::string::npos) throw std::runtime_error("a value has no two tabs: " + line);
    Value value;
    value.name = line.substr(0, first);
    value.isNumber = line.compare(first + 1, second - first - 1, "int64") == 0;
    value.text = line.substr(second + 1);
    if (value.isNumber) value.number = std::stoll(value.text);
    return value;
}

}  // namespace

void readValueFile(const std::string& path, const std::function<void(const Value&)>& take) {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw std::runtime_error("cannot read " + path);
    std::string line;
    while (std::getline(file, line))
        take(parseLine(line));
}

bool takeOption(std::string_view argument, std::string_view name, std::string& value) {
    if (argument.substr(0, name.size()) != name) return false;
    value = argument.substr(name.size());
    return true;
}

}  // namespace benchmarks
