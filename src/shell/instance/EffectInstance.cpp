#include "instance/EffectInstance.h"

#include "model/PatchText.h"
#include "model/PathText.h"
#include "model/Product.h"
#include "notation/Writer.h"
#include "platform/AtomicFileWrite.h"
#include "state/BankFile.h"
#include "state/Chunks.h"
#include "state/StartupBank.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <exception>
#include <new>
#include <utility>

namespace Shell {

namespace {

static_assert(kDescriptor.uniqueId == Bnk::kPluginId);
static_assert(kDescriptor.bankTag == Bnk::kBankTag);
static_assert(kDescriptor.version == Bnk::BankHeader{}.writerVersion);
static_assert(kDescriptor.version == Bnk::BankFileHeader{}.pluginVersion);
static_assert(kDescriptor.programs == Model::Programs::kCount);
static_assert(kDescriptor.name == Model::kProductName);

constexpr std::size_t kMostReports = 4;

constexpr double kDryDelayPerWindow = 0.29289323; // 1 - 1/sqrt(2): where in the window the dry path stands
constexpr double kLongestTailSeconds = 10;        // a frozen frame would sound for ever

} // namespace

EffectInstance::EffectInstance(Host& host, const Surroundings& surroundings)
    : host_(host), surroundings_(surroundings),
      preferences_(surroundings.preferences, [this](const std::string& message) { report(message); }),
      keptVariables_(preferences_, programs_), patches_(programs_, surroundings.files, *this),
      midiConfigs_(mapping_, surroundings.files, preferences_), audio_(programs_, mapping_) {
    start();
}

template <typename Step>
void EffectInstance::attempt(Step step) {
    try {
        step();
    } catch (const std::bad_alloc&) {
        throw; // then there is no instance either
    } catch (const std::exception& error) {
        report(error.what());
    }
}

void EffectInstance::start() {
    attempt([&] {
        Model::MidiConfig ofFactoryBank;
        Bnk::readBankChunk(Bnk::chunkOfBankFile(surroundings_.factoryBank), programs_, ofFactoryBank);
    });
    attempt([&] {
        if (const auto entry = preferences_.get(Bnk::kStartupBankEntry)) {
            Bnk::readStartupBank(*entry, programs_);
        }
    });
    attempt([&] { midiConfigs_.loadDefault(); });
}

void EffectInstance::beginEdit(int id) {
    editing_ |= 1u << id;
    untouched_ |= 1u << id;
    host_.beginEdit(id);
}

void EffectInstance::editParameter(int id, float value) {
    value = Parameters::clampNormalised(value);
    if (value == parameter(id)) {
        return;
    }
    const bool ownGesture = (editing_ & (1u << id)) == 0;
    if (ownGesture) {
        host_.beginEdit(id);
    }
    {
        const auto lock = lockState();
        const bool newStep = (untouched_ & (1u << id)) != 0;
        patches_.changeParameter(id, value, newStep ? Model::UndoStep::own : Model::UndoStep::ofRun);
        untouched_ &= ~(1u << id);
    }
    host_.automate(id, value);
    if (ownGesture) {
        host_.endEdit(id);
    }
}

void EffectInstance::endEdit(int id) {
    editing_ &= ~(1u << id);
    untouched_ &= ~(1u << id);
    host_.endEdit(id);
}

void EffectInstance::switchProgram(int program) {
    if (program != programs_.current()) {
        programs_.select(program);
        currentPatchReplaced();
    }
}

void EffectInstance::renameProgram(const std::string& name) {
    const auto lock = lockState();
    Model::AtomicPatch& patch = programs_.currentPatch();
    if (patch.name() != name) {
        patch.setName(name);
        patch.markModified();
        replacements_.fetch_add(1, std::memory_order_relaxed);
    }
}

std::string EffectInstance::bankChunk() const {
    const auto lock = lockState();
    return Bnk::writeBankChunk(programs_, midiConfigs_.config(), keptVariables_.projectText());
}

std::string EffectInstance::programChunk() const {
    const auto lock = lockState();
    return Bnk::writeProgramChunk(programs_.currentPatch(), keptVariables_.programText());
}

void EffectInstance::readBankChunk(std::string_view chunk) {
    const auto lock = lockState();
    replacements_.fetch_add(1, std::memory_order_relaxed); // also when it fails half way
    Model::MidiConfig config = midiConfigs_.config();
    const std::string variables = Bnk::readBankChunk(chunk, programs_, config);
    midiConfigs_.replace(config);
    attempt([&] { keptVariables_.readProject(variables); });
}

void EffectInstance::readProgramChunk(std::string_view chunk) {
    const auto lock = lockState();
    const std::string variables = Bnk::readProgramChunk(chunk, programs_);
    attempt([&] { keptVariables_.readProgram(variables); });
    replacements_.fetch_add(1, std::memory_order_relaxed);
}

void EffectInstance::writeFactoryPatches(const std::filesystem::path& folder) const {
    Model::Programs programs;
    Model::MidiConfig config;
    Bnk::readBankChunk(Bnk::chunkOfBankFile(surroundings_.factoryBank), programs, config);
    Platform::atomicFileWrite(folder, [&](const std::filesystem::path& temporary) {
        std::filesystem::create_directories(temporary);
        for (int program = 0; program < Model::Programs::kCount; ++program) {
            Model::AtomicPatch& patch = programs[program];
            patch.markSaved();
            const auto file = Model::pathFromUtf8(
                fmt::format("{:02} {}{}", program + 1, patch.name(), Model::kPatchExtension));
            surroundings_.files.write(temporary / file,
                                      Stackbrace::withFileLineEnds(Model::writePatch(patch)));
        }
    });
}

void EffectInstance::storeStartupBank() {
    const auto lock = lockState();
    preferences_.set(Bnk::kStartupBankEntry, Bnk::writeStartupBank(programs_));
}

void EffectInstance::forgetStartupBank() {
    preferences_.remove(Bnk::kStartupBankEntry);
}

void EffectInstance::resume() {
    audio_.reset();
    suspended_.store(false, std::memory_order_relaxed);
}

bool EffectInstance::enabled() const noexcept {
    return !suspended_.load(std::memory_order_relaxed) && !audio_.bypassed();
}

// The window that the analysis looks at must have passed, and then a frame must come that finds it empty.
int EffectInstance::tailSamples() const noexcept {
    const double rate = audio_.sampleRate();
    const double window = audio_.latencySamples() / kDryDelayPerWindow;
    double framesPerSecond = Parameters::freeFrameRateHz(parameter(Parameters::frameRate));
    if (Parameters::isOn(parameter(Parameters::sync))) {
        framesPerSecond = 0; // depends on the tempo
    }
    const double frame = framesPerSecond > 0 ? rate / framesPerSecond : HUGE_VAL;
    return static_cast<int>(std::min(window + frame, kLongestTailSeconds * rate));
}

void EffectInstance::idle() {
    const std::uint32_t moved = audio_.takeMovedParameters();
    for (int id = 0; id < Parameters::kCount; ++id) {
        if (moved & (1u << id)) {
            host_.automate(id, parameter(id));
        }
    }
    if (audio_.takeProgramSwitch()) {
        currentPatchReplaced();
    }
}

void EffectInstance::report(std::string message) {
    const auto lock = lockState();
    lastReport_ = message;
    if (reports_.size() < kMostReports) {
        reports_.push_back(std::move(message));
    }
}

std::optional<std::string> EffectInstance::takeReport() {
    const auto lock = lockState();
    if (reports_.empty()) {
        return std::nullopt;
    }
    std::string message = std::move(reports_.front());
    reports_.pop_front();
    return message;
}

std::string EffectInstance::lastReport() const {
    const auto lock = lockState();
    return lastReport_;
}

std::string EffectInstance::translate(std::string_view text) const {
    return services_ ? services_->translate(text) : std::string(text);
}

std::string EffectInstance::clipboardText() const {
    return services_ ? services_->clipboardText() : ownClipboard_;
}

void EffectInstance::setClipboardText(const std::string& text) {
    if (services_) {
        services_->setClipboardText(text);
    } else {
        ownClipboard_ = text;
    }
}

void EffectInstance::currentPatchReplaced() {
    const auto lock = lockState();
    replacements_.fetch_add(1, std::memory_order_relaxed);
    displayIsOutdated_ = true;
}

void EffectInstance::unlockState() const noexcept {
    const bool tell = --stateLocks_ == 0 && std::exchange(displayIsOutdated_, false);
    stateMutex_.unlock();
    if (tell) {
        host_.updateDisplay();
    }
}

} // namespace Shell
