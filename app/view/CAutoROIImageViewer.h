#pragma once

#include <optional>

#include "app/view/CImageViewerCtrl.h"
#include "chart/PatchDetector.h"
#include "foundation/CTivVector.h"

/// The viewer that finds the patches of an upright color chart inside its ROI, shows where it measures them, and
/// measures them.
class CAutoROIImageViewer : public CImageViewerCtrl {
    Q_OBJECT
public:
    using CImageViewerCtrl::CImageViewerCtrl;

    /// @param size not owned, read afresh at each use; the viewer detects nothing without one
    void SetChartSize(ChartSize* size) { m_chartSize = size; }
    /// As the base's; then forgets the patches and shows the ROI, which tells of it.
    bool SetImage(CTivImage* image, bool resetView) override;
    /// On: the ROI becomes the displayed part less a fiftieth on each side, and the comm is told, which sets off
    /// detection. Off: no patches are drawn, and the ROI becomes a small square to pick colors with.
    void SetAutoDetect(bool on) override;
    /// Rebuilds patch grid and overlay from the image under the ROI. Shows no message.
    void DetectPatches() override;
    /// Measures the grid. Warns once if a patch is saturated, and gives the colors all the same.
    /// @return FormatRgb, chart width x height elements, row by row; without image or chart size an
    ///         empty vector of no format, which the calibration does not take: what it has stays
    CTivVector GetRawColors() override;
    /// The same, ordered by the place of the brightest patch: what GetRawColors gives for 6 x 4 and 4 x 6.
    CTivVector GetOrientedRawColors();
    const tonewright::PatchDetector* Detector() const override { return &m_detector; }
    /// @param bgr receives the ROI's mean color: blue, green, red
    /// @param centre receives the ROI's centre in image pixels
    void GetRoiColor(unsigned char* bgr, ViewPoint* centre);
    /// Whether that mean is none that the picture shows, since the ROI holds two colors.
    bool HoldsTwoColors() const;

protected:
    bool IsRoiDashed() const override;  ///< one to pick colors with that holds two
    /// Centres the ROI on the point and asks for a manual pick there.
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    tonewright::ChartRoi RoiOfChart() const;
    CTivVector Deliver(const tonewright::PatchColors& measured);

    tonewright::PatchDetector m_detector;
    ChartSize* m_chartSize = nullptr;
    mutable std::optional<ViewRect> m_measuredRoi;  // where m_holdsTwoColors was found out
    mutable bool m_holdsTwoColors = false;
    bool m_autoDetect = false;  // kept, though only the frame's own flag decides
};
