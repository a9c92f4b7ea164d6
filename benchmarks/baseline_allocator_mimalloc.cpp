// The C heap and mimalloc, which is loaded on demand: it would replace the C heap of a program that
// is linked with it.
//
// SPDX-License-Identifier: MIT
#include <dlfcn.h>
#include <libxml/xmlmemory.h>

#include "baseline_allocator.h"
#include "report_benchmark.h"

namespace benchmarks {
namespace {

template <typename Function>
Function function(void* library, const char* name) {
    void* address = dlsym(library, name);
    if (address == nullptr) fail(std::string("mimalloc has no function ") + name);
    return reinterpret_cast<Function>(address);
}

}  // namespace

void chooseAllocator(const std::string& name) {
    if (name == "c") return;
    if (name != "mimalloc") fail("there is no allocator " + name);
    void* library = dlopen(RGEN_MIMALLOC_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) fail(dlerror());
    xmlMemSetup(function<xmlFreeFunc>(library, "mi_free"),
                function<xmlMallocFunc>(library, "mi_malloc"),
                function<xmlReallocFunc>(library, "mi_realloc"),
                function<xmlStrdupFunc>(library, "mi_strdup"));
}

}  // namespace benchmarks
