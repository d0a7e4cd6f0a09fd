#include "model/TextFiles.h"

#include "platform/AtomicFileWrite.h"
#include "platform/FileRead.h"

namespace Model {

std::string DiskFiles::read(const std::filesystem::path& path) const {
    return Platform::readFile(path);
}

void DiskFiles::write(const std::filesystem::path& path, const std::string& contents) {
    Platform::atomicFileWrite(path, contents);
}

} // namespace Model
