#pragma once

#include <functional>

#include "acquisition/zvn/CAcqConfigDlg.h"
#include "acquisition/zvn/ZvnTransfer.h"

/// The modal dialog that waits for a transfer and lets the user abort it. It waits as much longer as the source gathers
/// light for a frame.
class CAbortDlg {
public:
    /// Waits until `transfer.Wait` is true, at most `timeoutMs`, keeping the window alive where there is one.
    /// @return whether the transfer ended by itself
    using WaitFor = std::function<bool(void* parentWindow, ZvnTransfer& transfer, int timeoutMs)>;
    /// Sets what DoModal waits with from now on; unset, it waits and cannot be aborted.
    static void SetWaitFor(WaitFor waitFor);

    CAbortDlg(void* parentWindow, ZvnTransfer& transfer, int timeoutMs);
    int DoModal();  ///< a ZvnDialogAnswer; OK: the transfer ended by itself

private:
    void* parentWindow_;
    ZvnTransfer& transfer_;
    int timeoutMs_;
};
