// The parameters of an action: a structure whose keys the action knows. Everything that does not fit is
// refused with "Invalid action params for ACTION: PARAMS".
#pragma once

#include "notation/Compound.h"
#include "notation/Document.h"

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

namespace Bridge {

class ActionParams {
public:
    ActionParams(std::string_view action, std::string_view params,
                 std::initializer_list<std::string_view> keys);

    // nullptr when there is no such key.
    const Stackbrace::Element* find(std::string_view key) const { return structure_.find(key); }

    std::optional<std::string> string(std::string_view key) const;
    bool boolean(std::string_view key, bool otherwise) const;
    std::optional<int> integer(std::string_view key) const;

    [[noreturn]] void refuse() const;

private:
    std::string action_;
    Stackbrace::Document document_;
    Stackbrace::Structure structure_;
};

} // namespace Bridge
