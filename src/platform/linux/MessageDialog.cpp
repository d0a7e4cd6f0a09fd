// A message window drawn through the editor's letters.
#include "platform/MessageDialog.h"

#include "platform/TextLines.h"
#include "platform/linux/ChildProcess.h"
#include "platform/linux/XWindow.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <optional>
#include <utility>
#include <vector>

namespace Platform {

namespace {

struct Button {
    std::string caption;
    MessageAnswer answer;
    Rect place{};
};

std::vector<Button> buttonsFor(MessageButtons buttons) {
    switch (buttons) {
    case MessageButtons::okCancel:
        return {{"OK", MessageAnswer::ok}, {"Cancel", MessageAnswer::cancel}};
    case MessageButtons::yesNoCancel:
        return {{"Yes", MessageAnswer::yes}, {"No", MessageAnswer::no}, {"Cancel", MessageAnswer::cancel}};
    case MessageButtons::retryCancel:
        return {{"Retry", MessageAnswer::retry}, {"Cancel", MessageAnswer::cancel}};
    case MessageButtons::yesNo:
        return {{"Yes", MessageAnswer::yes}, {"No", MessageAnswer::no}};
    case MessageButtons::abortRetryIgnore:
        return {{"Abort", MessageAnswer::abort},
                {"Retry", MessageAnswer::retry},
                {"Ignore", MessageAnswer::ignore}};
    case MessageButtons::ok:
        break;
    }
    return {{"OK", MessageAnswer::ok}};
}

class XMessageDialog final : public MessageDialog, private WindowListener {
public:
    XMessageDialog(NativeWindow owner, const std::string& title, const std::string& text,
                   MessageButtons buttons, TextPainter& painter, Answered answered, int byReturn)
        : painter_(painter), answered_(std::move(answered)), line_(std::max(1, painter.lineHeight())),
          buttons_(buttonsFor(buttons)),
          focused_(std::min(static_cast<std::size_t>(byReturn), buttons_.size() - 1)) {
        layOut(text);
        XWindow::Place place;
        place.above = static_cast<xcb_window_t>(owner);
        place.title = title;
        window_ = std::make_unique<XWindow>(place, size_, static_cast<WindowListener&>(*this));
        draw();
    }

    bool poll() override {
        if (answered_) {
            window_->poll();
        }
        if (answered_ && !answer_) {
            return true;
        }
        if (const Answered answered = std::exchange(answered_, nullptr)) {
            window_.reset();
            answered(*answer_); // may destroy this dialog
        }
        return false;
    }

private:
    void layOut(const std::string& text) {
        constexpr int kLettersAcross = 60;
        const auto widthOf = [this](std::string_view piece) { return painter_.width(piece); };
        const int widestLine = std::max(1, painter_.width("n")) * kLettersAcross;
        lines_ = breakIntoLines(text, widestLine, widthOf);
        int textWidth = 0;
        for (const std::string& line : lines_) {
            textWidth = std::max(textWidth, widthOf(line));
        }
        int buttonsWidth = 0;
        for (Button& button : buttons_) {
            button.place = {0, 0, std::max(widthOf(button.caption) + 2 * line_, 5 * line_), 2 * line_};
            buttonsWidth += button.place.width + line_ / 2;
        }
        const int textHeight = static_cast<int>(lines_.size()) * line_;
        size_ = {std::max(textWidth, buttonsWidth) + 4 * line_, textHeight + 7 * line_};
        int x = size_.width - 2 * line_;
        for (auto button = buttons_.rbegin(); button != buttons_.rend(); ++button) {
            x -= button->place.width;
            button->place.x = x;
            button->place.y = textHeight + 4 * line_;
            x -= line_ / 2;
        }
    }

    void draw() {
        const MenuColours colours = painter_.colours();
        std::vector<Argb> pixels(static_cast<std::size_t>(size_.width) *
                                 static_cast<std::size_t>(size_.height));
        const Canvas canvas{pixels.data(), size_.width, size_.height, size_.width};
        const Rect all{0, 0, size_.width, size_.height};
        fill(canvas, all, colours.background);
        int y = 2 * line_;
        for (const std::string& line : lines_) {
            painter_.draw(canvas, {2 * line_, y}, line, colours.text);
            y += line_;
        }
        for (std::size_t i = 0; i < buttons_.size(); ++i) {
            const Button& button = buttons_[i];
            const Rect& place = button.place;
            const bool chosen = i == focused_;
            fill(canvas, place, colours.border);
            fill(canvas, {place.x + 1, place.y + 1, place.width - 2, place.height - 2},
                 chosen ? colours.highlight : colours.background);
            painter_.draw(canvas,
                          {place.x + (place.width - painter_.width(button.caption)) / 2, place.y + line_ / 2},
                          button.caption, chosen ? colours.highlightText : colours.text);
        }
        window_->present(canvas.view(), {&all, 1});
    }

    std::optional<std::size_t> buttonAt(Point p) const {
        for (std::size_t i = 0; i < buttons_.size(); ++i) {
            if (buttons_[i].place.contains(p)) {
                return i;
            }
        }
        return std::nullopt;
    }

    void focus(std::size_t button) {
        if (button != focused_) {
            focused_ = button;
            draw();
        }
    }

    void dismiss() { answer_ = buttons_.back().answer; } // cancel where there is one

    void mouseMoved(const MouseEvent& event) override {
        if (const auto button = buttonAt(event.at)) {
            focus(*button);
        }
    }
    void mouseDown(const MouseEvent& event) override { pressed_ = buttonAt(event.at); }
    void mouseUp(const MouseEvent& event) override {
        if (pressed_ && pressed_ == buttonAt(event.at)) {
            answer_ = buttons_[*pressed_].answer;
        }
        pressed_.reset();
    }
    bool keyDown(const KeyEvent& key) override {
        const std::size_t count = buttons_.size();
        switch (key.key) {
        case VirtualKey::escape:
            dismiss();
            break;
        case VirtualKey::enter:
        case VirtualKey::numpadEnter:
        case VirtualKey::space:
            answer_ = buttons_[focused_].answer;
            break;
        case VirtualKey::left:
            focus((focused_ + count - 1) % count);
            break;
        case VirtualKey::tab:
        case VirtualKey::right:
            focus((focused_ + 1) % count);
            break;
        default:
            break;
        }
        return true;
    }
    void closeRequested() override { dismiss(); }
    void windowLost() override { dismiss(); }
    void resized(Size) override { draw(); }

    TextPainter& painter_;
    Answered answered_;
    int line_;
    std::vector<Button> buttons_;
    std::vector<std::string> lines_;
    Size size_;
    std::size_t focused_;
    std::optional<std::size_t> pressed_;
    std::optional<MessageAnswer> answer_;
    std::unique_ptr<XWindow> window_;
};

} // namespace

std::unique_ptr<MessageDialog> MessageDialog::open(NativeWindow owner, const std::string& title,
                                                   const std::string& text, MessageButtons buttons,
                                                   TextPainter& painter, Answered answered,
                                               int byReturn) {
    return std::make_unique<XMessageDialog>(owner, title, text, buttons, painter, std::move(answered),
                                            byReturn);
}

void showError(const std::string& title, const std::string& text) noexcept {
    try {
        std::fprintf(stderr, "%s: %s\n", title.c_str(), text.c_str());
        if (programExists("zenity")) {
            startDetached({"zenity", "--error", "--no-markup", "--title", title, "--text", text});
        } else if (programExists("kdialog")) {
            startDetached({"kdialog", "--title", title, "--error", text});
        } else if (programExists("xmessage")) {
            startDetached({"xmessage", "-title", title, text});
        }
    } catch (const std::exception&) { // the error stream has it
    }
}

} // namespace Platform
