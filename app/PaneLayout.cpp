#include "app/PaneLayout.h"

#include <QGuiApplication>
#include <QLayout>
#include <QMainWindow>
#include <QMargins>
#include <QScreen>
#include <algorithm>

#include "app/CommandIds.h"
#include "app/panes/CLoggerWnd.h"
#include "app/panes/CQualityWnd.h"
#include "app/panes/CRawColorWnd.h"
#include "app/panes/CSpectrumValuesWnd.h"
#include "app/toolkit/Profile.h"
#include "app/toolkit/WindowPlace.h"
#include "app/view/CAutoROIImageViewer.h"
#include "app/view/CDockableImgPane.h"

namespace {

constexpr int kListPaneWidth = 240;
constexpr int kImagePaneWidth = 800;
constexpr int kQualityPaneWidth = 260;
constexpr int kLoggerHeight = 180;
constexpr int kRawViewerWidth = 320;
// A window as wide as this has room for the raw viewer beside an image pane and one column of lists at their least.
constexpr int kRoomForAll = 800;

constexpr const char* kSection = "Window";
constexpr const char* kPlace = "Place";
constexpr const char* kPanes = "Panes";
constexpr int kPanesVersion = 1;  // an arrangement of another version is not read

constexpr QMargins kFrame{8, 36, 8, 8};  // room for the frame that the desktop draws around the window

QList<QRect> screensOfToday() {
    QList<QRect> screens;
    for (const QScreen* screen : QGuiApplication::screens()) screens += screen->availableGeometry() - kFrame;
    return screens;
}

}  // namespace

void PaneLayout::Dock() {
    m_window.addDockWidget(Qt::LeftDockWidgetArea, &m_panes.rawColors);
    // Before it has tabs, or it becomes one.
    m_window.splitDockWidget(&m_panes.rawColors, &m_panes.quality, Qt::Horizontal);
    m_window.tabifyDockWidget(&m_panes.rawColors, &m_panes.spectrum);
    m_window.addDockWidget(Qt::BottomDockWidgetArea, &m_panes.logger);
    m_window.addDockWidget(Qt::RightDockWidgetArea, &m_panes.calibrated);
    m_window.tabifyDockWidget(&m_panes.calibrated, &m_panes.reference);
    m_panes.quality.hide();  // at once, so that the lists beside it get their width alone
    m_window.resizeDocks({&m_panes.rawColors, &m_panes.calibrated}, {kListPaneWidth, kImagePaneWidth}, Qt::Horizontal);
    m_window.resizeDocks({&m_panes.logger}, {kLoggerHeight}, Qt::Vertical);
    for (QDockWidget* pane : std::initializer_list<QDockWidget*>{
             &m_panes.rawColors, &m_panes.spectrum, &m_panes.quality, &m_panes.calibrated, &m_panes.reference}) {
        pane->hide();
    }
    m_panes.logger.show();
    // An image can come to a viewer before its pane is first shown, and is then fitted to the size to come.
    const int ribbon = m_window.menuWidget()->sizeHint().height();
    const QSize viewerSize(kImagePaneWidth, m_window.height() - kLoggerHeight - ribbon);
    m_panes.referenceViewer.resize(viewerSize);
    m_panes.calibratedViewer.resize(viewerSize);
}

void PaneLayout::Reset() {
    for (QDockWidget* pane : m_window.findChildren<QDockWidget*>()) pane->setFloating(false);
    Dock();
}

void PaneLayout::Save() const {
    const bool isMaximised = m_window.isMaximized();
    const QRect normal = isMaximised ? m_window.normalGeometry() : m_window.geometry();
    GetProfile().WriteString(kSection, kPlace, ToText({normal, isMaximised}));
    GetProfile().WriteString(kSection, kPanes, QString::fromLatin1(m_window.saveState(kPanesVersion).toBase64()));
}

bool PaneLayout::Restore() {
    const auto place = WindowPlaceFrom(GetProfile().ReadString(kSection, kPlace, {}));
    if (!place) return false;
    m_window.setGeometry(FitToScreens(place->normal, screensOfToday()));
    if (place->isMaximised) m_window.setWindowState(m_window.windowState() | Qt::WindowMaximized);
    RestorePanes();
    return true;
}

void PaneLayout::RestorePanes() {
    const QString panes = GetProfile().ReadString(kSection, kPanes, {});
    m_window.restoreState(QByteArray::fromBase64(panes.toLatin1()), kPanesVersion);
}

void PaneLayout::RestoreFloating() {
    const auto panes = m_window.findChildren<QDockWidget*>();
    if (std::ranges::any_of(panes, &QDockWidget::isFloating)) RestorePanes();
}

QDockWidget* PaneLayout::PaneOf(int id) const {
    switch (id) {
        case ID_CBTN_LOG:
            return &m_panes.logger;
        case ID_CBTN_RAW_COLOR_LIST:
            return &m_panes.rawColors;
        case ID_CBTN_SPECTRUM_VALUES:
            return &m_panes.spectrum;
        case ID_BTN_QUALITY_PANE:
            return &m_panes.quality;
        case ID_CBTN_REF_IMG_VIEW:
            return &m_panes.reference;
        case ID_CBTN_CALIB_IMG_VIEW:
            return &m_panes.calibrated;
        default:
            return nullptr;
    }
}

// With its size: what is drawn into the pane next is fitted to it.
void PaneLayout::Show(int id) {
    QDockWidget* const pane = PaneOf(id);
    if (!pane) return;
    const bool isNew = pane == &m_panes.quality && pane->isHidden();
    pane->show();
    pane->raise();
    if (isNew && pane->width() < kQualityPaneWidth) m_window.resizeDocks({pane}, {kQualityPaneWidth}, Qt::Horizontal);
    if (m_window.isVisible()) {
        m_window.layout()->activate();
        pane->layout()->activate();
    }
}

void PaneLayout::Toggle(int id) {
    if (PaneOf(id)->isHidden()) {
        Show(id);
    } else {
        PaneOf(id)->hide();
    }
}

void PaneLayout::FollowSize(int grown) {
    KeepLeastWidths();
    GiveRoomBack(grown);
}

// The picture to work on and the lists keep their least widths while there is room, and the image panes give way. In a
// narrow window they must not, or it could not become narrower.
void PaneLayout::KeepLeastWidths() {
    const bool areLists = m_panes.rawColors.isVisible() || m_panes.spectrum.isVisible();
    const bool areSideBySide = areLists && m_panes.quality.isVisible();
    const bool hasRoom = m_window.width() >= kRoomForAll + (areSideBySide ? kListPaneWidth : 0);
    m_panes.rawViewer.setMinimumWidth(hasRoom ? kRawViewerWidth : 0);
    for (QDockWidget* pane :
         std::initializer_list<QDockWidget*>{&m_panes.rawColors, &m_panes.spectrum, &m_panes.quality}) {
        pane->setMinimumWidth(hasRoom ? kListPaneWidth : 0);
    }
}

// An image pane that gave way gets its width back before the raw viewer gets more than its least.
void PaneLayout::GiveRoomBack(int grown) {
    if (grown <= 0 || m_panes.rawViewer.width() - grown > kRawViewerWidth) return;
    for (CDockableImgPane* pane : {&m_panes.calibrated, &m_panes.reference}) {
        const bool isBeside =
            !pane->isFloating() && m_window.dockWidgetArea(pane) & (Qt::LeftDockWidgetArea | Qt::RightDockWidgetArea);
        if (!isBeside || pane->visibleRegion().isEmpty() || pane->width() >= kImagePaneWidth) continue;
        m_window.resizeDocks({pane}, {std::min(kImagePaneWidth, pane->width() + grown)}, Qt::Horizontal);
        return;
    }
}
