// Actions that ask the user, or another program.
#include "quilt/Document.h"
#include "quilt/Editor.h"
#include "quilt/Properties.h"
#include "quilt/actions/Actions.h"

#include <algorithm>
#include <functional>
#include <map>
#include <stdexcept>
#include <utility>
#include <vector>

namespace Quilt {

namespace {

std::string expanded(const ActionCall& call, const Stackbrace::Element& element) {
    return element.empty() ? std::string() : call.expandMetaText(element.string());
}

constexpr std::pair<std::string_view, MessageKind> kAlertTypes[] = {
    {"info", MessageKind::info},
    {"warning", MessageKind::warning},
    {"error", MessageKind::error},
    {"question", MessageKind::question},
};

constexpr std::pair<std::string_view, MessageButton> kButtons[] = {
    {"ok", MessageButton::ok},         {"cancel", MessageButton::cancel}, {"retry", MessageButton::retry},
    {"yes", MessageButton::yes},       {"no", MessageButton::no},         {"abort", MessageButton::abort},
    {"ignore", MessageButton::ignore},
};

constexpr std::string_view kButtonSets[] = {
    "ok", "ok cancel", "retry cancel", "yes no", "yes no cancel", "abort retry ignore",
};

std::string_view buttonName(MessageButton button) {
    return std::ranges::find(kButtons, button, &std::pair<std::string_view, MessageButton>::second)->first;
}

void readAlertButtons(const std::string& buttons, const std::string& defaultButton, Message& message) {
    if (std::ranges::find(kButtonSets, buttons) == std::end(kButtonSets)) {
        throw std::runtime_error("Invalid alert buttons");
    }
    message.buttons.clear();
    const auto names = words(buttons);
    for (const auto name : names) {
        message.buttons.push_back(
            std::ranges::find(kButtons, name, &std::pair<std::string_view, MessageButton>::first)->second);
    }
    if (!defaultButton.empty()) {
        const auto found = std::ranges::find(names, defaultButton);
        if (found == names.end()) {
            throw std::runtime_error("Invalid default button");
        }
        message.defaultButton = static_cast<std::size_t>(found - names.begin());
    }
}

struct PopupChoice {
    std::string caption;
    Step step;
};

// The menu and, by the items' ids, what they do.
class PopupReader {
public:
    explicit PopupReader(const ActionCall& call) : call_(call) {}

    std::vector<MenuItem> read(const Stackbrace::Element& items, int depth = 0) {
        constexpr int kDeepestMenu = 10;
        if (depth > kDeepestMenu) {
            throw std::runtime_error("Invalid popup items");
        }
        std::vector<MenuItem> menu;
        for (const auto& element : items.list()) {
            menu.push_back(element.raw().starts_with('{') ? readItem(element.structure(), depth)
                                                          : readLine(element));
        }
        return menu;
    }

    std::vector<PopupChoice> takeChoices() { return std::move(choices_); }

private:
    static MenuItem readLine(const Stackbrace::Element& element) {
        if (const auto text = element.string(); !text.empty() && text != "-") {
            throw std::runtime_error("Invalid popup items");
        }
        return {};
    }

    MenuItem readItem(const Stackbrace::Structure& structure, int depth) {
        MenuItem item;
        item.caption = expanded(call_, structure["caption"]);
        if (item.caption.empty()) {
            throw std::runtime_error("Invalid popup items");
        }
        if (const auto* const items = structure.find("items")) {
            item.items = read(*items, depth + 1);
            return item;
        }
        const Step step = readStep(structure);
        if (!step.empty()) {
            const auto state = call_.state(step.action, step.params);
            item.enabled = state.enabled;
            item.checked = state.checked;
        }
        choices_.push_back({item.caption, step});
        item.id = static_cast<int>(choices_.size());
        return item;
    }

    const ActionCall& call_;
    std::vector<PopupChoice> choices_;
};

} // namespace

void performAlert(ActionCall& call, const Stackbrace::Element& params) {
    Message message;
    std::map<MessageButton, Step> reactions;
    std::string variable;
    if (!params.raw().starts_with('{')) {
        message.text = expanded(call, params);
    } else {
        const auto structure = params.structure();
        message.text = expanded(call, structure["text"]);
        variable = expanded(call, structure["variable"]);
        if (const std::string type = expanded(call, structure["type"]); !type.empty()) {
            const auto* const found =
                std::ranges::find(kAlertTypes, type, &std::pair<std::string_view, MessageKind>::first);
            if (found == std::end(kAlertTypes)) {
                throw std::runtime_error("Invalid alert type");
            }
            message.kind = found->second;
        }
        const auto* const buttons = structure.find("buttons");
        readAlertButtons(buttons == nullptr ? "ok" : expanded(call, *buttons),
                         expanded(call, structure["default"]), message);
        const auto wanted = structure["reactions"].structure();
        for (const MessageButton button : message.buttons) {
            if (const auto* const reaction = wanted.find(buttonName(button))) {
                reactions[button] = readStep(reaction->structure());
            }
        }
    }
    call.desktop().showMessage(message, [later = LaterCall(call), variable, reactions](MessageButton button) {
        later.set(variable, std::string(buttonName(button)));
        if (const auto reaction = reactions.find(button); reaction != reactions.end()) {
            later.perform(reaction->second);
        }
        later.done();
    });
}

void performPopup(ActionCall& call, const Stackbrace::Element& params) {
    const auto structure = params.structure();
    PopupReader reader(call);
    const auto items = reader.read(structure["items"]);
    const auto chosen = [later = LaterCall(call), choices = reader.takeChoices(),
                         storeAction = expanded(call, structure["storeAction"]),
                         storeParams = expanded(call, structure["storeParams"]),
                         storeCaption = expanded(call, structure["storeCaption"])](std::optional<int> id) {
        if (!id || *id < 1 || static_cast<std::size_t>(*id) > choices.size()) {
            return;
        }
        const auto& [caption, step] = choices[static_cast<std::size_t>(*id) - 1];
        later.set(storeAction, step.action);
        later.set(storeParams, step.params);
        later.set(storeCaption, caption);
        later.perform(step);
        later.done();
    };
    call.desktop().popUpMenu(items, call.anchor(), chosen);
}

void performEdit(ActionCall& call, const Stackbrace::Element& params) {
    const auto structure = params.structure();
    const std::string variable = expanded(call, structure["variable"]);
    if (variable.empty()) {
        throw std::runtime_error("Invalid edit params");
    }
    const auto* const text = structure.find("text");
    const std::string fallback = expanded(call, structure["default"]);
    std::string shown = text != nullptr ? expanded(call, *text) : call.get(variable).value_or(fallback);
    Step reaction;
    if (const auto* const step = structure.find("reaction")) {
        reaction = readStep(step->structure());
    }
    call.document().editor().editText(
        {std::move(shown), call.anchor(),
         [later = LaterCall(call), variable, fallback, reaction](std::string typed) {
             later.set(variable, typed.empty() ? fallback : typed);
             later.perform(reaction);
             later.done();
         }});
}

void performLaunch(ActionCall& call, const Stackbrace::Element& params) {
    const std::string address = params.raw().starts_with('{') ? params.structure().at("address").string()
                                : params.empty()              ? std::string()
                                                              : params.string();
    constexpr std::string_view kBeginnings[] = {"http://", "https://", "telnet://", "file://"};
    const bool known = std::ranges::any_of(
        kBeginnings, [&address](std::string_view beginning) { return address.starts_with(beginning); });
    const bool plain = std::ranges::none_of(
        address, [](char c) { return static_cast<unsigned char>(c) <= 0x20 || c == 0x7F; });
    if (!known || !plain) {
        throw std::runtime_error("Invalid launch address: " + address);
    }
    call.desktop().launch(address);
}

} // namespace Quilt
