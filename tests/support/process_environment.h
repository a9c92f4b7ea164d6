// The environment variables and the program folder of the test process, as child processes and the
// library see them.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_SUPPORT_PROCESS_ENVIRONMENT_H
#define RGEN_TESTS_SUPPORT_PROCESS_ENVIRONMENT_H

#include <string>

namespace rgen_test {

// The UTF-8 value of an environment variable; an unset one gives the empty text.
std::string environmentText(const std::string& name);

// Sets an environment variable; the empty text removes it.
void setEnvironmentText(const std::string& name, const std::string& value);

// What stands between two folders of the variable PATH.
extern const char pathSeparator;

// The folder of the running test program, without a separator at its end.
std::string programFolder();

// Sets an environment variable for one scope.
class ScopedEnvironmentText {
public:
    ScopedEnvironmentText(const std::string& name, const std::string& value)
        : name_(name), previous_(environmentText(name)) {
        setEnvironmentText(name_, value);
    }
    ~ScopedEnvironmentText() { setEnvironmentText(name_, previous_); }
    ScopedEnvironmentText(const ScopedEnvironmentText&) = delete;
    ScopedEnvironmentText& operator=(const ScopedEnvironmentText&) = delete;

private:
    std::string name_;
    std::string previous_;
};

}  // namespace rgen_test

#endif
