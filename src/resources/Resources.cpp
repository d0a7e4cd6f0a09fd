#include "resources/Resources.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace {

// One record a resource, offsets counted from the first byte of the table; a record of zeroes ends it. The
// assembler works all of it out, so nothing here has to be relocated when the library is loaded.
struct Record {
    std::uint32_t type;
    std::uint32_t name;
    std::uint32_t nameLength;
    std::uint32_t bytes;
    std::uint32_t length;
};

} // namespace

extern "C" const Record murmelon_resource_table[];

namespace Resources {

namespace {

char folded(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

Resource resourceOf(const Record& record) {
    const char* table = reinterpret_cast<const char*>(murmelon_resource_table);
    return {static_cast<Type>(record.type),
            {table + record.name, record.nameLength},
            {table + record.bytes, record.length}};
}

} // namespace

std::optional<std::string_view> find(Type type, std::string_view name) {
    for (const Record* record = murmelon_resource_table; record->name != 0; ++record) {
        const Resource resource = resourceOf(*record);
        if (resource.type == type && std::ranges::equal(resource.name, name, {}, folded, folded)) {
            return resource.bytes;
        }
    }
    return std::nullopt;
}

std::vector<Resource> all() {
    std::vector<Resource> resources;
    for (const Record* record = murmelon_resource_table; record->name != 0; ++record) {
        resources.push_back(resourceOf(*record));
    }
    return resources;
}

} // namespace Resources
