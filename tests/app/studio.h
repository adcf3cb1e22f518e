#pragma once

#include <QCoreApplication>
#include <QLabel>
#include <QTableWidget>
#include <memory>

#include "app/CMainFrame.h"
#include "app/panes/CLoggerWnd.h"
#include "app/panes/CRawColorWnd.h"
#include "app/panes/CSpectrumValuesWnd.h"
#include "app/toolkit/RibbonBar.h"
#include "app/view/CAutoROIImageViewer.h"
#include "app/view/CDockableImgPane.h"
#include "app/workflow/Workflow.h"
#include "tests/app/studio_ground.h"

/// The main window, and its parts by the names and numbers that they bear on the screen.
class StudioFrame : public CMainFrame {
public:
    RibbonBar& Ribbon() { return *findChild<RibbonBar*>(); }
    CLoggerWnd& Logger() { return *findChild<CLoggerWnd*>(); }
    CRawColorWnd& RawColorPane() { return *findChild<CRawColorWnd*>(); }
    CSpectrumValuesWnd& SpectrumPane() { return *findChild<CSpectrumValuesWnd*>(); }
    CDockableImgPane& ReferencePane() { return *findChild<CDockableImgPane*>("109"); }
    CDockableImgPane& CalibratedPane() { return *findChild<CDockableImgPane*>("110"); }
    CAutoROIImageViewer& RawViewer() { return *findChild<CAutoROIImageViewer*>("Raw Image"); }
    CAutoROIImageViewer& ReferenceViewer() { return *findChild<CAutoROIImageViewer*>("Reference Image"); }
    CImageViewerCtrl& CalibratedViewer() { return *findChild<CImageViewerCtrl*>("Calibrated Image"); }
    QLabel* StatusPane(int id) const { return findChild<QLabel*>(QString::number(id)); }
};

/// The real main window on the offscreen platform.
class Studio : public StudioGround {
protected:
    Studio() { Start(); }

    void Start() {
        frame.reset();
        frame = std::make_unique<StudioFrame>();
        ASSERT_TRUE(frame->OnCreate());
    }
    void Run(int id) { frame->RunCommand(id); }
    bool IsEnabled(int id) const {
        frame->UpdateCommands();
        return frame->GetAction(id)->isEnabled();
    }

    Rows Log() const {
        Rows rows;
        const QTableWidget& list = frame->Logger().List();
        for (int row = 0; row < list.rowCount(); ++row) {
            const QString text = list.item(row, CLoggerWnd::ColumnMessage)->text();
            rows.push_back({text.toStdString(), list.item(row, CLoggerWnd::ColumnType)->data(Qt::UserRole).toInt()});
        }
        return rows;
    }

    void LoadChart(int patch = 40, int rows = 4) {
        prompts.path = WriteChart("chart.bmp", patch, rows);
        Run(ID_BTN_ACQ_LOAD_RAW_IMAGE);
        prompts.path.clear();
    }
    /// Connects with the first of the simulated servers.
    void Connect(const std::string& ini) {
        SimulateAndChoose(ini);
        Run(ID_BTN_REFRESH_CAMERAS);
    }

    std::unique_ptr<StudioFrame> frame;
};
