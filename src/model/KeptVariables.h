// Variables that layouts keep for themselves. Where one lives its first word says:
//
//   preferences.NAME  in the user's preferences, for all instances
//   instance.NAME     in this instance, as long as it lives
//   project.NAME      in the host's project, beside the programs
//   program.NAME      with the current program
//
// A name that nobody has written reads as an empty text.
#pragma once

#include "model/Programs.h"

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace Model {

class Preferences;

class KeptVariables {
public:
    KeptVariables(Preferences& preferences, const Programs& programs)
        : preferences_(preferences), programs_(programs) {}

    // nullopt: not a name of these families, or one without anything behind the prefix.
    std::optional<std::string> get(std::string_view name) const;

    // false as above. Throws std::runtime_error when the preferences cannot be reached.
    bool set(std::string_view name, std::string_view value);

    // What the host keeps: `project.` and `program.` of all programs, or those of the current program alone.
    // Empty when nothing has been written.
    std::string projectText() const;
    std::string programText() const;

    // The reverse; an empty text forgets all of them. Throws what the notation throws for a text that is
    // damaged; then nothing has changed.
    void readProject(const std::string& text);
    void readProgram(const std::string& text);

private:
    using Table = std::map<std::string, std::string, std::less<>>;

    Table& current() { return programsTables_.at(static_cast<std::size_t>(programs_.current())); }
    const Table& current() const { return programsTables_.at(static_cast<std::size_t>(programs_.current())); }

    Preferences& preferences_;
    const Programs& programs_;
    Table instance_;
    Table project_;
    std::array<Table, Programs::kCount> programsTables_;
};

} // namespace Model
