// SPDX-License-Identifier: MIT
#include "library/error_json.h"

#include "library/library_calls.h"

namespace cli {

JsonDocument errorDetails(const CommandError& error) {
    JsonDocument details;
    details.set("message", error.what());
    details.set("hint", error.hint);
    details.set("exitCode", std::int64_t{static_cast<int>(error.exitCode)});
    if (error.status) {
        details.set("status", statusHex(*error.status));
        details.set("statusName", std::string(repgen::statusName(*error.status)));
        details.set("statusText", repgen::statusText(*error.status));
    }
    return details;
}

void describeFailure(const CommandError& error, JsonDocument& document) {
    document.set("ok", false);
    document.set("error", errorDetails(error));
    if (error.diagnosis) document.set("findings", error.diagnosis->findings);
}

}  // namespace cli
