#pragma once

#include <QMainWindow>
#include <QString>
#include <deque>
#include <functional>
#include <map>
#include <memory>

#include "app/PaneLayout.h"
#include "app/StudioState.h"
#include "app/StudioStatus.h"
#include "app/toolkit/Clock.h"
#include "app/view/CDemoImageViewerComm.h"
#include "app/view/ViewerHost.h"

class CAutoROIImageViewer;
class CCompareViewer;
class CDockableImgPane;
class CImageViewerCtrl;
class CLoggerWnd;
class CQualityWnd;
class CRawColorWnd;
class CSpectrumValuesWnd;
class CTonewrightAcq;
class QAction;
class QualityFollower;
class RibbonBar;
class RibbonControls;
class Workflow;

/// The main window. It owns all that is on the screen and the session with the acquisition library, brings each command
/// to the step of the workflow behind it, and shows what the steps tell. There is no document: workflow and engine hold
/// the state. Main thread only.
class CMainFrame : public QMainWindow, public CDemoImageViewerComm, public ViewerHost {
    Q_OBJECT
public:
    CMainFrame();
    ~CMainFrame() override;

    /// Builds ribbon, status bar, viewers and panes. Once, before the window is shown.
    /// @return false where a part that the window can't do without could not be made
    bool OnCreate();

    /// The viewer whose selected flag is set. @return null, with a warning in the log, where there is none
    CImageViewerCtrl* GetSelectedViewer();
    /// The picture of a buffer has come: the raw viewer shows the session's current image, its view kept.
    /// @param index plays no part
    void OnFrameReady(int index);

    // CDemoImageViewerComm and ViewerHost: called by the viewers.
    void OnPixel(long x, long y, CTivData value) override;
    void OnRoiChanged(ViewRect roi) override;
    void OnZoomChanged(float zoom) override;
    void DeselectAllViewers() override;
    void RefreshManualPick() override;
    bool PicksByHand() const override;

    /// Runs a command if its rule allows it now, and brings the state of all commands up to date. What a command throws
    /// is logged as an error. One that comes while another waits for its device or its dialog runs after that one.
    void RunCommand(int id);
    StudioState GetState() const;
    /// Brings every action to what its rules say.
    void UpdateCommands();
    QAction* GetAction(int id) const;  ///< null for an unknown number
    /// The steps behind the commands. A pane that follows the work connects to its news.
    Workflow& GetWorkflow() { return *m_workflow; }
    PaneLayout& GetPanes() { return *m_panes; }

    /// Takes a file as a drop does: by what its path holds.
    void OpenDroppedFile(const QString& path);
    void LogMessage(const QString& text, int type);
    /// Logs the exception that is being handled as an error.
    void LogException();

    // The commands of the window itself. None asks whether it may run: RunCommand does.
    void OnViewCommand(int id);
    void OnClearLog();
    void OnExit();
    void OnAbout();
    void OnHelp();
    void OnContextHelp();
    void OnSelectViewer(int id);
    void OnCompare();

protected:
    void resizeEvent(QResizeEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // Construction (CMainFrame.cpp, frame_panes.cpp, frame_commands.cpp).
    void CreateActions();
    void CreateRibbon();
    bool CreatePanes();
    void CreateWorkflow();
    void ShowNextPatch(const StudioState& state);
    void ShowChoices();
    void TakeTurn(std::function<void()> step);

    // Declared in this order so that the members go in the reverse one: the workflow first, the viewers before their
    // panes, the session and its thread last.
    Clock m_clock;
    QString m_baseDir;
    std::unique_ptr<CTonewrightAcq> m_acq;
    std::unique_ptr<CLoggerWnd> m_logger;
    std::map<int, QAction*> m_actions;
    std::unique_ptr<RibbonBar> m_ribbon;
    std::unique_ptr<StudioStatus> m_status;
    std::unique_ptr<CSpectrumValuesWnd> m_spectrumWnd;
    std::unique_ptr<CRawColorWnd> m_rawColorWnd;
    std::unique_ptr<CQualityWnd> m_qualityWnd;
    std::unique_ptr<CDockableImgPane> m_refPane;
    std::unique_ptr<CDockableImgPane> m_calibPane;
    std::unique_ptr<CAutoROIImageViewer> m_rawViewer;
    std::unique_ptr<CAutoROIImageViewer> m_refViewer;
    std::unique_ptr<CCompareViewer> m_calibViewer;
    std::unique_ptr<PaneLayout> m_panes;
    std::unique_ptr<RibbonControls> m_controls;
    std::unique_ptr<Workflow> m_workflow;
    std::unique_ptr<QualityFollower> m_qualityFollower;
    std::deque<std::function<void()>> m_turns;  ///< the step that runs, and those that wait for its end
};
