// The layouts that the binary carries.
#pragma once

#include "quilt/DocumentSource.h"
#include "resources/Resources.h"

#include <stdexcept>
#include <string>

namespace Shell {

class ResourceDocuments final : public Quilt::DocumentSource {
public:
    std::string obtain(const std::string& name) const override {
        if (const auto text = Resources::find(Resources::Type::quilt, name)) {
            return std::string(*text);
        }
        throw std::runtime_error("There is no layout named " + name);
    }
};

} // namespace Shell
