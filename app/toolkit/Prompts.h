#pragma once

#include <QString>
#include <optional>

class QWidget;

/// What a file dialog is asked with. Filters are pairs "name|pattern|", closed by a further "|", as in
/// "BMP Files (*.bmp)|*.bmp|TIFF Files (*.tif)|*.tif||".
struct FileRequest {
    QString startPath;  ///< a directory plus a name or a pattern
    QString filters;
    int filterIndex = 1;       ///< from 1
    QString defaultExtension;  ///< without a dot; appended on saving to a name that has none
    QString title = {};        ///< of the dialog; empty: "Open" or "Save As"
};

struct FileChoice {
    QString path;
    int filterIndex = 1;  ///< from 1
};

/// Everything that stops and asks a person. The application shows dialogs; tests answer by themselves.
class Prompts {
public:
    virtual ~Prompts() = default;

    /// Opens an existing file. @return nothing on cancel
    virtual std::optional<FileChoice> OpenFile(const FileRequest& request) = 0;
    /// Names a file to write, asking before an existing one is overwritten. @return nothing on cancel
    virtual std::optional<FileChoice> SaveFile(const FileRequest& request) = 0;
    /// A question with Yes and No.
    virtual bool AskYesNo(const QString& caption, const QString& text) = 0;
    /// A message with OK only.
    virtual void ShowWarning(const QString& caption, const QString& text) = 0;
    virtual void ShowError(const QString& caption, const QString& text) = 0;
    /// Edits the chart's size in patches. @return false on cancel, both left alone
    virtual bool EditMatrixSize(int& width, int& height) = 0;
};

/// The prompts in force for the whole program; the application sets them once, a test sets its own.
Prompts& GetPrompts();
/// @param prompts not owned; null puts the dialogs back in force
void SetPrompts(Prompts* prompts);
