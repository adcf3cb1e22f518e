#pragma once

/// Gives the acquisition session its two dialogs: the choice of server, resource and configuration file, and the wait
/// for a frame, which the user can abort.
void InstallAcquisitionDialogs();
