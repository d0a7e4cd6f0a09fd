// The framework's own view types. Each has a source file, where its class stands with its rows.
#pragma once

#include "quilt/ViewFactory.h"

namespace Quilt {

ViewType animationType();
ViewType bubbleType();
ViewType buttonType();
ViewType captionType();
ViewType clickType();
ViewType clusterType();
ViewType consoleType();
ViewType dragAreaType();
ViewType gradientType();
ViewType groupType();
ViewType knobType();
ViewType markerType();
ViewType pagedType();
ViewType quiltType();
ViewType rasterType();
ViewType rectangleType();
ViewType sliderType();
ViewType transformedType();
ViewType vectorType();

} // namespace Quilt
