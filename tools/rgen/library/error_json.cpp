// SPDX-License-Identifier: MIT
#include "library/error_json.h"

#include "library/generator.h"
#include "library/status_table.h"

namespace cli {

JsonDocument errorDetails(const CommandError& error) {
    JsonDocument details;
    details.set("message", error.what());
    details.set("hint", error.hint);
    details.set("exitCode", std::int64_t{static_cast<int>(error.exitCode)});
    if (error.status) {
        const StatusExplanation* const known = findStatus(*error.status);
        details.set("status", Generator::statusHex(*error.status));
        details.set("statusName", known == nullptr ? std::string() : std::string(known->name));
        details.set("statusText", Generator().statusText(*error.status));
    }
    return details;
}

void describeFailure(const CommandError& error, JsonDocument& document) {
    document.set("ok", false);
    document.set("error", errorDetails(error));
}

}  // namespace cli
