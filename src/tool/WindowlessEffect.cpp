#include "tool/WindowlessEffect.h"

#include "bridge/NumberText.h"
#include "model/PathText.h"
#include "resources/Resources.h"

#include <fmt/core.h>

#include <array>
#include <iostream>
#include <random>
#include <system_error>

namespace Tool {

namespace fs = std::filesystem;

namespace {

Quilt::StringTable stringTable() {
    const auto text = Resources::find(Resources::Type::strings, "MURMELON_STRINGS");
    return text ? Quilt::StringTable::read(std::string(*text), "MURMELON_STRINGS") : Quilt::StringTable();
}

} // namespace

PreferencesFolder::PreferencesFolder(const std::string& given) : path_(Model::pathFromUtf8(given)), temporary_(given.empty()) {
    std::random_device random;
    while (temporary_ && (path_.empty() || !fs::create_directories(path_))) {
        path_ = fs::temp_directory_path() / fmt::format("murmelon-{:08x}", random());
    }
}

PreferencesFolder::~PreferencesFolder() {
    std::error_code ignored;
    if (temporary_) {
        fs::remove_all(path_, ignored);
    }
}

void SayingHost::automate(int parameter, float value) {
    say_(fmt::format("host: automate {} {}", Parameters::hostIndex(parameter), Bridge::numberText(value)));
}

bool SayingHost::sizeWindow(int width, int height) {
    say_(fmt::format("host: sizeWindow {} {}", width, height));
    return true;
}

WindowlessEffect::WindowlessEffect(const std::string& preferences, SayingHost::Say hostSays)
    : folder_(preferences), record_(folder_.file()), host_(std::move(hostSays)),
      effect_(host_, {record_, files_, Resources::find(Resources::Type::fxb, "factorybank").value()}),
      strings_(stringTable()), bridge_(effect_, *this, strings_) {
    effect_.resume();
    while (const auto report = effect_.takeReport()) {
        std::cerr << *report << '\n';
    }
}

void WindowlessEffect::hear(std::span<float> block) {
    const std::array<float*, 2> channels = {block.data(), block.data()};
    Shell::AudioBuffers buffers;
    buffers.in = channels.data();
    buffers.out = channels.data();
    buffers.samples = static_cast<int>(block.size());
    effect_.process(buffers);
}

std::string WindowlessEffect::answer(std::string_view name) const {
    return effect_.keptVariables().get("instance." + std::string(name)).value_or(std::string());
}

void WindowlessEffect::chooseFile(const Bridge::FileQuestion&, Chosen chosen) {
    if (const std::string path = answer("dialogAnswer"); !path.empty()) {
        chosen(Model::pathFromUtf8(path));
    }
}

void WindowlessEffect::tellUser(const std::string& message) {
    std::cerr << message << '\n';
}

void WindowlessEffect::perform(std::string_view action, std::string_view params) {
    if (context_ != nullptr) {
        bridge_.perform(action, params, *context_);
    }
}

} // namespace Tool
