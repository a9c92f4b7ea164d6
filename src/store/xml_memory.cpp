// The memory hooks of libxml2, which libxslt uses, too.
//
// SPDX-License-Identifier: MIT
#include "store/xml_memory.h"

#include <libxml/xmlerror.h>
#include <libxml/xmlmemory.h>

#include <cstring>

#include "memory/pool.h"

namespace rgen {
namespace {

void* allocateForXml(std::size_t size) {
    return memory::allocate(memory::poolInUse(), size);
}

void* reallocateForXml(void* block, std::size_t size) {
    return memory::reallocate(memory::poolInUse(), block, size);
}

void releaseForXml(void* block) {
    memory::release(block);
}

char* copyForXml(const char* text) {
    const std::size_t size = std::strlen(text) + 1;
    void* copy = allocateForXml(size);
    return copy != nullptr ? static_cast<char*>(std::memcpy(copy, text, size)) : nullptr;
}

}  // namespace

void installXmlMemory() {
    if (!memory::poolsAreUsed) return;
    xmlMemSetup(releaseForXml, allocateForXml, reallocateForXml, copyForXml);
}

XmlMemoryScope::~XmlMemoryScope() {
    // The thread's last error is the one thing of libxml2 that would outlive the scope.
    xmlResetLastError();
}

}  // namespace rgen
