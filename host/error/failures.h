// What functions inside the library throw for texts and values of a host that cannot be used.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace rgenh {

/// A wrong argument.
class ArgumentError : public std::runtime_error {
public:
    static constexpr std::uint64_t noEntry = UINT64_MAX;

    explicit ArgumentError(const std::string& message) : std::runtime_error(message) {}
    ArgumentError(const std::string& message, int argument, std::uint64_t entry,
                  bool isPair = false)
        : std::runtime_error(message), argument_(argument), entry_(entry), isPair_(isPair) {}

    /// Its position from 1 on; 0 if the thrower does not know it.
    int argument() const noexcept { return argument_; }
    /// The index of the value or pair, or noEntry.
    std::uint64_t entry() const noexcept { return entry_; }
    /// Whether the entry is a pair.
    bool isPair() const noexcept { return isPair_; }

private:
    int argument_ = 0;
    std::uint64_t entry_ = noEntry;
    bool isPair_ = false;
};

/// The converter made no pdf, or not a complete one.
class ConversionFailure : public std::runtime_error {
public:
    ConversionFailure(std::string path, const std::string& message)
        : std::runtime_error(message), path_(std::move(path)) {}

    const std::string& path() const noexcept { return path_; }

private:
    std::string path_;
};

}  // namespace rgenh
