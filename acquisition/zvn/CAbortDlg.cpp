#include "acquisition/zvn/CAbortDlg.h"

#include <utility>

namespace {
CAbortDlg::WaitFor waitForInForce;
}

void CAbortDlg::SetWaitFor(WaitFor waitFor) { waitForInForce = std::move(waitFor); }

CAbortDlg::CAbortDlg(void* parentWindow, ZvnTransfer& transfer, int timeoutMs)
    : parentWindow_(parentWindow), transfer_(transfer), timeoutMs_(timeoutMs) {}

int CAbortDlg::DoModal() {
    const int waitMs = timeoutMs_ + transfer_.GetExposureMs();
    const bool ended = waitForInForce ? waitForInForce(parentWindow_, transfer_, waitMs) : transfer_.Wait(waitMs);
    return ended ? kZvnDialogOk : kZvnDialogCancel;
}
