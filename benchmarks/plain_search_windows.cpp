// The plain search of the C++ library.
//
// SPDX-License-Identifier: MIT
#include "plain_search.h"

namespace benchmarks {
namespace {

std::size_t findByView(std::string_view text, std::string_view wanted) {
    return text.find(wanted);
}

}  // namespace

std::vector<PlainSearch> plainSearches() {
    return {{"find", findByView}};
}

}  // namespace benchmarks
