// Requests and persistent data from arrays of values.
//
// SPDX-License-Identifier: MIT
#include <memory>

#include "api/call_checks.h"
#include "request/request.h"
#include "request/value_records.h"
#include "strata_repgenlib/rgen_host.h"
#include "text/guid_text.h"
#include "text/references.h"

using namespace rgenh;

namespace {

/// Frees pairs of the library unless they are taken.
class OwnedPairs {
public:
    OwnedPairs() = default;
    ~OwnedPairs() { rgen_freeRgenCAnsiStringSet(&record); }
    OwnedPairs(const OwnedPairs&) = delete;
    OwnedPairs& operator=(const OwnedPairs&) = delete;

    RgenCAnsiStringPairSet record = {};
};

/// The text without its references is not longer, so it fits into the buffer.
void unescapeInPlace(RgenAnsiString& text) {
    const std::string plain = withoutReferences({text.data, text.length});
    text.length = static_cast<std::uint32_t>(plain.copy(text.data, plain.size()));
    text.data[text.length] = '\0';
}

}  // namespace

extern "C" {

RgenhRequest* RGEN_CALL rgenh_newRequest(const RgenhRequestParts* parts,
                                         RgenhError* error) noexcept {
    std::unique_ptr<RgenhRequest> result;
    guarded(error, [&](ErrorRecord& record) -> RgenStatus {
        if (hasNull({{parts, "parts"}}, record)) return RGEN_E_BAD_PARAMETER;
        if (parts->size < sizeof *parts) {
            record.say("the size of parts is too small");
            return record.failArgument(1);
        }
        record.setArgument(1);
        result = std::make_unique<RgenhRequest>(makeRequest(*parts));
        record.setArgument(0);
        return RGEN_OK;
    });
    return result.release();
}

const RgenCInputParams* RGEN_CALL rgenh_getRequestInput(const RgenhRequest* request) noexcept {
    return request == nullptr ? nullptr : &request->request->input;
}

void RGEN_CALL rgenh_freeRequest(RgenhRequest* request) noexcept {
    delete request;
}

RgenStatus RGEN_CALL rgenh_setPersistentValues(RgenReportGenerator* generator, const RgenGuid* guid,
                                               const RgenhValue* values, uint64_t count,
                                               RgenhError* error) noexcept {
    return generatorCall(
        error, {{generator, "generator"}, {guid, "guid"}}, nullptr, [&](ErrorRecord& record) {
            record.setArgument(3);
            Arena arena;
            const RgenCVariantSet set = makeValues(values, count, TextUse::PersistentData, arena);
            record.setArgument(0);
            const RgenStatus status = rgen_setPersistentDataFromCVariantSet(generator, guid, &set);
            return checkedStatus(record, GuidText(*guid), status);
        });
}

RgenStatus RGEN_CALL rgenh_getPersistentTexts(RgenReportGenerator* generator, const RgenGuid* guid,
                                              RgenCAnsiStringPairSet* pairs,
                                              RgenhError* error) noexcept {
    return generatorCall(
        error, {{generator, "generator"}, {guid, "guid"}, {pairs, "pairs"}}, nullptr,
        [&](ErrorRecord& record) {
            OwnedPairs read;
            const RgenStatus status = rgen_getPersistentData(generator, guid, &read.record);
            if (status == RGEN_E_NO_PERSIST_VALUES || status == RGEN_E_NO_VALID_PERSIST_VALUES) {
                return RGEN_OK;
            }
            if (status < 0) return checkedStatus(record, GuidText(*guid), status);
            if (read.record.count == 0) throw std::bad_alloc();
            for (std::uint64_t i = 0; i < read.record.count; ++i)
                unescapeInPlace(read.record.values[i]);
            *pairs = read.record;
            read.record = {};
            return RGEN_OK;
        });
}
}
