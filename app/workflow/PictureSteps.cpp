#include "app/workflow/PictureSteps.h"

#include <filesystem>
#include <system_error>

#include "app/StringTable.h"
#include "app/toolkit/Profile.h"
#include "app/toolkit/Prompts.h"
#include "app/toolkit/WaitCursor.h"
#include "app/workflow/StatusTexts.h"
#include "app/workflow/StudioFiles.h"
#include "foundation/record_length.h"
#include "imagefile/CTivImageFileFormat.h"

using namespace tonewright;

using namespace studio_files;

PictureView* PictureSteps::GetSelectedViewer() {
    for (PictureView* viewer : {&m_work.raw, &m_work.reference, &m_work.calibrated}) {
        if (viewer->IsSelected()) return viewer;
    }
    m_work.news.Log("No image viewer is currently being selected.", LogWarning);
    return nullptr;
}

void PictureSteps::DeselectAllViewers() {
    for (PictureView* viewer : {&m_work.raw, &m_work.reference, &m_work.calibrated}) viewer->SetSelected(0);
}

void PictureSteps::SelectViewer(PictureView& viewer) {
    DeselectAllViewers();
    viewer.SetSelected(1);
}

void PictureSteps::ResetForNewImage() {
    for (PictureView* viewer : {GetSelectedViewer(), &m_work.calibrated}) {
        if (!viewer) continue;
        viewer->ResetView();
        viewer->ClearOverlays();
        viewer->Image().SetRoi({});  // a measurement leaves it on a patch
        viewer->Image().Clear();
        viewer->SetFileName({});
    }
    m_work.previewActive = false;
    m_work.news.SetStatus(string_id::kBufferInformation, status_texts::BufferAfterReset());
    m_work.news.SetStatus(string_id::kPixelData, status_texts::PixelNotAvailable());
}

// Every loaded image passes through the session's buffer slot, with or without a device. A load that fails is silent,
// deliberately (C23).
bool PictureSteps::LoadImageFile(const QString& path) {
    const WaitCursor wait;
    CTivImage& buffer = *m_work.session->GetImage(-1);
    buffer.SetRoi({});
    // Declared pixels that never came would be paid for by the view's copy.
    if (!CheckImageFileLength(path.toStdString()).empty()) return false;
    if (!buffer.Load(path.toStdString(), true)) return false;
    PictureView* const viewer = GetSelectedViewer();
    if (!viewer) return false;
    ResetForNewImage();
    ++m_work.pictures;
    viewer->SetFileName(QString::fromStdString(std::filesystem::path(path.toStdString()).filename().string()));
    viewer->SetImage(&buffer, true);
    m_work.news.SetStatus(
        string_id::kBufferInformation,
        status_texts::Buffer(buffer.GetWidth(), buffer.GetHeight(), CTivData::GetFormatBits(buffer.GetFormat()),
                             CTivData::GetFormatName(buffer.GetFormat()), m_work.session->GetBufferCount()));
    viewer->FitIfLarger();
    viewer->SetAutoDetect(!m_work.manualColors);
    m_work.lists.ClearSide(viewer == &m_work.raw);
    return true;
}

void PictureSteps::OnLoadImage() {
    const PictureView* const viewer = GetSelectedViewer();
    if (viewer == &m_work.calibrated) {
        m_work.news.Log("Acces denied. Impossible to load image in calibrated image window.", LogWarning);
        return;
    }
    const QString title = viewer == &m_work.raw ? "Open Raw Image" : viewer ? "Open Reference Image" : QString();
    const auto choice = GetPrompts().OpenFile(
        {GetProfile().ReadString(kImageSection, kLoadName, DefaultPath(m_work.baseDir, kImages, "*.bmp")),
         kOpenImageFilters,
         GetProfile().ReadInt(kImageSection, kLoadType, 1),
         {},
         title});
    if (!choice || !LoadImageFile(choice->path)) return;
    GetProfile().WriteString(kImageSection, kLoadName, choice->path);
    GetProfile().WriteInt(kImageSection, kLoadType, choice->filterIndex);
}

void PictureSteps::OnLoadRawImage() {
    SelectViewer(m_work.raw);
    OnLoadImage();
}

void PictureSteps::OnLoadReferenceImage() {
    SelectViewer(m_work.reference);
    OnLoadImage();
}

// The dialog asked about the name that was typed; the image may get an extension behind it.
bool PictureSteps::MayReplace(const FileChoice& choice) const {
    const std::string typed = choice.path.toStdString();
    const std::string written = GetSavedImageName(typed, SaveFormatOfFilter(choice.filterIndex));
    std::error_code unknown;
    if (written == typed || !std::filesystem::exists(written, unknown)) return true;
    return GetPrompts().AskYesNo(
        "Save As", QString("%1 already exists.\nDo you want to replace it?").arg(QString::fromStdString(written)));
}

// A save that fails is silent, deliberately (C23).
void PictureSteps::OnSaveImage() {
    const auto choice = GetPrompts().SaveFile(
        {GetProfile().ReadString(kImageSection, kSaveName, DefaultPath(m_work.baseDir, kImages, "*.bmp")),
         kSaveImageFilters,
         GetProfile().ReadInt(kImageSection, kSaveType, 1),
         {}});
    if (!choice || !MayReplace(*choice)) return;
    CTivImage copy(m_work.calibrated.Image());
    copy.SetRoi({});
    if (!copy.Save(choice->path.toStdString(), SaveFormatOfFilter(choice->filterIndex))) return;
    GetProfile().WriteString(kImageSection, kSaveName, choice->path);
    GetProfile().WriteInt(kImageSection, kSaveType, choice->filterIndex);
}

void PictureSteps::OnFrameReady(int) {
    ++m_work.pictures;
    m_work.raw.SetFileName({});
    m_work.raw.SetImage(m_work.session->GetImage(-1), false);
}
