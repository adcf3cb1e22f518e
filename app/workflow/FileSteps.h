#pragma once

#include <QString>

#include "app/workflow/CalibrationSteps.h"
#include "app/workflow/ParameterSteps.h"
#include "app/workflow/PictureSteps.h"
#include "app/workflow/WorkflowContext.h"

/// Parameter files, coefficient files, and what a dropped file is.
class FileSteps {
public:
    FileSteps(WorkflowContext& work, PictureSteps& pictures, CalibrationSteps& calibration, ParameterSteps& parameters)
        : m_work(work), m_pictures(pictures), m_calibration(calibration), m_parameters(parameters) {}

    /// @return false, told in the log
    bool LoadParameterFile(const QString& path);
    /// Takes a file by what its path holds. Unlike the command, a drop also loads into the calibrated view where that
    /// is the selected one.
    void OpenDroppedFile(const QString& path);
    /// Takes the file that the program was started with: as a drop does, and coefficients as their command does. One
    /// that does not open is told in the log: nobody saw it being opened.
    void OpenStartFile(const QString& path);

    /// What the window is called: the program, and before it the parameter file that was loaded or saved last, with a
    /// star where a save would write something else than it holds.
    QString GetTitle() const;

    void OnLoadParameters();
    void OnSaveParameters();
    void OnLoadCoefficients();
    void OnSaveCoefficients();

private:
    void LoadCoefficientFile(const QString& path);
    void NoteParameterFile(const QString& path);

    WorkflowContext& m_work;
    PictureSteps& m_pictures;
    CalibrationSteps& m_calibration;
    ParameterSteps& m_parameters;
    QString m_parameterFile;     ///< its name without folders; empty: none is in play
    CalibrationInputs m_inFile;  ///< what it holds
};
