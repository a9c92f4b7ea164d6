// What the C++ runtime would keep of the DLL when a host unloads it. It is linked statically and
// made for programs, which end as a whole: with each unloading its thread library leaves a slot for
// thread-local pointers behind, of which a process has 1,088, and two handles of the thread that
// unloads; its exception support leaves 70 KiB of reserve.
//
// SPDX-License-Identifier: MIT
#include "platform/runtime_end_windows.h"

#include <pthread.h>
#include <windows.h>

#include <cstdint>
#include <cstdlib>

extern "C" {
/// The directory of this DLL's callbacks for the ends of threads.
extern const IMAGE_TLS_DIRECTORY _tls_used;
/// The thread library's record of a thread, whose address stands in its slot.
void* __pth_gpointer_locked(pthread_t thread);
}

namespace __gnu_cxx {
/// Frees the memory that is set aside for exceptions.
void __freeres();
}  // namespace __gnu_cxx

namespace rgen::platform {
namespace {

constexpr DWORD slotCount = 1088;

bool isUnloaded = false;

DWORD slotOf(const void* record) {
    for (DWORD slot = 0; slot < slotCount; ++slot) {
        if (TlsGetValue(slot) == record) return slot;
    }
    return TLS_OUT_OF_INDEXES;
}

/// Tells the runtime what the system tells it when a thread ends, or when the DLL goes.
void callBack(DWORD reason) {
    auto* callback = reinterpret_cast<const PIMAGE_TLS_CALLBACK*>(
        static_cast<std::uintptr_t>(_tls_used.AddressOfCallBacks));
    for (; *callback != nullptr; ++callback)
        (*callback)(nullptr, reason, nullptr);
}

/// Runs after all destructors. At the end of the process there is nothing to save, and a thread
/// that is no more may hold a lock of the runtime.
void releaseRuntime() {
    if (!isUnloaded) return;
    __gnu_cxx::__freeres();
    const DWORD slot = slotOf(__pth_gpointer_locked(pthread_self()));
    callBack(DLL_THREAD_DETACH);
    callBack(DLL_PROCESS_DETACH);
    if (slot != TLS_OUT_OF_INDEXES) TlsFree(slot);
}

/// Functions that are registered first run last.
[[gnu::constructor(101)]] void registerRelease() {
    static_cast<void>(std::atexit(releaseRuntime));
}

}  // namespace

void noteUnloading() {
    isUnloaded = true;
}

}  // namespace rgen::platform
