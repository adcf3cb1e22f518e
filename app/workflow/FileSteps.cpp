#include "app/workflow/FileSteps.h"

#include <filesystem>

#include "app/StringTable.h"
#include "app/toolkit/Profile.h"
#include "app/toolkit/Prompts.h"
#include "app/workflow/StudioFiles.h"
#include "calibration/illuminants.h"

using namespace tonewright;

using namespace studio_files;

namespace {

// Somewhere behind the first character, in just these letters: "a.bmp.txt" counts, deliberately (C14).
bool holds(const QString& path, const char* text) { return path.indexOf(QLatin1String(text)) > 0; }

bool isPicture(const QString& path) { return holds(path, ".bmp") || holds(path, ".tif") || holds(path, ".zvk"); }

}  // namespace

bool FileSteps::LoadParameterFile(const QString& path) {
    if (!m_work.engine.Load(path.toStdString())) {
        m_work.news.LogLastError(LogError);
        m_parameters.ShowGamma();  // a file that breaks off has replaced what came before its end
        return false;
    }
    m_calibration.NoteFit();
    m_parameters.SyncControlsFromEngine();
    NoteParameterFile(path);
    return true;
}

void FileSteps::NoteParameterFile(const QString& path) {
    m_parameterFile = QString::fromStdString(std::filesystem::path(path.toStdString()).filename().string());
    m_inFile = TakeInputs(m_work);
}

QString FileSteps::GetTitle() const {
    if (m_parameterFile.isEmpty()) return kStudioTitle;
    const bool isSaved = !HaveOtherParameters(m_inFile, TakeInputs(m_work));
    return m_parameterFile + (isSaved ? " - " : "* - ") + kStudioTitle;
}

void FileSteps::OpenDroppedFile(const QString& path) {
    if (isPicture(path)) {
        m_pictures.LoadImageFile(path);
    } else if (holds(path, ".twkp")) {
        LoadParameterFile(path);
    } else if (holds(path, ".csv") && m_work.engine.GetIlluminant() == kUserIlluminant) {
        m_work.values.LoadValuesFrom(path);
    } else {
        m_work.news.Log("File signature not recognized.", LogWarning);
    }
}

void FileSteps::OpenStartFile(const QString& path) {
    if (path.endsWith(QLatin1String(".ccor"))) {
        LoadCoefficientFile(path);
    } else if (isPicture(path)) {
        if (!m_pictures.LoadImageFile(path))
            m_work.news.Log(QString("%1 is no picture that can be opened").arg(path), LogError);
    } else {
        OpenDroppedFile(path);
    }
}

void FileSteps::OnLoadParameters() {
    const auto choice = GetPrompts().OpenFile(
        {GetProfile().ReadString(kParameterSection, kName, DefaultPath(m_work.baseDir, kParameters, "*.twkp")),
         kParameterFilters,
         1,
         {}});
    if (!choice || !LoadParameterFile(choice->path)) return;
    GetProfile().WriteString(kParameterSection, kName, choice->path);
    m_work.previewActive = false;
}

// Parameters and coefficients are saved only after a fit that succeeded.
// A save that fails is silent, deliberately (C23).
void FileSteps::OnSaveParameters() {
    if (!m_calibration.CalibrateForSaving()) return;
    const auto choice = GetPrompts().SaveFile(
        {GetProfile().ReadString(kParameterSection, kName, DefaultPath(m_work.baseDir, kParameters, "*.twkp")),
         kParameterFilters, 1, "twkp"});
    if (!choice || !m_work.engine.Save(choice->path.toStdString())) return;
    NoteParameterFile(choice->path);
    GetProfile().WriteString(kParameterSection, kName, choice->path);
}

void FileSteps::OnLoadCoefficients() {
    const auto choice = GetPrompts().OpenFile(
        {GetProfile().ReadString(kCoefficientSection, kName, DefaultPath(m_work.baseDir, kColorCorrection, "*.ccor")),
         kCoefficientFilters,
         1,
         {}});
    if (choice) LoadCoefficientFile(choice->path);
}

void FileSteps::LoadCoefficientFile(const QString& path) {
    if (!m_work.engine.LoadXForm(path.toStdString())) {
        m_work.news.Log(QString("%1 (%2)").arg(QString::fromStdString(CTivManager::GetLastErrorString()), path),
                        LogError);
        return;
    }
    m_work.news.Log(QString("%1 was loaded successfully").arg(path), LogInformation);
    m_work.coefficientFile = path;
    GetProfile().WriteString(kCoefficientSection, kName, path);
}

void FileSteps::OnSaveCoefficients() {
    if (!m_calibration.CalibrateForSaving()) return;
    const auto choice = GetPrompts().SaveFile(
        {GetProfile().ReadString(kCoefficientSection, kName, DefaultPath(m_work.baseDir, kColorCorrection, "*.ccor")),
         kCoefficientFilters, 1, "ccor"});
    if (!choice) return;
    if (!m_work.engine.SaveXForm(choice->path.toStdString(), false)) {
        m_work.news.LogLastError(LogError);
        return;
    }
    m_work.coefficientFile = choice->path;
    GetProfile().WriteString(kCoefficientSection, kName, choice->path);
}
