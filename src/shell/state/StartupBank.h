// The bank that new instances start with once the user has stored one: an entry of the preferences.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace Model {
class Programs;
}

namespace Bnk {

inline constexpr std::string_view kStartupBankEntry = "MurmelonStartupBank";

// Tells plug-ins, and layouts, that share a store apart.
inline constexpr std::uint32_t kBankTag = 1;

// Installs the entry's texts in the slots and selects its program, if there is such a one. An entry of
// another kind or tag is not meant for this plug-in: nothing happens, and the answer is false. Throws for one
// that is damaged.
bool readStartupBank(std::string_view entry, Model::Programs& programs);

std::string writeStartupBank(const Model::Programs& programs);

} // namespace Bnk
