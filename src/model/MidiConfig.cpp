#include "model/MidiConfig.h"

#include <algorithm>

namespace Model {

void ControllerAssignments::assign(int parameter, int controller) {
    controller = std::clamp(controller, 0, kControllers - 1);
    unassign(parameter);
    auto& driven = parameters_[static_cast<std::size_t>(controller)];
    if (driven != kNoParameter) {
        unassign(driven);
    }
    driven = parameter;
    controllers_.at(static_cast<std::size_t>(parameter)) = static_cast<std::uint8_t>(controller);
}

void ControllerAssignments::unassign(int parameter) {
    auto& controller = controllers_.at(static_cast<std::size_t>(parameter));
    if (controller != kNoController) {
        parameters_[controller] = kNoParameter;
        controller = kNoController;
    }
}

int ControllerAssignments::count() const {
    const auto without = std::ranges::count(controllers_, kNoController);
    return static_cast<int>(controllers_.size()) - static_cast<int>(without);
}

} // namespace Model
