#include "acquisition/zvn/CAcqConfigDlg.h"

#include <utility>

namespace {
CAcqConfigDlg::Ask askInForce;
}  // namespace

void CAcqConfigDlg::SetAsk(Ask ask) { askInForce = std::move(ask); }

CAcqConfigDlg::CAcqConfigDlg(void* parentWindow, int) : parentWindow_(parentWindow) {}

int CAcqConfigDlg::DoModal() {
    auto choice = askInForce ? askInForce(parentWindow_, inForce_ ? &*inForce_ : nullptr) : std::nullopt;
    if (!choice) return kZvnDialogCancel;
    choice_ = std::move(*choice);
    return kZvnDialogOk;
}

std::string CAcqConfigDlg::GetConfigFile(int category) const {
    return category == 1 || category == 2 ? choice_.configFile : std::string();
}
