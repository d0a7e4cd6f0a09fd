#include "quilt/View.h"
#include "quilt/views/Rows.h"
#include "quilt/views/Views.h"

namespace Quilt {

namespace {

using namespace Rows;

constexpr Property kTrigger[] = {
    {"trigger", choice, "release", "Whether the action comes with the press or with the release over the control.",
     "press release"},
};

constexpr Property kButton[] = {
    {"image", image, "", "What the button looks like, in all states that `images` has nothing for."},
    {"images", stateImages, "", "Images for the states.", kStates},
    {"backgrounds", stateColors, "", "Backgrounds for the states.", kStates},
    {"colors", stateColors, "", "Colors of the text for the states.", kStates},
    {"repeat", number, "0", "Seconds after which the action comes again while the button is held; 0: never.", "", 0, 60},
};

constexpr Property kClick[] = {
    {"doubleAction", action, "", "What a double click does."},
    {"doubleParams", params, "", "The parameters of `doubleAction`."},
};

} // namespace

ViewType buttonType() {
    return {"button", "Does something when it is clicked, and shows whether that can be done and is the case.",
            {kAction, kMenu, kTrigger, kButton, kText, kBox, kFocus}, make<View>};
}

ViewType clickType() {
    return {"click", "A place to click at: nothing is to be seen of it.", {kAction, kClick, kMenu, kTrigger}, make<View>};
}

} // namespace Quilt
