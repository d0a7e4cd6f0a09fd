#include "platform/LargePages.h"

namespace Platform {

// Large pages are a privilege here, which users do not have.
void preferLargePages(void*, std::size_t) {}

} // namespace Platform
