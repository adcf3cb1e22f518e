#pragma once

class CAutoROIImageViewer;
class CDockableImgPane;
class CImageViewerCtrl;
class CLoggerWnd;
class CQualityWnd;
class CRawColorWnd;
class CSpectrumValuesWnd;
class QDockWidget;
class QMainWindow;

/// The panes of the main window, and the viewers that they stand around.
struct StudioPanes {
    CLoggerWnd& logger;
    CRawColorWnd& rawColors;
    CSpectrumValuesWnd& spectrum;
    CQualityWnd& quality;
    CDockableImgPane& reference;
    CDockableImgPane& calibrated;
    CAutoROIImageViewer& rawViewer;
    CAutoROIImageViewer& referenceViewer;
    CImageViewerCtrl& calibratedViewer;
};

/// Where the panes stand, how wide they are, and what of that is remembered from one run to the next.
class PaneLayout {
public:
    PaneLayout(QMainWindow& window, const StudioPanes& panes) : m_window(window), m_panes(panes) {}

    void Dock();   ///< at their first places, with their first sizes, the log shown and all others hidden
    void Reset();  ///< puts all panes back there
    /// Puts window and panes where they were when Save last wrote it, on a screen of today.
    /// @return false, nothing changed, where nothing was written yet
    bool Restore();
    /// Once the window is shown: panes that float and came before it have their place behind it.
    void RestoreFloating();
    void Save() const;

    // By the number of the command that shows and hides the pane.
    QDockWidget* PaneOf(int id) const;  ///< null for another number
    void Show(int id);                  ///< in front of its tabs
    void Toggle(int id);

    /// The window has another size. @param grown by so many pixels of width
    void FollowSize(int grown);

private:
    void RestorePanes();
    void KeepLeastWidths();
    void GiveRoomBack(int grown);

    QMainWindow& m_window;
    StudioPanes m_panes;
};
