// XmlWork. Without a current work, failures are counted for the whole process.
//
// SPDX-License-Identifier: MIT
#include "store/xml/work.h"

#include <libxml/xmlerror.h>

#include <memory>
#include <utility>

#include "platform/platform.h"
#include "store/xml/memory.h"

namespace rgen {
namespace {

std::atomic<std::size_t> failuresWithoutWork = 0;

}  // namespace

XmlWork* XmlWork::current() noexcept {
    return static_cast<XmlWork*>(platform::threadPointer());
}

memory::Pool* XmlWork::currentPool() noexcept {
    const XmlWork* work = current();
    return work != nullptr ? work->pool_ : nullptr;
}

XmlWork::XmlWork(memory::PoolSlot& slot) : outer_(current()), slot_(&slot), hasReserve_(false) {
    requireXmlThreadState();
    std::unique_ptr<memory::Pool> pool;
    if (memory::poolsAreUsed) pool = slot.acquire();
    // Without a pool the work is only slower.
    if (platform::setThreadPointer(pool ? this : nullptr)) {
        pool_ = pool.release();
    } else if (pool) {
        slot.release(std::move(pool));
    }
    startToCount();
}

XmlWork::XmlWork(WithReserve) noexcept
    : pool_(currentPool()), outer_(current()), hasReserve_(true) {
    if (pool_ != nullptr) static_cast<void>(platform::setThreadPointer(this));
    startToCount();
}

XmlWork::~XmlWork() {
    // The thread's last error is the only thing of libxml2 that would outlive the pool.
    if (slot_ != nullptr) xmlResetLastError();
    if (current() != outer_) static_cast<void>(platform::setThreadPointer(outer_));
    if (slot_ != nullptr && pool_ != nullptr) slot_->release(std::unique_ptr<memory::Pool>(pool_));
}

std::atomic<std::size_t>& XmlWork::failuresOfThread() noexcept {
    const XmlWork* work = current();
    return work != nullptr ? work->ownFailures_ : failuresWithoutWork;
}

void XmlWork::startToCount() noexcept {
    failures_ = &failuresOfThread();
    failuresBefore_ = *failures_;
}

void XmlWork::noteFailure() noexcept {
    ++failuresOfThread();
}

bool XmlWork::mayUseReserve() noexcept {
    const XmlWork* work = current();
    return work == nullptr || (work->hasReserve_ && !work->stackIsShort());
}

void XmlWork::limitStack(const char* lowestForTemplates, const char* lowestForMemory) noexcept {
    lowestForTemplates_ = lowestForTemplates;
    lowestForMemory_ = lowestForMemory;
}

}  // namespace rgen
