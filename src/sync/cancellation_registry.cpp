// The registry of running generations. Each insertion, removal and iteration holds the generator's
// mutex. A cancel gets the mutex before all other waiting threads: a generation that has not
// reached its last check locks it again only after the cancel, and then sees the request.
//
// SPDX-License-Identifier: MIT
#include "sync/cancellation_registry.h"

#include <algorithm>
#include <mutex>
#include <system_error>

namespace rgen::sync {
namespace {

using Registry = decltype(ReportGenerator::cancellationRegistry);

void cancelRange(Registry& registry, Registry::iterator first, Registry::iterator last) {
    std::for_each(first, last, [](const Registry::value_type& entry) { entry.second->cancel(); });
    registry.erase(first, last);
}

}  // namespace

GenerationRegistration::GenerationRegistration(ReportGenerator& generator, const Guid& guid)
    : generator_(generator),
      source_(std::make_shared<CancellationTokenSource>()),
      token_(source_->getToken()),
      key_(formatGuid(guid)) {
    const std::lock_guard lock(generator_.mutex);
    generator_.cancellationRegistry.emplace(key_, source_);
}

void GenerationRegistration::end() {
    if (hasEnded_) return;
    unregisterGeneration(generator_, key_, source_);
    hasEnded_ = true;
}

GenerationRegistration::~GenerationRegistration() {
    try {
        end();
    } catch (const std::system_error&) {
        // On purpose: the entry stays until a cancel or the end of the generator; it owns only its
        // token. Throwing from this destructor would terminate the process.
    }
}

void unregisterGeneration(ReportGenerator& generator, const std::string& key,
                          const std::shared_ptr<CancellationTokenSource>& source) {
    const std::lock_guard lock(generator.mutex);
    Registry& registry = generator.cancellationRegistry;
    const auto [first, last] = registry.equal_range(key);
    const auto own = std::find_if(first, last, [&source](const Registry::value_type& entry) {
        return entry.second == source;
    });
    if (own != last) registry.erase(own);
}

void cancelGenerations(ReportGenerator& generator, const Guid& guid) {
    const CancellerLock lock(generator.mutex);
    const auto [first, last] = generator.cancellationRegistry.equal_range(formatGuid(guid));
    cancelRange(generator.cancellationRegistry, first, last);
}

void cancelAllGenerations(ReportGenerator& generator) {
    const CancellerLock lock(generator.mutex);
    Registry& registry = generator.cancellationRegistry;
    cancelRange(registry, registry.begin(), registry.end());
}

}  // namespace rgen::sync
