#pragma once

#include <ostream>

#include "app/toolkit/Prompts.h"
#include "app/toolkit/ViewRect.h"

// For the failure texts.
inline void PrintTo(const ViewRect& r, std::ostream* out) {
    *out << "(" << r.left << ", " << r.top << ", " << r.right << ", " << r.bottom << ")";
}
inline void PrintTo(const ViewPoint& p, std::ostream* out) { *out << "(" << p.x << ", " << p.y << ")"; }

/// Cancels whatever is asked, so that no test waits for a person.
class CancellingPrompts : public Prompts {
public:
    std::optional<FileChoice> OpenFile(const FileRequest&) override { return std::nullopt; }
    std::optional<FileChoice> SaveFile(const FileRequest&) override { return std::nullopt; }
    bool AskYesNo(const QString&, const QString&) override { return false; }
    void ShowWarning(const QString&, const QString&) override {}
    void ShowError(const QString&, const QString&) override {}
    bool EditMatrixSize(int&, int&) override { return false; }
};
