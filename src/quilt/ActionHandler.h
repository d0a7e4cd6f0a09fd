// What carries out the actions that are not the framework's own. The editor bridge implements it. Actions are
// named in layouts and take their parameters as the raw text of a Stackbrace value, empty when there are
// none.
#pragma once

#include "quilt/Desktop.h"
#include "quilt/Geometry.h"

#include <optional>
#include <string>
#include <string_view>

namespace Quilt {

// How the control of an action looks.
struct ActionState {
    bool enabled = true;
    bool checked = false;
};

// What an action may use of the layout in which it was called, for the time of the call. Actions that show
// something and go on later keep `Desktop` and their own objects, not this.
class ActionContext {
public:
    virtual ~ActionContext() = default;

    // Any variable, the framework's own among them. An unknown name reads as nullopt; writing creates it.
    virtual std::optional<std::string> get(std::string_view name) const = 0;
    virtual void set(std::string_view name, std::string_view value) = 0;

    virtual std::string expandMetaText(std::string_view text) const = 0;
    virtual std::string translate(std::string_view text) const = 0;

    // Another action, the framework's own or the handler's.
    virtual void perform(std::string_view action, std::string_view params) = 0;

    virtual Desktop& desktop() = 0;

    // Where a menu belongs: the control that called the action, in pixels of the editor's surface. nullopt
    // when none did.
    virtual std::optional<Rectangle> anchor() const = 0;
};

class ActionHandler {
public:
    virtual ~ActionHandler() = default;

    // Throws for an action that fails or is not known ("Unrecognized action: NAME"); the framework shows it.
    virtual void perform(std::string_view action, std::string_view params, ActionContext& context) = 0;

    // Asked often, whenever variables have changed; throws like perform().
    virtual ActionState state(std::string_view action, std::string_view params,
                              const ActionContext& context) const = 0;
};

} // namespace Quilt
