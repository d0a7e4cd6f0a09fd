// MURMELON_SANITIZED: a sanitizer has put its own allocator in place of the system's.
#pragma once

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define MURMELON_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define MURMELON_SANITIZED 1
#endif
#endif
