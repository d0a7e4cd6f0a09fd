#include "vst2/HostCallback.h"

#include "parameters/ParameterTable.h"

#include <array>
#include <cstdint>
#include <stdexcept>
#include <string_view>

namespace Shell {

using namespace Vst2;

namespace {

// At this point some hosts trip over an effect that they have not been given yet; none does over none.
constexpr AEffect* kNoEffect = nullptr;

std::string textOf(audioMasterCallback callback, VstInt32 opcode) {
    std::array<char, kHostStringBuffer + 1> buffer{}; // some hosts leave it as it was
    callback(kNoEffect, opcode, 0, 0, buffer.data(), 0);
    buffer.back() = '\0';
    return buffer.data();
}

HostIdentity ask(audioMasterCallback callback) {
    HostIdentity host;
    host.vendor = textOf(callback, audioMasterGetVendorString);
    host.product = textOf(callback, audioMasterGetProductString);
    host.version = static_cast<int>(callback(kNoEffect, audioMasterGetVendorVersion, 0, 0, nullptr, 0));
    char sizeWindow[] = "sizeWindow";
    host.sizesWindow = callback(kNoEffect, audioMasterCanDo, 0, 0, sizeWindow, 0) > 0 ||
                       (host.vendor == "Ableton" && host.product == "Live"); // can, and does not say so
    return host;
}

} // namespace

HostCallback::HostCallback(audioMasterCallback callback, AEffect& effect)
    : callback_(callback), effect_(effect) {
    if (callback == nullptr || callback(kNoEffect, audioMasterVersion, 0, 0, nullptr, 0) == 0) {
        throw std::runtime_error("audioMaster returned 0");
    }
    identity_ = ask(callback);
}

void HostCallback::automate(int parameter, float value) {
    call(audioMasterAutomate, Parameters::hostIndex(parameter), 0, nullptr, value);
}

void HostCallback::beginEdit(int parameter) {
    call(audioMasterBeginEdit, Parameters::hostIndex(parameter));
}

void HostCallback::endEdit(int parameter) {
    call(audioMasterEndEdit, Parameters::hostIndex(parameter));
}

void HostCallback::updateDisplay() {
    call(audioMasterUpdateDisplay);
}

bool HostCallback::sizeWindow(int width, int height) {
    return call(audioMasterSizeWindow, width, height) > 0;
}

HostTransport HostCallback::transport() noexcept {
    HostTransport transport;
    const auto* time =
        reinterpret_cast<const VstTimeInfo*>(call(audioMasterGetTime, 0, kVstTempoValid | kVstPpqPosValid));
    if (time != nullptr) {
        if (time->flags & kVstTempoValid) {
            transport.tempo = time->tempo;
        }
        if (time->flags & kVstPpqPosValid) {
            transport.songPosition = time->ppqPos;
        }
        transport.playing = (time->flags & kVstTransportPlaying) != 0;
    }
    return transport;
}

void HostCallback::ioChanged() {
    call(audioMasterIOChanged);
}

void HostCallback::needIdle() {
    call(audioMasterNeedIdle);
}

} // namespace Shell
