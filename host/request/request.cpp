// Everything that a request points to is in its arena.
//
// SPDX-License-Identifier: MIT
#include "request/request.h"

#include <optional>
#include <string>

#include "error/failures.h"
#include "request/host_text.h"
#include "request/value_records.h"
#include "text/guid_text.h"

namespace rgenh {
namespace {

RgenGuid reportTypeOf(const RgenhRequestParts& parts) {
    return parts.reportType == nullptr ? parts.templateGuid : requiredGuid(parts.reportType);
}

RgenAnsiString textOrEmpty(const char* text, Arena& arena) {
    return makeText(text == nullptr ? "" : text, arena);
}

}  // namespace

RgenGuid requiredGuid(std::string_view text, int argument) {
    const std::optional<RgenGuid> guid = parseGuid(text);
    if (guid) return *guid;
    constexpr std::size_t longestShown = 60;
    throw ArgumentError("\"" + std::string(text.substr(0, longestShown)) + "\" is not a GUID",
                        argument, ArgumentError::noEntry);
}

std::shared_ptr<const Request> makeRequest(const RgenhRequestParts& parts) {
    auto request = std::make_shared<Request>();
    RgenCInputParams& input = request->input;
    Arena& arena = request->arena;
    input.templateGuid = reportTypeOf(parts);
    input.outputMode = parts.outputMode;
    input.skipExternalConversion = parts.skipExternalConversion;
    input.outputFormat = textOrEmpty(parts.format, arena);
    input.outputPath = textOrEmpty(parts.outputPath, arena);
    input.converterBaseArg = textOrEmpty(parts.converterBase, arena);
    input.variants = makeValues(parts.values, parts.valueCount, TextUse::Report, arena);
    input.pairs = makePairs(parts.pairs, parts.pairCount, arena);
    return request;
}

}  // namespace rgenh
