// The same host, which loads the libraries. Its second argument is the path of the host library; it
// is loaded, used and unloaded several times.
//
// SPDX-License-Identifier: MIT
#include <cstdio>
#include <string>

#include "host_library/hosts/own_exceptions.h"
#include "support/test_platform.h"

namespace rgen_test {
namespace {

template <typename Function>
void find(void* library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(findSymbol(library, name));
}

/// The first library comes along with the host library; its symbols are found through it.
host_functions functionsOf(void* library, void* first) {
    host_functions functions = {};
    find(library, "rgenh_newReportGenerator", functions.new_generator);
    find(library, "rgenh_freeReportGenerator", functions.free_generator);
    find(library, "rgenh_setDataDirPath", functions.set_data_dir);
    find(library, "rgenh_generateReport", functions.generate);
    find(library, "rgenh_newRequest", functions.new_request);
    find(library, "rgenh_getRequestInput", functions.request_input);
    find(library, "rgenh_freeRequest", functions.free_request);
    find(library, "rgenh_startReport", functions.start);
    find(library, "rgenh_takeJobResult", functions.take);
    find(library, "rgenh_freeJob", functions.free_job);
    find(first, "rgen_freeRgenCVariant", functions.free_value);
    return functions;
}

const char* loadAndMeetFailures(const char* folder, const char* path, const char* firstPath) {
    void* const first = loadLibrary(firstPath);
    void* const library = loadLibrary(path);
    if (first == nullptr || library == nullptr) return "a library cannot be loaded";
    const char* const problem = meetFailures(functionsOf(library, first), folder);
    if (!unloadLibrary(library) || !unloadLibrary(first)) return "a library cannot be unloaded";
    return problem;
}

}  // namespace
}  // namespace rgen_test

int main(int count, char** arguments) {
    if (count != 4) return 2;
    for (int round = 0; round < 5; ++round) {
        const char* const problem =
            rgen_test::loadAndMeetFailures(arguments[1], arguments[2], arguments[3]);
        if (problem == nullptr) continue;
        std::fprintf(stderr, "%s\n", problem);
        return 1;
    }
    return 0;
}
