// The plain searches of the C++ library and of the C library.
//
// SPDX-License-Identifier: MIT
#include <string.h>

#include "plain_search.h"

namespace benchmarks {
namespace {

std::size_t findByView(std::string_view text, std::string_view wanted) {
    return text.find(wanted);
}

std::size_t findByMemmem(std::string_view text, std::string_view wanted) {
    const void* found = memmem(text.data(), text.size(), wanted.data(), wanted.size());
    if (found == nullptr) return std::string_view::npos;
    return static_cast<std::size_t>(static_cast<const char*>(found) - text.data());
}

}  // namespace

std::vector<PlainSearch> plainSearches() {
    return {{"find", findByView}, {"memmem", findByMemmem}};
}

}  // namespace benchmarks
