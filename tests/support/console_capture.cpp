// Turns the file descriptors 1 and 2 into files for the length of one action.
//
// The low-level calls below have the same names in the C libraries of both systems.
//
// SPDX-License-Identifier: MIT
#include "support/console_capture.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <iostream>

#include "support/temp_folder.h"

namespace rgen_test {
namespace {

// One descriptor that writes into a file until the end of the scope.
class Redirection {
public:
    Redirection(int descriptor, const std::string& file)
        : descriptor_(descriptor), kept_(dup(descriptor)) {
        const int target = open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, S_IRUSR | S_IWUSR);
        EXPECT_GE(target, 0);
        EXPECT_GE(dup2(target, descriptor_), 0);
        close(target);
    }
    ~Redirection() {
        dup2(kept_, descriptor_);
        close(kept_);
    }
    Redirection(const Redirection&) = delete;
    Redirection& operator=(const Redirection&) = delete;

private:
    int descriptor_;
    int kept_;
};

void flushAll() {
    std::cout.flush();
    std::cerr.flush();
    std::fflush(nullptr);
}

std::string withoutCarriageReturns(const std::string& text) {
    std::string result;
    for (const char character : text) {
        if (character != '\r') {
            result.push_back(character);
        }
    }
    return result;
}

}  // namespace

ConsoleText captureConsole(const std::function<void()>& action) {
    const TempFolder folder;
    const std::string outFile = folder.file("out.txt");
    const std::string errFile = folder.file("err.txt");
    flushAll();
    {
        const Redirection out(1, outFile);
        const Redirection err(2, errFile);
        action();
        flushAll();
    }
    return {withoutCarriageReturns(readFile(outFile)), withoutCarriageReturns(readFile(errFile))};
}

}  // namespace rgen_test
