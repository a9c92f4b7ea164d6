// The registry of running generations. All of it runs under the generator's mutex, for the length
// of one insertion, one removal or one walk. A cancellation precedes whoever else waits for the
// mutex: a generation that has not reached its last check takes it again only afterwards, and then
// sees the request.
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
    if (isOver_) return;
    unregisterGeneration(generator_, key_, source_);
    isOver_ = true;
}

GenerationRegistration::~GenerationRegistration() {
    try {
        end();
    } catch (const std::system_error&) {
        // On purpose: the entry stays, until a cancel or the end of the generator, and keeps
        // nothing but its token. The alternative is the end of the process.
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
