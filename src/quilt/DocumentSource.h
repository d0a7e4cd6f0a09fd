// Where the texts of layout documents, and of what they include, come from.
#pragma once

#include <string>

namespace Quilt {

class DocumentSource {
public:
    virtual ~DocumentSource() = default;

    // Throws when there is no such document; what() names it.
    virtual std::string obtain(const std::string& name) const = 0;
};

} // namespace Quilt
