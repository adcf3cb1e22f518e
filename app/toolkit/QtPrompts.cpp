#include "app/toolkit/QtPrompts.h"

#include <QApplication>
#include <QFileDialog>
#include <QHeaderView>
#include <QMessageBox>
#include <QSplitter>
#include <QTreeView>

#include "app/toolkit/CMatrixSizeDialog.h"
#include "app/toolkit/FileFilters.h"

namespace {

QWidget* dialogParent() { return QApplication::activeWindow(); }

constexpr QSize kFileDialog(860, 520);
constexpr int kPlacesWidth = 130;

// Wide enough for whole dates and kinds; the names take what is left. The desktop's own dialog has no such list.
void makeRoom(QFileDialog& dialog) {
    dialog.resize(kFileDialog.expandedTo(dialog.size()));
    if (auto* halves = dialog.findChild<QSplitter*>("splitter")) {
        halves->setSizes({kPlacesWidth, dialog.width() - kPlacesWidth});
    }
    const auto* list = dialog.findChild<QTreeView*>("treeView");
    if (!list) return;
    list->header()->setStretchLastSection(false);
    list->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    list->header()->setSectionResizeMode(0, QHeaderView::Stretch);
}

/// "html" of "Reports (*.html)".
QString extensionOf(const QString& filter) { return filter.section("*.", -1).chopped(1); }

// A name that bears the extension of one kind of file gets that of the other.
void followKind(QFileDialog& dialog, const QStringList& filters) {
    const auto follow = [&dialog, filters](const QString& chosen) {
        const QString extension = extensionOf(chosen);
        dialog.setDefaultSuffix(extension);
        const QString name = dialog.selectedFiles().isEmpty() ? QString() : dialog.selectedFiles().constFirst();
        for (const QString& filter : filters) {
            const QString other = "." + extensionOf(filter);
            if (filter != chosen && name.endsWith(other)) {
                dialog.selectFile(name.section('/', -1).chopped(other.size()) + "." + extension);
            }
        }
    };
    QObject::connect(&dialog, &QFileDialog::filterSelected, &dialog, follow);
    follow(dialog.selectedNameFilter());
}

std::optional<FileChoice> runFileDialog(QFileDialog& dialog, const FileRequest& request) {
    makeRoom(dialog);
    if (!request.title.isEmpty()) dialog.setWindowTitle(request.title);
    const QStringList filters = ParseFileFilters(request.filters);
    dialog.setNameFilters(filters);
    if (const int index = request.filterIndex - 1; index >= 0 && index < filters.size()) {
        dialog.selectNameFilter(filters[index]);
    }
    const DialogStart start = ParseStartPath(request.startPath);
    if (!start.directory.isEmpty()) dialog.setDirectory(start.directory);
    if (!start.fileName.isEmpty()) dialog.selectFile(start.fileName);
    if (!request.defaultExtension.isEmpty() && filters.size() > 1) followKind(dialog, filters);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
    return FileChoice{dialog.selectedFiles().constFirst(),
                      static_cast<int>(filters.indexOf(dialog.selectedNameFilter())) + 1};
}

void showMessage(QMessageBox::Icon icon, const QString& caption, const QString& text) {
    QMessageBox(icon, caption, text, QMessageBox::Ok, dialogParent()).exec();
}

}  // namespace

std::optional<FileChoice> QtPrompts::OpenFile(const FileRequest& request) {
    QFileDialog dialog(dialogParent(), "Open");
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setFileMode(QFileDialog::ExistingFile);
    return runFileDialog(dialog, request);
}

std::optional<FileChoice> QtPrompts::SaveFile(const FileRequest& request) {
    QFileDialog dialog(dialogParent(), "Save As");
    dialog.setAcceptMode(QFileDialog::AcceptSave);  // asks before it names an existing file
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setDefaultSuffix(request.defaultExtension);
    return runFileDialog(dialog, request);
}

bool QtPrompts::AskYesNo(const QString& caption, const QString& text) {
    return QMessageBox::question(dialogParent(), caption, text, QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes) ==
           QMessageBox::Yes;
}

void QtPrompts::ShowWarning(const QString& caption, const QString& text) {
    showMessage(QMessageBox::Warning, caption, text);
}

void QtPrompts::ShowError(const QString& caption, const QString& text) {
    showMessage(QMessageBox::Critical, caption, text);
}

bool QtPrompts::EditMatrixSize(int& width, int& height) {
    CMatrixSizeDialog dialog(width, height, dialogParent());
    if (dialog.exec() != QDialog::Accepted) return false;
    width = dialog.Width();
    height = dialog.Height();
    return true;
}
