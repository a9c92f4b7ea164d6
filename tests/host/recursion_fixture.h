// Templates that recurse without end, or deeply, for cases on stacks of several kinds and sizes. A
// crash would end the program before the line that its runner requires.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_HOST_RECURSION_FIXTURE_H
#define RGEN_TESTS_HOST_RECURSION_FIXTURE_H

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "support/report_fixture.h"
#include "support/sized_thread.h"

namespace rgen_test {

// The call in the templates of endless().
extern const char* const callAgain;

// A template "again" with that body, which the root template calls.
std::string endless(const std::string& body, const std::string& topLevel = std::string());

// A thread or fiber with a stack of its own.
struct StackPlace {
    const char* label;
    void (*run)(std::size_t stackSize, const std::function<void()>& function);
    std::size_t stackSize;
};

// A fiber with the stack that the library asks for, of which the host has used some.
StackPlace smallestFiber();

// Threads and fibers with the stack that the library asks for, of which the host has used some, and
// with 1 MiB.
std::vector<StackPlace> smallStackPlaces();

class Recursion : public ReportTest {
protected:
    // Every kind of endless template fails, and a report after it succeeds.
    void expectEveryEndlessTemplateToFail();

    // Runs a template on a thread of that stack size, or at such a place.
    Report reportOnStack(std::size_t stackSize, const std::string& text);
    Report reportAt(const StackPlace& place, const std::string& text);

    // A template that calls itself that many times and writes a letter each time.
    static std::string descending(int levels);
    // That many templates, each of which calls the next one.
    static std::string chain(int levels);
    // Descends with apply-templates and writes nested elements: those of nested().
    static std::string nesting(int levels);
    static std::string nested(std::size_t levels);
};

}  // namespace rgen_test

#endif
