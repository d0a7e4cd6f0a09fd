// Counts allocations and locks made while the engine processes, whatever its parameters do. A program of its
// own: it stands in for the allocator and the lock of the whole process.
#include "TestSignals.h"

#include "engine/VoiceEngine.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <dlfcn.h>
#include <mutex>
#include <new>
#include <pthread.h>
#include <random>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define MURMELON_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define MURMELON_SANITIZED 1
#endif
#endif

namespace {

thread_local bool counting = false;
thread_local int allocations = 0;
thread_local int locks = 0;

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

TEST(AudioThread, theCountersCount) {
    counting = true;
    ::operator delete(::operator new(4)); // as an expression, `new` may be left out by the compiler
    static std::mutex mutex;
    const std::unique_lock lock(mutex);
    counting = false;
    EXPECT_EQ(allocations, 2);
#if !defined(MURMELON_SANITIZED)
    EXPECT_EQ(locks, 1);
#endif
    allocations = locks = 0;
}

TEST(AudioThread, nothingIsAllocatedOrLocked) {
    using namespace Engine;
    for (const double rate : {44100.0, 48000.0, 96000.0}) {
        Feedbacks feedbacks;
        VoiceEngine engine(feedbacks);
        engine.setSampleRate(rate);
        auto in = TestSignals::speech(rate, 3);
        std::mt19937 random(5);
        std::uniform_real_distribution<float> value(0, 1);
        Block block;
        float* const values[] = {&block.parameters.sampleRate, &block.parameters.sync,
                                 &block.parameters.frameRate,  &block.parameters.midi,
                                 &block.parameters.pitch,      &block.parameters.tracking,
                                 &block.parameters.detune,     &block.parameters.noiseAdjust,
                                 &block.parameters.mix,        &block.parameters.legacyMode};
        MidiEvent events[3];
        int samples = 0;
        for (std::size_t at = 0; at < in.size(); at += static_cast<std::size_t>(samples)) {
            samples = std::min(static_cast<int>(random() % 1500), static_cast<int>(in.size() - at));
            *values[random() % std::size(values)] = value(random);
            block.bypassed = value(random) < 0.1f;
            block.transport.songPosition = static_cast<double>(at) / rate;
            for (MidiEvent& event : events) {
                event = {
                    static_cast<int>(random() % 1500), static_cast<std::uint8_t>(0x80 + (random() % 8) * 16),
                    static_cast<std::uint8_t>(random() % 128), static_cast<std::uint8_t>(random() % 128)};
            }
            block.midiEvents = events;
            float* const both[] = {in.left.data() + at, in.right.data() + at};
            counting = true;
            engine.process(both, both, samples, block);
            counting = false;
        }
        EXPECT_GT(engine.lastFrame().number, 20u);
    }
    EXPECT_EQ(allocations, 0);
    EXPECT_EQ(locks, 0);
}
