#include "editor/EditorDesktop.h"

#include "model/PathText.h"
#include "model/Product.h"
#include "platform/OpenLink.h"

#include <algorithm>
#include <array>
#include <exception>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace Shell {

namespace {

using Platform::MessageAnswer;
using Platform::MessageButtons;
using Quilt::MessageButton;

struct ButtonSet {
    MessageButtons buttons;
    std::initializer_list<MessageButton> names;
};

MessageButtons setOf(const std::vector<MessageButton>& wanted) {
    static const std::array<ButtonSet, 6> kSets = {{
        {MessageButtons::ok, {MessageButton::ok}},
        {MessageButtons::okCancel, {MessageButton::ok, MessageButton::cancel}},
        {MessageButtons::retryCancel, {MessageButton::retry, MessageButton::cancel}},
        {MessageButtons::yesNo, {MessageButton::yes, MessageButton::no}},
        {MessageButtons::yesNoCancel, {MessageButton::yes, MessageButton::no, MessageButton::cancel}},
        {MessageButtons::abortRetryIgnore,
         {MessageButton::abort, MessageButton::retry, MessageButton::ignore}},
    }};
    for (const ButtonSet& set : kSets) {
        if (std::ranges::equal(set.names, wanted)) {
            return set.buttons;
        }
    }
    throw std::invalid_argument("No message box has these buttons");
}

MessageButton buttonOf(MessageAnswer answer) {
    switch (answer) {
    case MessageAnswer::cancel:
        return MessageButton::cancel;
    case MessageAnswer::yes:
        return MessageButton::yes;
    case MessageAnswer::no:
        return MessageButton::no;
    case MessageAnswer::retry:
        return MessageButton::retry;
    case MessageAnswer::abort:
        return MessageButton::abort;
    case MessageAnswer::ignore:
        return MessageButton::ignore;
    case MessageAnswer::ok:
        break;
    }
    return MessageButton::ok;
}

std::vector<Platform::MenuEntry> entriesOf(const std::vector<Quilt::MenuItem>& items) {
    std::vector<Platform::MenuEntry> entries;
    for (const Quilt::MenuItem& item : items) {
        Platform::MenuEntry entry;
        entry.caption = item.caption;
        entry.command = item.id;
        entry.enabled = item.enabled;
        entry.checked = item.checked;
        entry.separator = item.caption.empty();
        entry.submenu = entriesOf(item.items);
        entries.push_back(std::move(entry));
    }
    return entries;
}

Platform::FileDialogRequest requestOf(const Bridge::FileQuestion& question, Platform::NativeWindow parent) {
    Platform::FileDialogRequest request;
    const bool saving = question.kind == Bridge::FileQuestion::Kind::save;
    request.kind = saving ? Platform::FileDialogRequest::Kind::save : Platform::FileDialogRequest::Kind::open;
    request.title = question.title;
    std::error_code unknown;
    const bool startsInFolder = !saving && std::filesystem::is_directory(question.proposed, unknown);
    request.folder = startsInFolder ? question.proposed : question.proposed.parent_path();
    if (saving) {
        request.fileName = Model::toUtf8(question.proposed.filename());
    }
    for (const auto& type : question.types) {
        request.filters.push_back({type.name, {type.extension.empty() ? "*" : "*" + type.extension}});
    }
    request.parent = parent;
    return request;
}

// ".txt", but not what follows a dot in "Take 1.5" or "Mr. Smith".
bool isExtension(const std::string& text) {
    constexpr std::size_t kLongest = 5;
    const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
    const auto isPart = [&](char c) { return isLetter(c) || (c >= '0' && c <= '9'); };
    return text.size() >= 2 && text.size() <= 1 + kLongest && std::all_of(text.begin() + 1, text.end(), isPart) &&
           std::any_of(text.begin(), text.end(), isLetter);
}

// People type names and expect the kind of file they have asked for. What is there by the very name that was
// given is what they have chosen.
std::filesystem::path withExtension(std::filesystem::path file, const Bridge::FileQuestion& question) {
    std::error_code unknown;
    if (question.kind == Bridge::FileQuestion::Kind::save && !question.types.empty() &&
        !isExtension(Model::toUtf8(file.extension())) && !std::filesystem::exists(file, unknown)) {
        file += question.types.front().extension;
    }
    return file;
}

// Polls what `open` holds. Meanwhile its answer may open another in its place, and setWindow may take it away.
template <typename Dialog> void pollOne(std::shared_ptr<Dialog>& open, bool& waiting) {
    if (!open) {
        return;
    }
    const std::weak_ptr<Dialog> current = open;
    const auto closeIfThere = [&] {
        waiting = false;
        if (!current.expired()) {
            open.reset();
        }
    };
    waiting = true;
    try {
        if (!open->poll()) {
            closeIfThere();
        }
        waiting = false;
    } catch (...) {
        closeIfThere();
        throw;
    }
}

} // namespace

EditorDesktop::EditorDesktop(Platform::TextPainter& painter, std::function<void(const std::string&)> failed)
    : painter_(painter), failed_(std::move(failed)) {}

void EditorDesktop::setWindow(Platform::Window* window) {
    menu_.reset();
    dialog_.reset();
    files_.reset();
    waiting_.clear();
    window_ = window;
}

void EditorDesktop::showMessage(const Quilt::Message& message,
                                std::function<void(Quilt::MessageButton)> answer) {
    waiting_.push_back({message, std::move(answer)});
    if (!dialog_) {
        showNextMessage();
    }
}

void EditorDesktop::showNextMessage() {
    if (waiting_.empty()) {
        return;
    }
    const WaitingMessage next = std::move(waiting_.front());
    waiting_.pop_front();
    dialog_ = Platform::MessageDialog::open(
        nativeWindow(), std::string(Model::kProductName), next.message.text, setOf(next.message.buttons),
        painter_,
        [this, answer = next.answer](MessageAnswer given) {
            waitsForUser_ = false;
            answer(buttonOf(given));
        },
        static_cast<int>(next.message.defaultButton));
}

void EditorDesktop::popUpMenu(const std::vector<Quilt::MenuItem>& items,
                              std::optional<Quilt::Rectangle> anchor,
                              std::function<void(std::optional<int>)> chosen) {
    if (window_ == nullptr) {
        throw std::runtime_error("No parent window for popup menu");
    }
    const Platform::Rect place = anchor ? Platform::Rect{anchor->left, anchor->top, anchor->width, anchor->height}
                                        : Platform::Rect{mouse_.x, mouse_.y, 0, 0};
    menu_ = Platform::PopupMenu::open(*window_, place, entriesOf(items), painter_,
                                      [this, chosen = std::move(chosen)](std::optional<int> command) {
                                          waitsForUser_ = false;
                                          chosen(command);
                                      });
}

void EditorDesktop::launch(const std::string& address) {
    Platform::openLink(address);
}

std::optional<std::string> EditorDesktop::clipboardText() {
    if (!clipboard_) {
        clipboard_ = Platform::Clipboard::open();
    }
    std::string text = clipboard_->text();
    return text.empty() ? std::nullopt : std::optional(std::move(text));
}

void EditorDesktop::setClipboardText(const std::string& text) {
    if (!clipboard_) {
        clipboard_ = Platform::Clipboard::open();
    }
    clipboard_->setText(text);
}

void EditorDesktop::chooseFile(const Bridge::FileQuestion& question, Bridge::Environment::Chosen chosen) {
    if (files_) {
        return; // the user has one to answer
    }
    files_ = Platform::FileDialog::open(
        requestOf(question, nativeWindow()),
        [this, question, chosen = std::move(chosen)](const Platform::FileDialogAnswer& answer) {
            waitsForUser_ = false;
            const auto answered = std::move(files_); // what follows may want another
            if (!answer.error.empty()) {
                failed_(answer.error);
            } else if (!answer.file.empty()) {
                take(answer.file, question, chosen);
            }
        });
}

void EditorDesktop::take(const std::filesystem::path& answer, const Bridge::FileQuestion& question,
                         const Bridge::Environment::Chosen& chosen) {
    const std::filesystem::path file = withExtension(answer, question);
    const auto finish = [this, file, chosen] {
        try {
            chosen(file);
        } catch (const std::exception& error) {
            failed_(error.what());
        }
    };
    std::error_code unknown;
    if (file == answer || !std::filesystem::exists(file, unknown)) {
        finish();
        return;
    }
    // The dialog has not known that this file was meant.
    std::string text;
    text.append("\"").append(Model::toUtf8(file.filename())).append("\" exists already. Replace it?");
    showMessage({.kind = Quilt::MessageKind::question,
                 .text = std::move(text),
                 .buttons = {MessageButton::yes, MessageButton::no},
                 .defaultButton = 1},
                [finish](MessageButton button) {
                    if (button == MessageButton::yes) {
                        finish();
                    }
                });
}

void EditorDesktop::poll() {
    pollOne(menu_, waitsForUser_);
    pollOne(files_, waitsForUser_);
    pollOne(dialog_, waitsForUser_);
    if (!dialog_) {
        showNextMessage();
    }
}

} // namespace Shell
