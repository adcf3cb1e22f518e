#pragma once

#include "app/toolkit/ViewRect.h"

/// What a window shows of its image, in words that another window can follow whose size, or image's size, is another.
struct ViewPlace {
    float zoom = 1.0f;
    double x = 0.5, y = 0.5;  ///< the middle of the part on display, as shares of the image's width and height
};

/// How an image lies in a window: zoom, the part of the image on display (source) and where it stands in the client
/// area (destination), and the two mappings between them. No widget and no pixel takes part.
///
/// The rectangles follow each change of zoom or of a size at once, from the rectangles before it, so that the image
/// point under the anchor stays there. Nothing else moves them: computing them afresh at each paint would let rounding
/// creep, and an image that was dragged under an edge would jump back.
class ViewGeometry {
public:
    static constexpr float kMinimumZoom = 0.01f;
    static constexpr float kMaximumZoom = 10.0f;

    /// Zoom 1.0, both rectangles empty, no anchor, not dragging. The next Adapt or zoom fills the rectangles.
    void Reset();
    /// Takes the sizes of window and image in pixels; without an image, 0 or less. A zoom that came from a fit is
    /// fitted anew to another window size, until it is set in another way or the image is dragged.
    void Adapt(int clientWidth, int clientHeight, int imageWidth, int imageHeight);

    float GetZoom() const { return m_zoom; }
    void SetZoom(float zoom);  ///< limited to 0.01 to 10
    void ResetScale();         ///< zoom 1.0
    void FitHeight();          ///< the image's height fills the client area's; limited as by SetZoom
    void FitWidth();
    void FitToWindow();  ///< the lesser of both
    /// The same where the image is larger than the window; else the zoom stays. A zoom of 1.0 then goes down and up
    /// with the window, so that the image stays whole, but never over 1.0.
    /// @return whether the zoom was fitted
    bool FitIfLarger();

    ViewPlace GetPlace() const;
    /// Zooms and scrolls to a place, as near as the image's edges allow, and ends a fit.
    void GoTo(const ViewPlace& place);

    const ViewRect& GetSource() const { return m_source; }            ///< image pixels
    const ViewRect& GetDestination() const { return m_destination; }  ///< client pixels

    /// Truncates, and never leaves the image: a point on the right or lower edge gives the last column or row.
    /// @return false, `out` untouched, for a point outside the destination or without an image
    bool ClientToImage(ViewPoint in, ViewPoint* out) const;
    /// Rounds, unlike ClientToImage, deliberately (C21).
    /// @return false, `out` untouched, for a point outside the source grown by one pixel on all sides
    bool ImageToClient(ViewPoint in, ViewPoint* out) const;

    /// One step of the wheel over a client point, which becomes the anchor: the image point there stays under it.
    /// @return false, nothing changed, where the point is outside the destination
    bool Wheel(ViewPoint point, bool zoomIn, bool fast);

    /// @return false where there is nothing to scroll: the image is smaller than the client area in both directions
    bool BeginDrag(ViewPoint point);
    void DragTo(ViewPoint point);
    bool EndDrag();  ///< drops the anchor. @return whether there was a drag
    bool IsDragging() const { return m_dragging; }

    /// The ROI that a new image begins with, in image pixels: a sixteenth off each side.
    static ViewRect DefaultRoi(int width, int height);
    /// The tracker that a ROI begins with, in client pixels: the destination without a fiftieth on each side.
    ViewRect DefaultTracker() const;
    /// Maps a tracker to the image; what stands out of the destination is cut off.
    /// @return false, `roi` untouched, without an image on display
    bool TrackerToRoi(const ViewRect& tracker, ViewRect* roi) const;
    /// @return false, `tracker` untouched, unless both corners of the ROI map
    bool RoiToTracker(const ViewRect& roi, ViewRect* tracker) const;

    /// Moves a ROI of image pixels by (dx, dy), or with `resizes` its right lower corner, as far as the image goes. It
    /// keeps its size when it moves, and two pixels each way when it shrinks.
    static ViewRect NudgeRoi(const ViewRect& roi, int dx, int dy, bool resizes, int imageWidth, int imageHeight);

private:
    void ApplyFit();
    void ApplyZoom(float zoom);
    void Layout();
    void ClampSource();

    float m_zoom = 1.0f;
    int m_clientWidth = 0, m_clientHeight = 0;
    int m_imageWidth = 0, m_imageHeight = 0;
    enum class Fit { None, Height, Width, Window, Whole } m_fit = Fit::None;
    ViewRect m_source;
    ViewRect m_destination;
    ViewPoint m_anchor;  // (0, 0) when there is none
    bool m_laidOut = false;
    bool m_dragging = false;
};
