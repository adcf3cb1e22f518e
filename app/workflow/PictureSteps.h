#pragma once

#include <QString>

#include "app/toolkit/Prompts.h"
#include "app/workflow/WorkflowContext.h"

/// Pictures: which one is selected, loading and saving them, and what a new one resets.
class PictureSteps {
public:
    explicit PictureSteps(WorkflowContext& work) : m_work(work) {}

    /// The picture whose selected flag is set. @return null, with a warning in the log, where there is none
    PictureView* GetSelectedViewer();
    void DeselectAllViewers();
    void SelectViewer(PictureView& viewer);

    /// Forgets the selected and the calibrated picture and whatever is drawn on them.
    void ResetForNewImage();
    /// Shows an image file in the selected view. @return false, without a word, where it can't be loaded
    bool LoadImageFile(const QString& path);
    /// A frame of the session has come: the raw view shows it, zoom and scroll kept. The index plays no part.
    void OnFrameReady(int index);

    void OnLoadImage();
    void OnLoadRawImage();
    void OnLoadReferenceImage();
    void OnSaveImage();

private:
    bool MayReplace(const FileChoice& choice) const;

    WorkflowContext& m_work;
};
