// Handles of delete-on-close files, as rgen_generateReport gives them.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_SUPPORT_DELIVERED_HANDLE_H
#define RGEN_TESTS_SUPPORT_DELIVERED_HANDLE_H

#include <string>

namespace rgen_test {

// True when the file behind the handle has exactly these bytes; where such a handle cannot be read
// (Windows), when it has that many. Closes the handle.
bool closesOnBytes(void* handle, const std::string& bytes);

}  // namespace rgen_test

#endif
