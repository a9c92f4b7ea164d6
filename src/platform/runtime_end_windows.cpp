// Frees what the C++ runtime would leak when a host unloads the DLL. The runtime is linked
// statically and made for programs, which never unload it: each FreeLibrary would leak a TLS slot
// of the process's 1,088, two handles of the unloading thread, and 70 KiB of exception reserve.
//
// SPDX-License-Identifier: MIT
#include "platform/runtime_end_windows.h"

#include <pthread.h>
#include <windows.h>

#include <cstdint>
#include <cstdlib>

extern "C" {
/// This DLL's TLS directory, which lists its callbacks for ending threads.
extern const IMAGE_TLS_DIRECTORY _tls_used;
/// The thread library's record of a thread; its TLS slot holds the record's address.
void* __pth_gpointer_locked(pthread_t thread);
}

namespace __gnu_cxx {
/// Frees the exception reserve.
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

/// Calls the runtime's TLS callbacks as the system does when a thread ends or the DLL is unloaded.
void callBack(DWORD reason) {
    auto* callback = reinterpret_cast<const PIMAGE_TLS_CALLBACK*>(
        static_cast<std::uintptr_t>(_tls_used.AddressOfCallBacks));
    for (; *callback != nullptr; ++callback)
        (*callback)(nullptr, reason, nullptr);
}

/// Runs after all destructors. Does nothing at process exit, when a terminated thread may still
/// hold a lock of the runtime.
void releaseRuntime() {
    if (!isUnloaded) return;
    __gnu_cxx::__freeres();
    const DWORD slot = slotOf(__pth_gpointer_locked(pthread_self()));
    callBack(DLL_THREAD_DETACH);
    callBack(DLL_PROCESS_DETACH);
    if (slot != TLS_OUT_OF_INDEXES) TlsFree(slot);
}

/// Registered first, so that it runs last.
[[gnu::constructor(101)]] void registerRelease() {
    static_cast<void>(std::atexit(releaseRuntime));
}

}  // namespace

void noteUnloading() {
    isUnloaded = true;
}

}  // namespace rgen::platform
