#include "app/view/CAutoROIImageViewer.h"

#include <QMouseEvent>

#include "app/toolkit/Prompts.h"
#include "app/view/ViewerHost.h"
#include "chart/PatchMeasurement.h"

using namespace tonewright;

namespace {

constexpr const char* kSaturatedText = "There are saturated colors (Red Roi)";
constexpr const char* kSaturatedTitle = "Warning";

}  // namespace

bool CAutoROIImageViewer::SetImage(CTivImage* image, bool resetView) {
    m_measuredRoi.reset();
    if (!CImageViewerCtrl::SetImage(image, resetView)) return false;
    m_detector.Clear();
    EnableRoi(true);
    return true;
}

void CAutoROIImageViewer::SetAutoDetect(bool on) {
    m_autoDetect = on;
    if (on) {
        ResetTracker();
        NotifyRoi();
    } else {
        ImageOverlay().Clear();
        const int side = Image().GetHeight() / 10;  // deliberately (C18) the height for both axes: a square
        SetRoi({side, side, 2 * side, 2 * side});
    }
    update();
}

ChartRoi CAutoROIImageViewer::RoiOfChart() const {
    const ViewRect roi = GetRoi();
    return {roi.left, roi.top, roi.right, roi.bottom};
}

void CAutoROIImageViewer::DetectPatches() {
    if (!Image().IsAllocated() || !m_chartSize) return;
    ImageOverlay().Clear();
    if (!m_detector.DetectPatches(Image(), RoiOfChart(), *m_chartSize)) return;
    for (const PatchOverlay& patch : m_detector.GetOverlay()) {
        ImageOverlay().AddRectangle(patch.x, patch.y, patch.width, patch.height, Overlay::kPatchColor);
    }
    update();
}

CTivVector CAutoROIImageViewer::Deliver(const PatchColors& measured) {
    if (measured.saturated) GetPrompts().ShowWarning(kSaturatedTitle, kSaturatedText);
    return measured.colors;
}

CTivVector CAutoROIImageViewer::GetRawColors() {
    if (!Image().IsAllocated() || !m_chartSize) return {};
    return Deliver(m_detector.GetRawColors(Image(), RoiOfChart(), *m_chartSize));
}

CTivVector CAutoROIImageViewer::GetOrientedRawColors() {
    if (!Image().IsAllocated() || !m_chartSize) return {};
    return Deliver(m_detector.GetOrientedRawColors(Image(), RoiOfChart(), *m_chartSize));
}

void CAutoROIImageViewer::GetRoiColor(unsigned char* bgr, ViewPoint* centre) {
    CTivData::Point point{};
    PatchDetector::GetRoiColor(Image(), RoiOfChart(), bgr, &point);
    *centre = {point.x, point.y};
}

// Asked at each paint, and measured when the rectangle is another one.
bool CAutoROIImageViewer::HoldsTwoColors() const {
    const ViewRect roi = DrawnRoi();
    if (!m_measuredRoi || *m_measuredRoi != roi) {
        m_measuredRoi = roi;
        m_holdsTwoColors = MeasureArea(Image(), {roi.left, roi.top, roi.Width() + 1, roi.Height() + 1}).isMixed;
    }
    return m_holdsTwoColors;
}

bool CAutoROIImageViewer::IsRoiDashed() const {
    return Host() && Host()->PicksByHand() && Image().IsAllocated() && HoldsTwoColors();
}

void CAutoROIImageViewer::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    ViewPoint target = ClientPoint(event->position());
    ClientToImage(target, &target);  // beside the image the client coordinates serve as they are
    const ViewRect roi = GetRoi();
    SetRoi(roi.Moved(target.x - (roi.left + roi.right) / 2, target.y - (roi.top + roi.bottom) / 2));
    update();
    if (Host()) Host()->RefreshManualPick();
}
