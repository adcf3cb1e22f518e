#pragma once

#include "app/toolkit/ViewRect.h"
#include "foundation/CTivData.h"

/// What a viewer tells its owner. Called on the main thread, from within the viewer's handlers.
class CDemoImageViewerComm {
public:
    virtual ~CDemoImageViewerComm() = default;

    /// The pixel under the mouse, in image coordinates, with its value in the image's format.
    virtual void OnPixel(long /*x*/, long /*y*/, CTivData /*value*/) {}
    /// The rectangle of interest, in image coordinates: its width is right - left.
    virtual void OnRoiChanged(ViewRect /*roi*/) {}
    /// The zoom of a viewer: 1.0 for one image pixel to one client pixel.
    virtual void OnZoomChanged(float /*zoom*/) {}
};
