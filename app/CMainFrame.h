#pragma once

#include <QMainWindow>
#include <QString>
#include <map>
#include <memory>
#include <string>

#include "app/StudioState.h"
#include "app/toolkit/Clock.h"
#include "app/view/CDemoImageViewerComm.h"
#include "app/view/ViewerHost.h"

class CAutoROIImageViewer;
class CDockableImgPane;
class CImageViewerCtrl;
class CLoggerWnd;
class CRawColorWnd;
class CSpectrumValuesWnd;
class CTonewrightAcq;
class QAction;
class QLabel;
class RibbonBar;

/// The main window. It owns all that is on the screen and the session with the acquisition library, and runs every
/// command: each handler drives the session, the engine, the viewers and the list panes, and passes the words of a
/// failure to the log. There is no document: window and engine hold the state. Main thread only.
class CMainFrame : public QMainWindow, public CDemoImageViewerComm, public ViewerHost {
    Q_OBJECT
public:
    CMainFrame();
    ~CMainFrame() override;

    /// Builds ribbon, status bar, viewers and panes. Once, before the window is shown.
    /// @return false where a part that the window can't do without could not be made
    bool OnCreate();

    /// Puts window and panes where they were when SaveLayout last wrote it, on a screen of today.
    /// @return false, nothing changed, where nothing was written yet
    bool RestoreLayout();
    void SaveLayout() const;
    /// Dresses the program as the user last chose.
    static void RestoreChrome();

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

    /// Runs a command if its rule allows it now, and brings the state of all commands up to date. What a command throws
    /// is logged as an error.
    void RunCommand(int id);
    StudioState GetState() const;
    /// Brings every action to what its rules say.
    void UpdateCommands();
    QAction* GetAction(int id) const;  ///< null for an unknown number

    /// Takes a file as a drop does: by what its path holds.
    void OpenDroppedFile(const QString& path);
    void LogMessage(const QString& text, int type);
    /// Logs the exception that is being handled as an error.
    void LogException();

    // What the commands do, in the order of the command table. None asks whether it may run: RunCommand does.
    void OnLoadImage();
    void OnLoadRawImage();
    void OnLoadReferenceImage();
    void OnSaveImage();
    void OnConfigure();
    void OnSnap();
    void OnBackupCoefficients();
    void OnLoadCoefficients();
    void OnSaveCoefficients();
    void OnCalibratePreview();
    void OnUploadCoefficients();
    void OnLoadParameters();
    void OnSaveParameters();
    void OnResetParameters();
    void OnGammaEdit();
    void OnGammaSlider();
    void OnSaturationMode(int id);
    void OnSaturationEdit(int id);
    void OnSaturationSlider(int id);
    void OnAbsolute();
    void OnRelative();
    void OnIlluminantType();
    void OnIlluminant(int id);
    void OnColorsAutomatic();
    void OnColorsManual();
    void OnViewCommand(int id);
    void OnClearLog();
    void OnTogglePane(int id);
    void OnAddColor();
    void OnRemoveLastColor();
    void OnRemoveColor();
    void OnClearColors();
    void OnExit();
    void OnAbout();
    void OnHelp();
    void OnContextHelp();
    void OnResetLayout();
    void OnChrome(int id);
    void OnSelectViewer(int id);

    // The parts, for whoever watches the window.
    RibbonBar& Ribbon() { return *m_ribbon; }
    CLoggerWnd& Logger() { return *m_logger; }
    CRawColorWnd& RawColorPane() { return *m_rawColorWnd; }
    CSpectrumValuesWnd& SpectrumPane() { return *m_spectrumWnd; }
    CDockableImgPane& ReferencePane() { return *m_refPane; }
    CDockableImgPane& CalibratedPane() { return *m_calibPane; }
    CAutoROIImageViewer& RawViewer() { return *m_rawViewer; }
    CAutoROIImageViewer& ReferenceViewer() { return *m_refViewer; }
    CImageViewerCtrl& CalibratedViewer() { return *m_calibViewer; }
    QLabel* StatusPane(int id) const;  ///< null for an unknown number
    const QString& CoefficientFile() const { return m_coefficientFile; }
    bool IsPreviewActive() const { return m_previewActive; }
    bool AreColorsManual() const { return m_manualColors; }

protected:
    void resizeEvent(QResizeEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    // Construction (CMainFrame.cpp, frame_panes.cpp, frame_status.cpp, frame_commands.cpp).
    void CreateActions();
    void CreateRibbon();
    void CreateStatusBar();
    bool CreatePanes();
    void DockPanes();
    QDockWidget* PaneOf(int id) const;
    void ShowPane(QDockWidget& pane);
    void SetStatus(int id, const QString& text);

    // Steps that several commands share (workflow_*.cpp).
    void ResetForNewImage();
    bool LoadImageFile(const QString& path);
    bool LoadParameterFile(const QString& path);
    void SyncControlsFromEngine();
    void PushColorsToEngine();
    bool CalibrateAndExecute();
    bool CalibrateForSaving();
    QString WhyChartIsIncomplete() const;
    QString PrepareUpload(std::string& path);
    void SelectViewer(CImageViewerCtrl& viewer);
    void ApplyGamma(int hundredths);
    void ApplySaturation(int id, int value);
    void UsePredefinedIlluminant();
    bool MayPickByHand();
    static void FitIfLarger(CImageViewerCtrl& viewer);
    void RerunPreview();
    void LogLastError(int type);

    // Declared in this order so that the members go in the reverse one: the viewers before their panes, the session
    // and its thread last.
    Clock m_clock;
    QString m_baseDir;
    std::unique_ptr<CTonewrightAcq> m_acq;
    std::unique_ptr<CLoggerWnd> m_logger;
    std::map<int, QAction*> m_actions;
    std::unique_ptr<RibbonBar> m_ribbon;
    std::map<int, QLabel*> m_statusPanes;
    std::unique_ptr<CSpectrumValuesWnd> m_spectrumWnd;
    std::unique_ptr<CRawColorWnd> m_rawColorWnd;
    std::unique_ptr<CDockableImgPane> m_refPane;
    std::unique_ptr<CDockableImgPane> m_calibPane;
    std::unique_ptr<CAutoROIImageViewer> m_rawViewer;
    std::unique_ptr<CAutoROIImageViewer> m_refViewer;
    std::unique_ptr<CImageViewerCtrl> m_calibViewer;
    int m_deviceKind = DeviceKindNone;
    bool m_manualColors = false;   ///< colors are picked by hand
    bool m_previewActive = false;  ///< the calibrated viewer follows the parameters
    QString m_coefficientFile;     ///< the coefficients that the user loaded or saved last; empty after a new fit
};
