#pragma once

#include <QString>

#include "app/toolkit/ViewRect.h"
#include "chart/PatchDetector.h"
#include "chart/patch_outline.h"
#include "foundation/CTivImage.h"
#include "foundation/CTivVector.h"

/// One picture on the screen, as the steps of the work see it.
class PictureView {
public:
    virtual ~PictureView() = default;

    /// The picture on display. Who writes to it calls ShowNow afterwards.
    virtual CTivImage& Image() = 0;
    /// Shows a copy. @param resetView also the view's zoom and scroll @return false, and nothing is shown, without
    /// pixels
    virtual bool SetImage(CTivImage* image, bool resetView) = 0;
    virtual void ResetView() = 0;
    virtual void ClearOverlays() = 0;
    virtual void FitIfLarger() = 0;  ///< zooms out where the picture is larger than its window
    virtual void ShowNow() = 0;      ///< redraws before it returns

    /// Draws the outlines of a chart's patches in the picture's pixels, until the overlays are cleared or others come.
    virtual void ShowOutlines(const tonewright::PatchOutlines&) {}
    /// Makes one outline stand out; none has no points.
    virtual void Highlight(const tonewright::PatchOutline&) {}
    /// A word in a corner of the picture; empty: none.
    virtual void ShowBadge(const QString&) {}

    /// The name of the file that the picture came from, without its folders; empty: from none.
    virtual void SetFileName(const QString&) {}

    /// The selected picture is the target of Load Image and the source of colors picked by hand.
    virtual void SetSelected(int selected) = 0;
    virtual int IsSelected() const = 0;
    /// The rectangle of interest in the picture's pixels.
    virtual ViewRect GetRoi() const { return {}; }

    // What a view that finds charts does besides.
    virtual void SetAutoDetect(bool) {}
    virtual void DetectPatches() {}
    virtual CTivVector GetRawColors() { return {}; }                               ///< of no format without a picture
    virtual const tonewright::PatchDetector* Detector() const { return nullptr; }  ///< null: it finds no charts
};
