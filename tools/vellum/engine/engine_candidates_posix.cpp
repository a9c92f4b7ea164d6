// The engines of Linux, which are on the search path.
//
// SPDX-License-Identifier: MIT
#include <unistd.h>

#include "engine/engines.h"
#include "process/this_process.h"

namespace vellum {

std::vector<Engine> engineCandidates() {
    struct Place {
        const char* name;
        EngineKind kind;
        const char* otherProgram;
    };
    static constexpr Place places[] = {
        {"chromium-headless-shell", EngineKind::Chromium, "chrome-headless-shell"},
        {"chromium", EngineKind::Chromium, "chromium-browser"},
        {"google-chrome", EngineKind::Chromium, "google-chrome-stable"},
        {"microsoft-edge", EngineKind::Chromium, "microsoft-edge-stable"},
        {"weasyprint", EngineKind::WeasyPrint, nullptr},
    };
    std::vector<Engine> engines;
    for (const Place& place : places) {
        auto program = tools::findProgram(place.name);
        if (!program && place.otherProgram != nullptr) {
            program = tools::findProgram(place.otherProgram);
        }
        engines.push_back({place.name, place.kind, program.value_or(std::filesystem::path())});
    }
    return engines;
}

bool isAdministrator() {
    return geteuid() == 0;
}

}  // namespace vellum
