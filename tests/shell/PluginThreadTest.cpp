// Many threads at one effect, for the thread sanitizer to watch.
#include "PluginHost.h"

#include "instance/EffectInstance.h"
#include "platform/MemoryRecord.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

using namespace Vst2;

TEST(PluginThreads, aHostThatDoesEverythingAtOnce) {
    PluginHost host;
    host.start();
    const std::string bank = host.chunk();
    const std::string program = host.chunk(true);
    std::atomic<bool> done = false;
    std::atomic<int> turns = 0; // however busy the machine is, both threads get some
    std::thread audio([&] {
        const Sound in = voice(512);
        for (int block = 0; block < 600 || turns < 200; ++block) {
            host.midi(block % 512, 0x90, block % 128, 100);
            host.midi(block % 512, 0x80, block % 128, 0);
            host.set(block % 10, static_cast<float>(block % 17) / 16);
            const Sound out = host.process(in);
            EXPECT_TRUE(allFinite(out));
        }
        done = true;
    });
    std::thread saving([&] {
        while (!done) {
            host.chunk();
            host.text(effGetProgramName, 0, 24);
        }
    });
    for (int turn = 0; !done; turns = ++turn) {
        host.set(turn % 10, static_cast<float>(turn % 5) / 4);
        switch (turn % 8) {
        case 0: EXPECT_TRUE(host.setChunk(bank)); break;
        case 1: EXPECT_TRUE(host.setChunk(program, true)); break;
        case 2: host.setChunk("garbage"); break;
        case 3: host.call(effSetProgram, 0, turn / 8 % 16); break;
        case 4: host.call(effSetSampleRate, 0, 0, nullptr, turn % 16 < 8 ? 44100.0f : 96000.0f); break;
        case 5: host.call(effEditIdle); break;
        case 6: host.text(effGetParamDisplay, turn % 10); break;
        default: host.call(effSetBypass, 0, turn / 8 % 2); break;
        }
    }
    audio.join();
    saving.join();
    EXPECT_TRUE(host.setChunk(bank));
    host.call(effSetBypass, 0, 0);
    host.call(effSetProgram, 0, 0);
    EXPECT_GT(level(host.process(voice(20000)), 10000), 0.01); // and still plays
}

namespace {

struct QuietHost final : Shell::Host {
    const Shell::HostIdentity& identity() const override { return identity_; }
    void automate(int, float) override {}
    void beginEdit(int) override {}
    void endEdit(int) override {}
    void updateDisplay() override {}
    bool sizeWindow(int, int) override { return false; }
    Shell::HostTransport transport() noexcept override { return {}; }
    Shell::HostIdentity identity_;
};

} // namespace

TEST(PluginThreads, theEditorWorksWhileItPlays) {
    QuietHost host;
    Platform::MemoryRecord preferences;
    Model::DiskFiles files;
    Shell::EffectInstance instance(host, {preferences, files, ""});
    instance.resume();
    instance.patches().copy(); // something to exchange with
    std::atomic<bool> done = false;
    std::atomic<int> turns = 0; // however busy the machine is, both threads get some
    std::thread audio([&] {
        Sound sound = voice(256);
        float* const both[] = {sound.left.data(), sound.right.data()};
        for (int block = 0; block < 600 || turns < 200; ++block) {
            instance.audio().receive({block % 256, 0xB0, 20, static_cast<std::uint8_t>(block % 128)});
            instance.audio().receive({block % 256, 0xC0, static_cast<std::uint8_t>(block % 16), 0});
            instance.process({.in = both, .out = both, .samples = 256});
        }
        done = true;
    });
    Model::MidiConfig config;
    config.programChanges = true;
    for (int turn = 0; !done; turns = ++turn) {
        config.assignments.assign(turn % 10, 20);
        instance.midiConfigs().replace(config);
        instance.editParameter(turn % 10, static_cast<float>(turn % 9) / 8);
        switch (turn % 7) {
        case 0: instance.patches().undo(); break;
        case 1: instance.patches().redo(); break;
        case 2: instance.patches().randomise(); break;
        case 3: instance.patches().exchange(); break;
        case 4: instance.patches().copy(); break;
        case 5: instance.audio().inject({0x90, 60, 100}); break;
        default: instance.idle(); break;
        }
    }
    audio.join();
    EXPECT_GT(instance.patches().history().size(), 10u);
}
