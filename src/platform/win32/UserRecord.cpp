#include "platform/UserRecord.h"

#include "platform/win32/RegistryValue.h"

namespace Platform {

std::unique_ptr<SharedRecord> openUserRecord(const std::string& name) {
    return std::make_unique<RegistryValue>("Software\\Korvanta\\Murmelon", name);
}

} // namespace Platform
