// Statuses and versions.
//
// SPDX-License-Identifier: MIT
#include <cstring>
#include <string>

#include "api/call_checks.h"
#include "platform/host_platform.h"
#include "status/status_table.h"
#include "strata_repgenlib/rgen_host.h"

using namespace rgenh;

namespace {

template <std::size_t Size>
void store(const std::string& text, char (&target)[Size]) {
    target[text.copy(target, Size - 1)] = '\0';
}

}  // namespace

extern "C" {

const char* RGEN_CALL rgenh_getStatusText(RgenStatus status) noexcept {
    return statusText(status);
}

const char* RGEN_CALL rgenh_getStatusName(RgenStatus status) noexcept {
    const StatusExplanation* const known = findStatus(status);
    return known == nullptr ? "" : known->name;
}

const char* RGEN_CALL rgenh_getStatusCause(RgenStatus status, uint64_t index) noexcept {
    const StatusExplanation* const known = findStatus(status);
    return known == nullptr || index >= mostCauses ? nullptr : known->causes[index];
}

const char* RGEN_CALL rgenh_getStatusNextStep(RgenStatus status) noexcept {
    const StatusExplanation* const known = findStatus(status);
    return known == nullptr ? "" : known->nextStep;
}

int32_t RGEN_CALL rgenh_getStatusAt(uint64_t index, RgenStatus* status) noexcept {
    if (status == nullptr || index >= statusCount()) return 0;
    *status = statusAt(index).status;
    return 1;
}

RgenStatus RGEN_CALL rgenh_getVersions(RgenhVersions* versions, RgenhError* error) noexcept {
    return guarded(error, [&](ErrorRecord& record) -> RgenStatus {
        if (hasNull({{versions, "versions"}}, record)) return RGEN_E_BAD_PARAMETER;
        if (versions->size < sizeof *versions) {
            record.say("the size of versions is too small");
            return record.failArgument(1);
        }
        const platform::LoadedFile library = platform::loadedFileOf(statusText(RGEN_OK));
        const platform::LoadedFile host = platform::loadedFileOf(&statusAt(0));
        store(library.version, versions->library);
        store(library.path, versions->libraryPath);
        store(host.version, versions->host);
        store(host.path, versions->hostPath);
        return RGEN_OK;
    });
}
}
