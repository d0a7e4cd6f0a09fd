// The variables of the effect as layouts see them: name to text and back. What they are called and what can be
// written stands in the tables of the source.
//
// Numbers are the shortest texts that read back to the same float. Switches are "true" and "false".
#pragma once

#include "bridge/Environment.h"
#include "bridge/MidiLearn.h"
#include "instance/EffectInstance.h"
#include "quilt/Scale.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Bridge {

class EditorVariables {
public:
    // The scale is the one that the user has chosen last; one that cannot be read counts as 1/1.
    EditorVariables(Shell::EffectInstance& effect, Environment& environment, MidiLearn& learn);

    // nullopt: no variable of the effect's.
    std::optional<std::string> get(std::string_view name) const;

    // false: no variable of the effect's. Throws std::runtime_error for a read-only one and for values that
    // are refused.
    bool set(std::string_view name, std::string_view value);

    const Quilt::Scale& scale() const { return scale_; }

private:
    std::optional<std::string> parameterText(std::string_view name) const;
    bool setKept(std::string_view name, std::string_view value);
    bool setParameter(std::string_view name, std::string_view value);
    std::optional<std::string> feedback(std::string_view name) const;
    std::optional<std::string> state(std::string_view name) const;
    std::optional<std::string> midiConfigText(std::string_view name) const;
    std::optional<std::string> controllerText(std::string_view which) const;
    std::string patchIdentity() const;
    void setScale(std::string_view text);

    Shell::EffectInstance& effect_;
    Environment& environment_;
    MidiLearn& learn_;
    Quilt::Scale scale_;
};

// The scale that the user has chosen last; 1/1 when there is none that can be used.
Quilt::Scale storedScale(const Model::Preferences& preferences);

// "C3" is note 60.
std::string noteName(int note);

// The editor's surface at 1/1, in pixels.
inline constexpr int kEditorWidth = 470;
inline constexpr int kEditorHeight = 320;

} // namespace Bridge
