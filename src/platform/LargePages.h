// Buffers of many megabytes cost more by the pages they are made of than by what is written into them.
#pragma once

#include <cstddef>

namespace Platform {

// Says that the memory will be filled soon. A hint: before it is first written to, or it does nothing.
void preferLargePages(void* begin, std::size_t size);

} // namespace Platform
