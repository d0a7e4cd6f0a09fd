#include "AudioThreadWatch.h"

#include "../Sanitizers.h"

#include <cerrno>
#include <cstdlib>
#include <dlfcn.h>
#include <new>
#include <pthread.h>

namespace AudioThreadWatch {

constinit thread_local bool counting = false;
constinit thread_local int allocations = 0;
constinit thread_local int locks = 0;

#if defined(MURMELON_SANITIZED)
const bool kSeesEverything = false;
#else
const bool kSeesEverything = true;
#endif

} // namespace AudioThreadWatch

using namespace AudioThreadWatch;

namespace {

void note(int& counter) {
    if (counting) {
        ++counter;
    }
}

} // namespace

#if !defined(MURMELON_SANITIZED)     // whose own allocator and locks cannot be stood in for
#pragma GCC visibility push(default) // the shared libraries are to find these
extern "C" {
void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);
void* __libc_memalign(std::size_t, std::size_t);
void __libc_free(void*);

void* malloc(std::size_t size) {
    note(allocations);
    return __libc_malloc(size);
}
void* calloc(std::size_t count, std::size_t size) {
    note(allocations);
    return __libc_calloc(count, size);
}
void* realloc(void* p, std::size_t size) {
    note(allocations);
    return __libc_realloc(p, size);
}
void* memalign(std::size_t alignment, std::size_t size) {
    note(allocations);
    return __libc_memalign(alignment, size);
}
void* aligned_alloc(std::size_t alignment, std::size_t size) {
    return memalign(alignment, size);
}
int posix_memalign(void** p, std::size_t alignment, std::size_t size) {
    *p = memalign(alignment, size);
    return *p == nullptr ? ENOMEM : 0;
}
void free(void* p) {
    note(allocations);
    __libc_free(p);
}
int pthread_mutex_lock(pthread_mutex_t* mutex) {
    note(locks);
    static const auto real =
        reinterpret_cast<int (*)(pthread_mutex_t*)>(dlsym(RTLD_NEXT, "pthread_mutex_lock"));
    return real(mutex);
}
}
#pragma GCC visibility pop
#else
void* operator new(std::size_t size) {
    note(allocations);
    return std::malloc(size);
}
void operator delete(void* p) noexcept {
    note(allocations);
    std::free(p);
}
void operator delete(void* p, std::size_t) noexcept {
    note(allocations);
    std::free(p);
}
#endif
