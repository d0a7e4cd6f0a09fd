#include "platform/UserRecord.h"

#include "platform/SharedFile.h"
#include "platform/UserFolders.h"

namespace Platform {

std::unique_ptr<SharedRecord> openUserRecord(const std::string& name) {
    return std::make_unique<SharedFile>(settingsFolder() / name);
}

} // namespace Platform
