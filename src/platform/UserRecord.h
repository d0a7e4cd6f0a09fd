// Where a record that all programs of this user share is kept.
#pragma once

#include "platform/SharedRecord.h"

#include <memory>
#include <string>

namespace Platform {

// On Linux the file NAME in the settings folder, on Windows the value NAME in this product's registry key.
// Nothing is made before something is stored. Throws std::runtime_error when the user has no place for it.
std::unique_ptr<SharedRecord> openUserRecord(const std::string& name);

} // namespace Platform
