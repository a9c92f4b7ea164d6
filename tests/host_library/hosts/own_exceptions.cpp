// SPDX-License-Identifier: MIT
#include "host_library/hosts/own_exceptions.h"

#include <exception>
#include <stdexcept>
#include <string>

namespace rgen_test {
namespace {

class MeetsFailuresAtItsEnd {
public:
    MeetsFailuresAtItsEnd(const host_functions& functions, const char* folder, const char*& problem)
        : functions_(functions), folder_(folder), problem_(problem) {}
    ~MeetsFailuresAtItsEnd() {
        const int before = std::uncaught_exceptions();
        problem_ = meet_failures(&functions_, folder_);
        if (problem_ == nullptr && (before != 1 || std::uncaught_exceptions() != before)) {
            problem_ = "the count of uncaught exceptions while the stack is unwound";
        }
    }
    MeetsFailuresAtItsEnd(const MeetsFailuresAtItsEnd&) = delete;
    MeetsFailuresAtItsEnd& operator=(const MeetsFailuresAtItsEnd&) = delete;

private:
    const host_functions& functions_;
    const char* folder_;
    const char*& problem_;
};

const char* meetWhileUnwinding(const host_functions& functions, const char* folder) {
    const char* problem = nullptr;
    try {
        const MeetsFailuresAtItsEnd user(functions, folder, problem);
        throw std::runtime_error("of the host");
    } catch (const std::runtime_error& own) {
        if (problem == nullptr && std::string(own.what()) != "of the host") {
            problem = "the exception of the host";
        }
    }
    return problem;
}

const char* meetWhileHandling(const host_functions& functions, const char* folder) {
    const char* problem = nullptr;
    try {
        throw std::runtime_error("of the host");
    } catch (const std::runtime_error&) {
        problem = meet_failures(&functions, folder);
        if (problem == nullptr && !std::current_exception()) problem = "the current exception";
    }
    return problem;
}

}  // namespace

const char* meetFailures(const host_functions& functions, const char* folder) {
    const char* problem = meet_failures(&functions, folder);
    if (problem == nullptr) problem = meetWhileHandling(functions, folder);
    if (problem == nullptr) problem = meetWhileUnwinding(functions, folder);
    if (problem == nullptr && std::uncaught_exceptions() != 0) {
        problem = "the count of uncaught exceptions";
    }
    return problem;
}

}  // namespace rgen_test
