#include "editor/EditorSession.h"

#include "bridge/EditorVariables.h"
#include "bridge/MidiAssignView.h"
#include "instance/EffectInstance.h"
#include "quilt/Document.h"
#include "quilt/Unicode.h"
#include "resources/Resources.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <utility>

namespace Shell {

namespace {

constexpr const char* kMainLayout = "MURMELON_MAIN";
constexpr std::string_view kVersionCheck = "preferences.versionCheck";

// Beyond this many parts the area around them all is painted instead.
constexpr std::size_t kMostParts = 16;

Quilt::StringTable stringTable() {
    const auto text = Resources::find(Resources::Type::strings, "MURMELON_STRINGS");
    return text ? Quilt::StringTable::read(std::string(*text), "MURMELON_STRINGS") : Quilt::StringTable();
}

Quilt::Modifiers modifiersOf(const Platform::Modifiers& modifiers) {
    return {modifiers.shift, modifiers.control, modifiers.alt};
}

Quilt::MouseEvent eventOf(const Platform::MouseEvent& event) {
    Quilt::MouseEvent result;
    result.at = {event.at.x, event.at.y};
    result.modifiers = modifiersOf(event.modifiers);
    result.clicks = event.clicks;
    result.button = event.button == Platform::MouseButton::right    ? Quilt::MouseButton::right
                    : event.button == Platform::MouseButton::middle ? Quilt::MouseButton::middle
                                                                    : Quilt::MouseButton::left;
    return result;
}

struct KeyPair {
    Platform::VirtualKey platform;
    Quilt::Key quilt;
};

constexpr KeyPair kKeys[] = {
    {Platform::VirtualKey::enter, Quilt::Key::enter},   {Platform::VirtualKey::numpadEnter, Quilt::Key::enter},
    {Platform::VirtualKey::escape, Quilt::Key::escape}, {Platform::VirtualKey::tab, Quilt::Key::tab},
    {Platform::VirtualKey::back, Quilt::Key::backspace}, {Platform::VirtualKey::del, Quilt::Key::del},
    {Platform::VirtualKey::left, Quilt::Key::left},     {Platform::VirtualKey::right, Quilt::Key::right},
    {Platform::VirtualKey::up, Quilt::Key::up},         {Platform::VirtualKey::down, Quilt::Key::down},
    {Platform::VirtualKey::pageUp, Quilt::Key::pageUp}, {Platform::VirtualKey::pageDown, Quilt::Key::pageDown},
    {Platform::VirtualKey::home, Quilt::Key::home},     {Platform::VirtualKey::end, Quilt::Key::end},
};

// The first character of a UTF-8 text; 0 for none.
char32_t firstCharacter(std::string_view text) {
    const std::u16string wide = Quilt::toUtf16(text);
    return wide.empty() ? 0 : wide.front();
}

// nullopt: nothing that the editor has a use for.
std::optional<Quilt::KeyEvent> eventOf(const Platform::KeyEvent& key) {
    Quilt::KeyEvent result;
    result.modifiers = modifiersOf(key.modifiers);
    for (const KeyPair& pair : kKeys) {
        if (pair.platform == key.key) {
            result.key = pair.quilt;
            return result;
        }
    }
    result.character = key.text.empty() ? key.character : firstCharacter(key.text);
    return result.character != 0 ? std::optional(result) : std::nullopt;
}

Platform::Cursor cursorOf(Quilt::Cursor cursor) {
    switch (cursor) {
    case Quilt::Cursor::hand:
        return Platform::Cursor::hand;
    case Quilt::Cursor::text:
        return Platform::Cursor::text;
    case Quilt::Cursor::vertical:
        return Platform::Cursor::resizeVertical;
    case Quilt::Cursor::horizontal:
        return Platform::Cursor::resizeHorizontal;
    case Quilt::Cursor::move:
        return Platform::Cursor::move;
    case Quilt::Cursor::cross:
        return Platform::Cursor::crosshair;
    case Quilt::Cursor::forbidden:
        return Platform::Cursor::forbidden;
    case Quilt::Cursor::arrow:
        break;
    }
    return Platform::Cursor::arrow;
}

Platform::Rect united(const Platform::Rect& a, const Platform::Rect& b) {
    const int left = std::min(a.x, b.x);
    const int top = std::min(a.y, b.y);
    return {left, top, std::max(a.x + a.width, b.x + b.width) - left,
            std::max(a.y + a.height, b.y + b.height) - top};
}

class Raised {
public:
    explicit Raised(bool& flag) : flag_(flag) { flag_ = true; }
    ~Raised() { flag_ = false; }
    Raised(const Raised&) = delete;
    Raised& operator=(const Raised&) = delete;

private:
    bool& flag_;
};

} // namespace

EditorSession::EditorSession(EffectInstance& effect)
    : effect_(effect), desktop_(painter_, [this](const std::string& message) { fail(message); }),
      strings_(stringTable()), bridge_(effect, *this, strings_), views_(Quilt::standardViews()) {
    views_.add(Bridge::midiAssignType(bridge_.midiLearn()));
    painter_.setScale(bridge_.scale().factor());
}

EditorSession::EditorSession(EffectInstance& effect, Platform::NativeWindow parent) : EditorSession(effect) {
    begin(Platform::Window::openInside(parent, wantedSize(), *this));
}

EditorSession::EditorSession(EffectInstance& effect, const std::string& title) : EditorSession(effect) {
    begin(Platform::Window::openTopLevel(title, wantedSize(), *this));
}

EditorSession::~EditorSession() {
    close();
}

EditorSession::Stay::Stay(EditorSession& session)
    : count_(session.stays_), effect_(session.effect_.host().hold()), session_(session.weak_from_this().lock()) {
    ++count_;
}

EditorSession::Stay::~Stay() {
    --count_;
}

void EditorSession::close() noexcept {
    finished_ = true;
    if (stays_ == 0) {
        editor_.reset(); // its last actions may still want the desktop
    }
    desktop_.setWindow(nullptr);
    window_.reset();
}

void EditorSession::windowLost() {
    finished_ = true;
    desktop_.setWindow(nullptr);
}

EditorSize EditorSession::sizeWhenOpened(EffectInstance& effect) {
    const Quilt::Scale scale = Bridge::storedScale(effect.preferences());
    return {scale.toPixels(Bridge::kEditorWidth), scale.toPixels(Bridge::kEditorHeight)};
}

Platform::Size EditorSession::wantedSize() const {
    return {bridge_.scale().toPixels(Bridge::kEditorWidth), bridge_.scale().toPixels(Bridge::kEditorHeight)};
}

EditorSize EditorSession::size() const {
    const Platform::Size size = window_ ? window_->size() : wantedSize();
    return {size.width, size.height};
}

void EditorSession::begin(std::unique_ptr<Platform::Window> window) {
    window_ = std::move(window);
    desktop_.setWindow(window_.get());
    editor_.emplace(Quilt::Editor::Services{documents_, views_, images_, desktop_, *this, clock_, &bridge_, &bridge_});
    editor_->open(kMainLayout, {0, 0, Bridge::kEditorWidth, Bridge::kEditorHeight});
    paint();
    if (effect_.keptVariables().get(kVersionCheck) == "true") {
        checkForUpdates();
    }
}

void EditorSession::checkForUpdates() {
    updates_.emplace(Platform::UpdateCheck::builtInAddress(), bridge_.get("MODEL.VERSION").value_or(""));
    updates_->start();
}

void EditorSession::idle() {
    const Stay stay(*this);
    if (finished_) {
        return;
    }
    if (!idling_) {
        const Raised flag(idling_);
        idleOnce();
    } else if (desktop_.waitsForUser() && !living_) { // something modal has let the host through
        const Raised flag(living_);
        live();
    }
}

void EditorSession::idleOnce() {
    effect_.idle();
    bridge_.idle();
    if (!finished_) {
        window_->poll();
    }
    if (!finished_) {
        desktop_.poll();
    }
    if (!finished_) {
        live();
    }
}

void EditorSession::live() {
    while (auto report = effect_.takeReport()) {
        fail(*report);
    }
    if (updates_ && updates_->poll()) {
        tellUser(strings_.translate("An update of this product is available."));
    }
    editor_->tick();
    paint();
}

void EditorSession::paint() {
    if (!window_ || !surface_ || dirty_.empty()) {
        return;
    }
    const std::vector<Platform::Rect> parts = std::exchange(dirty_, {});
    for (const Platform::Rect& part : parts) {
        editor_->draw(surface_->view(), {part.x, part.y, part.width, part.height});
    }
    const auto view = surface_->view();
    window_->present({view.pixels, view.width, view.height, static_cast<int>(view.stride)}, parts);
}

bool EditorSession::keyDown(const Platform::KeyEvent& key) {
    const Stay stay(*this);
    const auto event = eventOf(key);
    return event && editor_ && editor_->key(*event);
}

void EditorSession::mouseDown(const Platform::MouseEvent& event) {
    const Stay stay(*this);
    desktop_.setMouse(event.at);
    if (event.button == Platform::MouseButton::left) {
        window_->takeKeyboardFocus();
    }
    editor_->mousePressed(eventOf(event));
}

void EditorSession::mouseUp(const Platform::MouseEvent& event) {
    const Stay stay(*this);
    editor_->mouseReleased(eventOf(event));
}

void EditorSession::mouseMoved(const Platform::MouseEvent& event) {
    const Stay stay(*this);
    editor_->mouseMoved(eventOf(event));
}

void EditorSession::mouseLeft() {
    const Stay stay(*this);
    editor_->mouseLeft();
}

void EditorSession::mouseWheel(const Platform::WheelEvent& event) {
    const Stay stay(*this);
    editor_->wheel({{event.at.x, event.at.y}, event.up, modifiersOf(event.modifiers)});
}

void EditorSession::mouseCaptureLost() {
    const Stay stay(*this);
    editor_->captureLost();
}

void EditorSession::resized(Platform::Size size) {
    dirty_.assign(1, {0, 0, size.width, size.height});
}

void EditorSession::log(const std::string& line) {
    std::fprintf(stderr, "Murmelon: %s\n", line.c_str());
}

// The layouts have been loaded at some scale; the window follows.
void EditorSession::resized(std::int32_t width, std::int32_t height) {
    painter_.setScale(bridge_.scale().factor());
    if (window_ && window_->size() != Platform::Size{width, height}) {
        window_->resize({width, height});
    }
    surface_.emplace(width, height);
    dirty_.assign(1, {0, 0, width, height});
}

void EditorSession::invalidate(const Quilt::Rectangle& part) {
    const Platform::Rect rect{part.left, part.top, part.width, part.height};
    for (Platform::Rect& other : dirty_) {
        if (!Platform::intersection(rect, other).empty()) {
            other = united(rect, other);
            return;
        }
    }
    if (dirty_.size() == kMostParts) {
        for (const Platform::Rect& other : dirty_) {
            dirty_.front() = united(dirty_.front(), other);
        }
        dirty_.resize(1);
        dirty_.front() = united(dirty_.front(), rect);
    } else {
        dirty_.push_back(rect);
    }
}

void EditorSession::setCursor(Quilt::Cursor cursor) {
    if (window_) {
        window_->setCursor(cursorOf(cursor));
    }
}

void EditorSession::chooseFile(const Bridge::FileQuestion& question, Chosen chosen) {
    desktop_.chooseFile(question, std::move(chosen));
}

std::string EditorSession::clipboardText() {
    return desktop_.clipboardText().value_or(std::string());
}

void EditorSession::setClipboardText(const std::string& text) {
    desktop_.setClipboardText(text);
}

void EditorSession::tellUser(const std::string& message) {
    desktop_.showMessage({.kind = Quilt::MessageKind::info, .text = strings_.translate(message)},
                         [](Quilt::MessageButton) {});
}

void EditorSession::fail(const std::string& message) {
    editor_->document()->reportError("Murmelon", message);
}

void EditorSession::perform(std::string_view action, std::string_view params) {
    editor_->document()->perform(action, params);
}

void EditorSession::reloadEditor() {
    if (editor_) {
        editor_->requestReload();
    }
}

} // namespace Shell
