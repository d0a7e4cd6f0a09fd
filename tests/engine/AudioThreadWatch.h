// Counts allocations and locks. Programs that use it are programs of their own: it stands in for the allocator
// and the lock of the whole process, of the libraries that it loads too.
#pragma once

namespace AudioThreadWatch {

// Of this thread, while it counts.
extern constinit thread_local bool counting;
extern constinit thread_local int allocations;
extern constinit thread_local int locks;

// Under sanitizers, whose own allocator and lock cannot be stood in for, only `new` and `delete` are seen.
extern const bool kSeesEverything;

} // namespace AudioThreadWatch
