#pragma once

#include <QString>
#include <optional>
#include <string>

#include "app/workflow/CalibrationSteps.h"
#include "app/workflow/PictureSteps.h"
#include "app/workflow/WorkflowContext.h"

/// The device: choosing it, grabbing from it, coefficients to it and back.
class DeviceSteps {
public:
    DeviceSteps(WorkflowContext& work, PictureSteps& pictures, CalibrationSteps& calibration)
        : m_work(work), m_pictures(pictures), m_calibration(calibration) {}

    void OnConfigure();
    void OnSnap();
    void OnUploadCoefficients();
    void OnBackupCoefficients();
    void OnSendCoefficients();
    void OnReadCoefficients();

private:
    std::optional<std::string> BeginTransfer();
    QString PrepareUpload(std::string& path);
    void SaveDeviceCoefficients(const char* defaultName, const QString& success);

    WorkflowContext& m_work;
    PictureSteps& m_pictures;
    CalibrationSteps& m_calibration;
};
