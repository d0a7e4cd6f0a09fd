#include "bridge/EditorBridge.h"

#include <bit>

namespace Bridge {

namespace {

constexpr std::string_view kParameters = "params.";

std::optional<int> parameterOf(std::string_view variable) {
    return variable.starts_with(kParameters) ? Parameters::find(variable.substr(kParameters.size()))
                                             : std::nullopt;
}

} // namespace

EditorBridge::EditorBridge(Shell::EffectInstance& effect, Environment& environment,
                           const Quilt::StringTable& strings)
    : effect_(effect), environment_(environment), strings_(strings), learn_(effect),
      variables_(effect, environment, learn_), actions_(effect, environment, learn_), seen_(look()) {
    effect_.setEditorServices(&services_);
}

EditorBridge::~EditorBridge() {
    effect_.setEditorServices(nullptr);
}

bool EditorBridge::set(std::string_view name, std::string_view value) {
    ++changes_;
    return variables_.set(name, value);
}

EditorBridge::Seen EditorBridge::look() const {
    const Engine::Feedbacks& f = effect_.audio().feedbacks();
    Seen seen;
    std::size_t i = 0;
    for (const auto* value :
         {&f.sampleRate, &f.pitch, &f.frequency, &f.amplitude, &f.volume, &f.unvoiced, &f.pan, &f.width}) {
        seen.feedbacks[i++] = std::bit_cast<std::uint32_t>(value->load(std::memory_order_relaxed));
    }
    seen.changeStamp = effect_.programs().currentPatch().changeStamp();
    seen.replacements = effect_.patchReplacements();
    seen.program = effect_.programs().current();
    seen.enabled = effect_.enabled();
    return seen;
}

std::uint64_t EditorBridge::changeCount() const {
    if (const Seen now = look(); now != seen_) {
        seen_ = now;
        ++changes_;
    }
    return changes_;
}

void EditorBridge::beginGesture(std::string_view name) {
    if (const auto id = parameterOf(name)) {
        effect_.beginEdit(*id);
    }
}

void EditorBridge::endGesture(std::string_view name) {
    if (const auto id = parameterOf(name)) {
        effect_.endEdit(*id);
    }
}

std::optional<std::string> EditorBridge::translate(std::string_view text) const {
    const std::string* found = strings_.find(text);
    return found ? std::optional(*found) : std::nullopt;
}

void EditorBridge::perform(std::string_view action, std::string_view params, Quilt::ActionContext& context) {
    ++changes_;
    actions_.perform(action, params, context);
}

Quilt::ActionState EditorBridge::state(std::string_view action, std::string_view params,
                                       const Quilt::ActionContext& context) const {
    return actions_.state(action, params, context);
}

} // namespace Bridge
