#pragma once

#include <QString>

/// Where the help is. @param root the value of ZELVANDIR; empty: the default path stays, beside the program
void SetHelpRoot(const QString& root);
QString HelpFilePath();
/// Opens it with the desktop's program for such files. @return false where the file is missing or nothing opens it
bool OpenHelpFile();
