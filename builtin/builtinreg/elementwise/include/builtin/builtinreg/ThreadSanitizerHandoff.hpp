// The order oneTBB's scheduler gives between the thread that starts a loop, the workers
// that run its chunks and the thread that waits for it lives in Debian's libtbb, which is
// not built with ThreadSanitizer, so the sanitizer cannot see it. These calls state that
// order to the sanitizer; in every other build they do nothing.
#pragma once

#if defined(__SANITIZE_THREAD__)
#include <sanitizer/tsan_interface.h>
#endif

namespace Velloc::builtin::builtinreg::detail {

// Everything this thread wrote before is visible to a thread that then calls acquireFrom
// with the same token.
inline void releaseTo(const void* token) noexcept {
#if defined(__SANITIZE_THREAD__)
    __tsan_release(const_cast<void*>(token));
#else
    static_cast<void>(token);
#endif
}

inline void acquireFrom(const void* token) noexcept {
#if defined(__SANITIZE_THREAD__)
    __tsan_acquire(const_cast<void*>(token));
#else
    static_cast<void>(token);
#endif
}

} // namespace Velloc::builtin::builtinreg::detail
