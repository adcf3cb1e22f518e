#pragma once

#include <QObject>
#include <QString>
#include <cstddef>
#include <optional>
#include <string>

#include "app/workflow/WorkflowContext.h"
#include "foundation/CTivImage.h"
#include "report/html_report.h"

/// Holds the present calibration against another picture of the chart, which no viewer shows. What came of it stands
/// until the user goes back or a preview brings another calibration.
class VerifySteps : public QObject {
    Q_OBJECT
public:
    explicit VerifySteps(WorkflowContext& work);

    bool CanVerify() const { return m_work.fit && m_work.engine.IsCalibrated(); }
    /// What the last verification told. None while there is none on show.
    const std::optional<tonewright::Report>& GetReport() const { return m_report; }
    const CTivImage& GetPicture() const { return m_picture; }  ///< which it was made on
    const QString& WhyOutOfDate() const { return m_outOfDate; }
    /// Holds the calibration that was verified against the present one. Called whenever a command has run.
    void CheckInputs();

    void OnVerify();
    void OnBack();

signals:
    void verified(const tonewright::Report& report, const QString& fileName);
    void outOfDate(const QString& reason);  ///< empty: it is what would come now
    void left();

private:
    void VerifyPicture(const std::string& path, const std::string& name);

    WorkflowContext& m_work;
    std::optional<tonewright::Report> m_report;
    CTivImage m_picture;
    QString m_outOfDate;
    CalibrationInputs m_inputs;
};
