#include "app/workflow/ReportSteps.h"

#include <QDateTime>
#include <string>

#include "app/toolkit/Profile.h"
#include "app/toolkit/Prompts.h"
#include "app/toolkit/WaitCursor.h"
#include "app/workflow/StudioFiles.h"
#include "foundation/SafeFile.h"
#include "foundation/version.h"
#include "report/calibration_report.h"

using namespace tonewright;

using namespace studio_files;

namespace {

constexpr const char* kSection = "ReportFile";
constexpr const char* kFilters = "Reports (*.html)|*.html|PDF Documents (*.pdf)|*.pdf||";

}  // namespace

std::optional<Report> ReportSteps::Take() const {
    const bool isVerification = m_verify.GetReport().has_value();
    std::optional<Report> report = isVerification ? m_verify.GetReport() : m_quality.GetReport();
    if (!report) return report;
    const QString& reason = isVerification ? m_verify.WhyOutOfDate() : m_quality.WhyOutOfDate();
    if (!isVerification) report->title = "Calibration report";
    if (!reason.isEmpty()) report->subtitle = ("Out of date when it was saved: " + reason + ".").toStdString();
    report->settings.push_back({"Date", QDateTime::currentDateTime().toString("yyyy-MM-dd HH:mm").toStdString()});
    report->settings.push_back({"Made by", std::string("Tonewright Studio ") + GetTonewrightVersion()});
    return report;
}

void ReportSteps::OnSaveReport() {
    m_quality.CatchUp();
    std::optional<Report> report = Take();
    if (!report) return;
    const auto choice = GetPrompts().SaveFile({GetProfile().ReadString(kSection, kSaveName, "report.html"), kFilters,
                                               GetProfile().ReadInt(kSection, kSaveType, 1), "html"});
    if (!choice) return;
    const WaitCursor wait;
    CTivImage picture;
    if (m_verify.GetReport()) {
        picture = m_verify.GetPicture();
    } else if (m_quality.IsPictureStillThere()) {
        picture = ReportPicture(m_work.raw.Image());
    }
    if (picture.IsAllocated()) report->picture = &picture;
    const bool isPdf = choice->path.endsWith(".pdf", Qt::CaseInsensitive);
    const std::string content = isPdf ? m_work.makePdf(*report) : HtmlReport(*report);
    SafeOutputFile file(choice->path.toStdString());
    if (file.IsOpen()) file.Stream() << content;
    if (content.empty() || !file.IsOpen() || !file.Commit()) {
        m_work.news.Log("Save Report: cannot write " + choice->path, LogError);
        return;
    }
    GetProfile().WriteString(kSection, kSaveName, choice->path);
    GetProfile().WriteInt(kSection, kSaveType, isPdf ? 2 : 1);
    m_work.news.Log("Report saved to " + choice->path, LogInformation);
}
