// What the effect instance wants of the program that has loaded it. The adapter for a plug-in interface
// implements it; parameters are known here by their ids, not by the host's numbers.
#pragma once

#include <memory>
#include <optional>
#include <string>

namespace Shell {

struct HostIdentity {
    std::string vendor;
    std::string product;
    int version = 0;
    bool sizesWindow = false; // the editor's window can grow and shrink while it is open
};

struct HostTransport {
    std::optional<double> tempo;        // beats per minute
    std::optional<double> songPosition; // quarter notes, at the start of the block
    bool playing = false;
};

class Host {
public:
    virtual ~Host() = default;

    // [main] All of these.
    virtual const HostIdentity& identity() const = 0;
    virtual void automate(int parameter, float value) = 0;
    virtual void beginEdit(int parameter) = 0;
    virtual void endEdit(int parameter) = 0;
    virtual void updateDisplay() = 0;                    // programs, their names or many values have changed
    virtual bool sizeWindow(int width, int height) = 0;  // of the editor; false: the host will not

    // While somebody has this, the effect stays, even if the host closes it meanwhile.
    virtual std::shared_ptr<void> hold() { return nullptr; }

    // [audio] At the block that is about to be processed.
    virtual HostTransport transport() noexcept = 0;
};

} // namespace Shell
