// An editor while it is open: window, surface, layouts, bridge, and what goes on between them. The host may close it
// from within any call that it gets, and from within any message that the system lets through while something
// modal is on the screen: the window goes at once, the rest when the calls into the session are back.
#pragma once

#include "editor/EditorDesktop.h"
#include "editor/FontTextPainter.h"
#include "editor/ResourceDocuments.h"

#include "bridge/EditorBridge.h"
#include "bridge/Environment.h"
#include "drawing/Surface.h"
#include "images/ImageLibrary.h"
#include "instance/Editor.h"
#include "metatext/StringTable.h"
#include "platform/UpdateCheck.h"
#include "platform/Window.h"
#include "quilt/Editor.h"
#include "quilt/EditorHost.h"
#include "quilt/ViewFactory.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Shell {

class EffectInstance;

class EditorSession final : public std::enable_shared_from_this<EditorSession>,
                            private Platform::WindowListener,
                            private Quilt::EditorHost,
                            private Bridge::Environment {
public:
    // In a host's window, or in one of its own. Throw what says why there can be none. To be made shared.
    EditorSession(EffectInstance& effect, Platform::NativeWindow parent);
    EditorSession(EffectInstance& effect, const std::string& title);
    ~EditorSession() override;
    EditorSession(const EditorSession&) = delete;
    EditorSession& operator=(const EditorSession&) = delete;

    // In pixels, at the scale that the user has chosen last.
    static EditorSize sizeWhenOpened(EffectInstance& effect);

    EditorSize size() const;
    void idle();
    void close() noexcept;
    bool finished() const { return finished_; } // the window is gone, or the user wants it closed
    bool keyDown(const Platform::KeyEvent& key) override;

private:
    // While one lives, so do the session and the effect.
    class Stay {
    public:
        explicit Stay(EditorSession& session);
        ~Stay();
        Stay(const Stay&) = delete;
        Stay& operator=(const Stay&) = delete;

    private:
        int& count_;
        std::shared_ptr<void> effect_;
        std::shared_ptr<EditorSession> session_; // goes first
    };

    explicit EditorSession(EffectInstance& effect);

    void begin(std::unique_ptr<Platform::Window> window);
    Platform::Size wantedSize() const;
    void idleOnce();
    void live();
    void paint();
    void checkForUpdates();
    void fail(const std::string& message);

    // Platform::WindowListener
    void mouseDown(const Platform::MouseEvent& event) override;
    void mouseUp(const Platform::MouseEvent& event) override;
    void mouseMoved(const Platform::MouseEvent& event) override;
    void mouseLeft() override;
    void mouseWheel(const Platform::WheelEvent& event) override;
    void mouseCaptureLost() override;
    void resized(Platform::Size size) override;
    void hostIsSilent() override { idle(); }
    void closeRequested() override { finished_ = true; }
    void windowLost() override;

    // Quilt::EditorHost
    void log(const std::string& line) override;
    void resized(std::int32_t width, std::int32_t height) override;
    void invalidate(const Quilt::Rectangle& part) override;
    void setCursor(Quilt::Cursor cursor) override;

    // Bridge::Environment
    void chooseFile(const Bridge::FileQuestion& question, Chosen chosen) override;
    std::string clipboardText() override;
    void setClipboardText(const std::string& text) override;
    void tellUser(const std::string& message) override;
    void perform(std::string_view action, std::string_view params) override;
    void reloadEditor() override;

    EffectInstance& effect_;
    Images::ImageLibrary images_;
    FontTextPainter painter_{images_};
    EditorDesktop desktop_;
    Quilt::StringTable strings_;
    Bridge::EditorBridge bridge_;
    ResourceDocuments documents_;
    Quilt::ViewFactory views_;
    Quilt::SteadyClock clock_;
    std::unique_ptr<Platform::Window> window_;
    std::optional<Drawing::Surface> surface_;
    std::vector<Platform::Rect> dirty_;
    std::optional<Quilt::Editor> editor_;
    std::optional<Platform::UpdateCheck> updates_;
    int stays_ = 0;
    bool idling_ = false;
    bool living_ = false; // while something modal keeps it idling
    bool finished_ = false;
};

} // namespace Shell
