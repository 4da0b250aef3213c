#pragma once

/// Tells the thread sanitizer of an order between two threads that it can not see, because the
/// lock that gives it lies inside a library that was not built with it. Without the sanitizer
/// these do nothing.
#ifdef LUMETRA_THREAD_SANITIZER
extern "C" void __tsan_acquire(void* address);
extern "C" void __tsan_release(void* address);

namespace threadmarks {
inline void handOver(void* address)
{
    __tsan_release(address);
}
inline void takeOver(void* address)
{
    __tsan_acquire(address);
}
} // namespace threadmarks
#else
namespace threadmarks {
inline void handOver(void*) {}
inline void takeOver(void*) {}
} // namespace threadmarks
#endif
