#pragma once

#include "app/toolkit/Prompts.h"

/// The prompts that a person sees: dialogs over the active window.
class QtPrompts : public Prompts {
public:
    std::optional<FileChoice> OpenFile(const FileRequest& request) override;
    std::optional<FileChoice> SaveFile(const FileRequest& request) override;
    bool AskYesNo(const QString& caption, const QString& text) override;
    void ShowWarning(const QString& caption, const QString& text) override;
    void ShowError(const QString& caption, const QString& text) override;
    bool EditMatrixSize(int& width, int& height) override;
};
