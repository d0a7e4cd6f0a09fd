// The desktop and the window of layouts that are loaded where nobody looks: messages are noted, nothing is
// chosen.
#pragma once

#include "quilt/Desktop.h"
#include "quilt/EditorHost.h"

#include <iostream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace Tool {

class SilentDesktop : public Quilt::Desktop, public Quilt::EditorHost {
public:
    // The texts of errors as their boxes would show them.
    const std::vector<std::string>& errors() const { return errors_; }

    void showMessage(const Quilt::Message& message,
                     std::function<void(Quilt::MessageButton)> answer) override {
        if (std::exchange(errorComes_, false)) {
            errors_.push_back(message.text);
        } else {
            std::cerr << message.text << '\n';
        }
        answer(message.buttons[message.defaultButton]);
    }

    void popUpMenu(const std::vector<Quilt::MenuItem>&, std::optional<Quilt::Rectangle>,
                   std::function<void(std::optional<int>)>) override {
        throw std::runtime_error("No parent window for popup menu");
    }

    void launch(const std::string& address) override { std::cerr << "launch: " << address << '\n'; }

    std::optional<std::string> clipboardText() override { return std::nullopt; }
    void setClipboardText(const std::string&) override {}

    bool takeError(const std::string&, const std::string&) override {
        errorComes_ = true;
        return false;
    }

    void log(const std::string& line) override {
        // Errors that are shown come out with the rest.
        if (!line.starts_with("Error: ")) {
            std::cerr << line << '\n';
        }
    }

private:
    std::vector<std::string> errors_;
    bool errorComes_ = false;
};

} // namespace Tool
