// Shows a page or a folder in the user's own programs.
#pragma once

#include <string>

namespace Platform {

// `link` is an http, https or mailto address, or an absolute path. No shell sees it. Returns at once. Throws
// std::runtime_error for anything else, and when there is no program for it.
void openLink(const std::string& link);

} // namespace Platform
