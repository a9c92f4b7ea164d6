// A list, since processes have few generators. It has no destructor, so that generators can be used
// until the process has ended.
//
// SPDX-License-Identifier: MIT
#include "generator/generator_settings.h"

#include <atomic>
#include <utility>

#include "lock/spin_lock.h"

namespace rgenh {
namespace {

struct Entry {
    std::shared_ptr<GeneratorSettings> settings;
    Entry* next;
};

std::atomic_flag listIsBusy = ATOMIC_FLAG_INIT;
Entry* firstEntry = nullptr;

/// The link to the entry of a generator, or to null at the end. Call with the lock held.
Entry** linkTo(const RgenReportGenerator* generator) {
    Entry** link = &firstEntry;
    while (*link != nullptr && (*link)->settings->generator != generator)
        link = &(*link)->next;
    return link;
}

}  // namespace

void addSettings(std::shared_ptr<GeneratorSettings> settings) {
    auto entry = std::make_unique<Entry>(Entry{std::move(settings), nullptr});
    const rgen::sync::SpinLock lock(listIsBusy);
    entry->next = firstEntry;
    firstEntry = entry.release();
}

std::shared_ptr<GeneratorSettings> settingsOf(const RgenReportGenerator* generator) {
    const rgen::sync::SpinLock lock(listIsBusy);
    const Entry* const entry = *linkTo(generator);
    return entry == nullptr ? nullptr : entry->settings;
}

void removeSettings(const RgenReportGenerator* generator) noexcept {
    std::unique_ptr<Entry> removed;
    const rgen::sync::SpinLock lock(listIsBusy);
    Entry** const link = linkTo(generator);
    if (*link == nullptr) return;
    removed.reset(*link);
    *link = removed->next;
}

}  // namespace rgenh
