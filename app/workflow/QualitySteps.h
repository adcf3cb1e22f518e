#pragma once

#include <QObject>
#include <QString>
#include <QTimer>
#include <optional>
#include <vector>

#include "app/workflow/CalibrationSteps.h"
#include "app/workflow/PictureSteps.h"
#include "app/workflow/WorkflowContext.h"
#include "chart/FoundChart.h"
#include "report/html_report.h"

/// What the calibration that is previewed is worth, and what the raw picture's chart tells by itself. Judged a moment
/// after the work that it follows, so that dragging a slider waits for nothing.
class QualitySteps : public QObject {
    Q_OBJECT
public:
    QualitySteps(WorkflowContext& work, PictureSteps& pictures, CalibrationSteps& calibration);

    /// The figures of the last preview, with a reason where they are out of date. None before the first one.
    const std::optional<tonewright::Report>& GetReport() const { return m_report; }
    const QString& WhyOutOfDate() const { return m_outOfDate; }

    /// Whether the raw viewer still shows the picture of the report.
    bool IsPictureStillThere() const { return m_judgedInputs.pictures == m_work.pictures; }

    void TellAgain();  ///< what was told last
    /// Does now what waits for its moment.
    void CatchUp();
    /// Holds what the last preview was made from against what is in force now. Called whenever a command has run.
    void CheckInputs();

    void OnFindChart();

signals:
    void judged(const tonewright::Report& report);
    /// @param summary how much of the chart was found, and how bright it is; empty: nothing is known of the picture
    void pictureTold(const QString& summary, const std::vector<tonewright::Finding>& findings);
    void outOfDate(const QString& reason);  ///< empty: the figures are those of what is in force

private:
    void Judge();
    void TellPicture();
    tonewright::MeasuredChart Measure() const;
    tonewright::PatchOutlines Outlines(const tonewright::MeasuredChart& chart) const;
    bool ShowsFoundChart() const;
    bool LooksForChart() const;  ///< in the raw picture, by the straight grid

    WorkflowContext& m_work;
    PictureSteps& m_pictures;
    CalibrationSteps& m_calibration;
    QTimer m_moment;
    bool m_wasPreviewed = false;  ///< since the last judgement
    std::optional<tonewright::Report> m_report;
    QString m_outOfDate;
    CalibrationInputs m_judgedInputs;
    tonewright::FoundChart m_found;  ///< what filled the list of raw colors
    int m_foundInPicture = 0;        ///< the number of that picture
    int m_toldPictures = 0;          ///< the number of the picture that was told last
};
