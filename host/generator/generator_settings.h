// What the host library knows of each generator that it created: the settings that its jobs need.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

#include "generator/translator.h"
#include "generator/worker.h"
#include "platform/host_platform.h"
#include "strata_repgenlib/rgen.h"

namespace rgenh {

struct GeneratorSettings {
    explicit GeneratorSettings(RgenReportGenerator* handle)
        : generator(handle),
          workers(std::make_shared<WorkerPool>()),
          translation(std::make_unique<TranslatorUse>(handle, nullptr)) {}

    RgenReportGenerator* const generator;
    /// For the jobs of the generator, which may end after it.
    const std::shared_ptr<WorkerPool> workers;
    /// Held while a setting is stored in the library and here, so that both agree. The holder may
    /// wait for the library's lock, so jobs do not take this one.
    platform::Monitor change;
    /// Guards the fields below, for moments.
    platform::Monitor fields;
    /// Empty until a data directory is set.
    std::string dataDirPath;
    std::unique_ptr<TranslatorUse> translation;
};

/// Registers a generator. Throws std::bad_alloc.
void addSettings(std::shared_ptr<GeneratorSettings> settings);

/// The settings of a generator; null for a handle that rgenh_newReportGenerator did not return.
std::shared_ptr<GeneratorSettings> settingsOf(const RgenReportGenerator* generator);

void removeSettings(const RgenReportGenerator* generator) noexcept;

}  // namespace rgenh
