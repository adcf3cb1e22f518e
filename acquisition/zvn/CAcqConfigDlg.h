#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "acquisition/zvn/ZvnLocation.h"

/// Answers of the modal dialogs.
enum ZvnDialogAnswer : int { kZvnDialogOk = 1, kZvnDialogCancel = 2 };

/// The modal dialog in which the user picks a server and a configuration file. What it looks like is the program's
/// affair: a window, a command line or a test sets what is asked.
class CAcqConfigDlg {
public:
    struct Choice {
        ZvnLocation location;
        std::string configFile;  ///< UTF-8, empty for none
    };
    /// @param inForce the choice to begin with, null for none @return nothing on cancel
    using Ask = std::function<std::optional<Choice>(void* parentWindow, const Choice* inForce)>;
    /// Sets what DoModal asks from now on; unset, it answers cancel.
    static void SetAsk(Ask ask);

    explicit CAcqConfigDlg(void* parentWindow, int reserved = 0);
    void SetInForce(Choice choice) { inForce_ = std::move(choice); }
    int DoModal();  ///< a ZvnDialogAnswer
    const ZvnLocation& GetLocation() const { return choice_.location; }
    /// @param category 1 a frame grabber's configuration, 2 a camera's @return empty for another category
    std::string GetConfigFile(int category) const;

private:
    void* parentWindow_;
    std::optional<Choice> inForce_;
    Choice choice_;
};
