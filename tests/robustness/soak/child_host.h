// Another program of this build, run as a child process that may be killed.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_SOAK_CHILD_HOST_H
#define RGEN_TESTS_SOAK_CHILD_HOST_H

#include <string>
#include <vector>

namespace rgen_test {

class ChildHost {
public:
    // Starts the program of that name beside this one; a failure fails the test.
    ChildHost(const std::string& program, const std::vector<std::string>& arguments);
    // Kills a child that still runs.
    ~ChildHost();
    ChildHost(const ChildHost&) = delete;
    ChildHost& operator=(const ChildHost&) = delete;

    bool runs();
    // Ends the child from outside and waits until it is gone.
    void kill();
    // Waits for the child's own end and gives its exit code; -1 when it did not end by itself.
    int exitCode();

private:
    void* process_ = nullptr;
};

}  // namespace rgen_test

#endif
