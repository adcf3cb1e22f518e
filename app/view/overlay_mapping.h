#pragma once

#include "app/view/Overlay.h"
#include "app/view/ViewGeometry.h"

/// Maps an overlay in image coordinates to the client area. What has a point out of the displayed part is left out;
/// lines are cut at its edge instead. Radii grow with the zoom.
Overlay MapToClient(const Overlay& inImage, const ViewGeometry& geometry);
