// The bank that new instances start with, carried in the binary.
#pragma once

#include <string_view>

namespace Shell {

std::string_view factoryBank();

} // namespace Shell
