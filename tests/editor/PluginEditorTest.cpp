// The editor as a user meets it: the plug-in's binary in a host's window, hands on mouse and keyboard, pixels on
// the screen, automation at the host.
#include "PluginHost.h"
#include "XServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

using namespace Vst2;
using Testing::Client;
using Testing::XServer;

namespace {

constexpr int kWidth = 470;
constexpr int kHeight = 320;
constexpr int kPitch = 0;   // the host's number
constexpr int kKnobX = 45;  // the middle of the pitch knob
constexpr int kKnobY = 222;
constexpr int kLeftButton = 1;

class PluginEditorTest : public testing::Test {
protected:
    PluginEditorTest() : host_(PluginHost::Answers{.sizesWindow = 1}) { host_.start(); }

    void open() {
        window_ = client_.openWindow(24, 0, 0, kWidth, kHeight);
        ASSERT_EQ(host_.call(effEditOpen, 0, 0, reinterpret_cast<void*>(static_cast<std::uintptr_t>(window_))), 1);
        idle(3);
    }

    // The host's clock.
    void idle(int times) {
        for (int i = 0; i < times && host_; ++i) {
            host_.call(effEditIdle);
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    }

    void drag(int x, int y, int down, int steps) {
        client_.movePointer(x, y);
        idle(2);
        client_.press(kLeftButton);
        idle(2);
        for (int i = 1; i <= steps; ++i) {
            client_.movePointer(x, y + down * i / steps);
            idle(1);
        }
        client_.release(kLeftButton);
        idle(3);
    }

    void click(int x, int y) { drag(x, y, 0, 1); }

    std::vector<std::uint32_t> pixels(int left, int top, int width, int height) {
        std::vector<std::uint32_t> result;
        for (int y = top; y < top + height; y += 3) {
            for (int x = left; x < left + width; x += 3) {
                result.push_back(client_.pixel(window_, x, y));
            }
        }
        return result;
    }

    XServer server_;
    Client client_;
    PluginHost host_;
    xcb_window_t window_ = 0;
};

TEST_F(PluginEditorTest, HasTheSizeThatItSays) {
    EXPECT_NE(host_.effect->flags & effFlagsHasEditor, 0);
    ERect* rectangle = nullptr;
    ASSERT_EQ(host_.call(effEditGetRect, 0, 0, &rectangle), 1);
    EXPECT_EQ(rectangle->right - rectangle->left, kWidth);
    EXPECT_EQ(rectangle->bottom - rectangle->top, kHeight);
}

TEST_F(PluginEditorTest, ADragIsOneEditOneUndoStepAndSeen) {
    open();
    const auto before = pixels(kKnobX - 20, kKnobY - 20, 40, 40);
    drag(kKnobX, kKnobY, -45, 9);
    EXPECT_NEAR(host_.get(kPitch), 0.8, 0.05);
    EXPECT_EQ(host_.told(audioMasterBeginEdit).size(), 1u);
    EXPECT_EQ(host_.told(audioMasterEndEdit).size(), 1u);
    ASSERT_GE(host_.told(audioMasterAutomate).size(), 3u);
    EXPECT_EQ(host_.told(audioMasterAutomate).back().index, kPitch);
    EXPECT_EQ(host_.told(audioMasterAutomate).back().value, host_.get(kPitch));
    EXPECT_NE(pixels(kKnobX - 20, kKnobY - 20, 40, 40), before);

    click(404, 17); // undo
    EXPECT_EQ(host_.get(kPitch), 0.5f);
    client_.movePointer(5, 300);
    idle(5);
    EXPECT_EQ(pixels(kKnobX - 20, kKnobY - 20, 40, 40), before);
}

TEST_F(PluginEditorTest, AutomationIsSeenWithinOneIdle) {
    open();
    client_.movePointer(5, 300);
    idle(3);
    const auto before = pixels(kKnobX - 20, kKnobY - 20, 40, 40);
    host_.set(kPitch, 0.1f);
    idle(1);
    EXPECT_NE(pixels(kKnobX - 20, kKnobY - 20, 40, 40), before);
    EXPECT_TRUE(host_.told(audioMasterAutomate).empty()); // the host knows
}

TEST_F(PluginEditorTest, SwitchesAndRatesAnswerToClicks) {
    open();
    click(245, 300);
    EXPECT_EQ(host_.get(5), 1); // sync
    click(60, 300);
    EXPECT_EQ(host_.get(7), 0); // sample rate
    click(245, 300);
    EXPECT_EQ(host_.get(5), 0);
}

TEST_F(PluginEditorTest, EscapeCallsADragOff) {
    open();
    client_.movePointer(kKnobX, kKnobY);
    idle(1);
    client_.press(kLeftButton);
    idle(1);
    client_.movePointer(kKnobX, kKnobY - 40);
    idle(2);
    EXPECT_GT(host_.get(kPitch), 0.6f);
    client_.type(Testing::Key::kEscape);
    idle(3);
    client_.release(kLeftButton);
    idle(2);
    EXPECT_EQ(host_.get(kPitch), 0.5f);
    EXPECT_EQ(host_.told(audioMasterBeginEdit).size(), host_.told(audioMasterEndEdit).size());
}

TEST_F(PluginEditorTest, TheHostMayCloseItFromWithinTheCallsItGets) {
    for (const VstInt32 told : {audioMasterBeginEdit, audioMasterAutomate, audioMasterEndEdit}) {
        open();
        bool closed = false;
        host_.whenTold = [&](VstInt32 opcode) {
            if (opcode == told && !closed) {
                closed = true;
                host_.call(effEditClose);
            }
        };
        drag(kKnobX, kKnobY, -45, 3);
        EXPECT_TRUE(closed);
        host_.whenTold = nullptr;
        client_.destroy(window_);
    }
    open();
    host_.whenTold = [&](VstInt32 opcode) {
        if (opcode == audioMasterAutomate && host_) {
            host_.close();
        }
    };
    drag(kKnobX, kKnobY, 45, 3);
    EXPECT_FALSE(host_);
}

TEST_F(PluginEditorTest, OpensAndClosesAgainAndAgainAndSurvivesItsParent) {
    const auto descriptors = [] {
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
    };
    open();
    host_.call(effEditClose);
    const auto before = descriptors();
    for (int i = 0; i < 50; ++i) {
        ASSERT_EQ(host_.call(effEditOpen, 0, 0, reinterpret_cast<void*>(static_cast<std::uintptr_t>(window_))), 1);
        host_.call(effEditIdle);
        host_.call(effEditClose);
    }
    EXPECT_EQ(descriptors(), before);
    open();
    client_.destroy(window_);
    idle(5);
    EXPECT_EQ(host_.call(effEditClose), 1);
    open();
    EXPECT_NE(client_.pixel(window_, 20, 20), 0u);
}

TEST_F(PluginEditorTest, NoDisplayIsAnErrorAndNothingMore) {
    setenv("DISPLAY", ":4095", 1);
    EXPECT_EQ(host_.call(effEditOpen, 0, 0, reinterpret_cast<void*>(std::uintptr_t{1})), 0);
    host_.call(effEditClose);
    EXPECT_TRUE(allFinite(host_.process(voice(4800))));
    server_.use();
}

} // namespace
