// The host of an instance as VST 2 has it: everything goes through one callback.
#pragma once

#include "instance/Host.h"
#include "vst2abi/Vst2.h"

#include <memory>
#include <utility>

namespace Shell {

class HostCallback final : public Host {
public:
    // Throws std::runtime_error when the host does not answer. Asks the host who it is; `effect` is what later
    // calls name, and need not be complete yet.
    HostCallback(Vst2::audioMasterCallback callback, Vst2::AEffect& effect);

    const HostIdentity& identity() const override { return identity_; }
    void automate(int parameter, float value) override;
    void beginEdit(int parameter) override;
    void endEdit(int parameter) override;
    void updateDisplay() override;
    bool sizeWindow(int width, int height) override;
    std::shared_ptr<void> hold() override { return owner_.lock(); }
    HostTransport transport() noexcept override;

    // [main] The latency or the number of channels has changed.
    void ioChanged();
    // [main] For hosts that call effIdle only when asked to.
    void needIdle();

    void setOwner(std::weak_ptr<void> owner) { owner_ = std::move(owner); }
    // The effect is closed: the host wants to hear nothing more of it.
    void fallSilent() { callback_ = nullptr; }

private:
    Vst2::VstIntPtr call(Vst2::VstInt32 opcode, Vst2::VstInt32 index = 0, Vst2::VstIntPtr value = 0,
                         void* ptr = nullptr, float opt = 0) const {
        return callback_ != nullptr ? callback_(&effect_, opcode, index, value, ptr, opt) : 0;
    }

    Vst2::audioMasterCallback callback_;
    Vst2::AEffect& effect_;
    HostIdentity identity_;
    std::weak_ptr<void> owner_;
};

} // namespace Shell
