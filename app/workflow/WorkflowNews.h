#pragma once

#include <QObject>
#include <QString>

#include "app/toolkit/LogType.h"

/// What the steps of the work tell. The window shows it; whatever follows the work connects here.
class WorkflowNews : public QObject {
    Q_OBJECT
public:
    void Log(const QString& text, int type) { emit message(text, type); }
    void LogLastError(int type);  ///< in the library's own words
    void SetStatus(int id, const QString& text) { emit statusChanged(id, text); }
    void ShowPane(int id) { emit paneWanted(id); }

signals:
    void message(const QString& text, int type);  ///< words for the log; a LogType
    void statusChanged(int id, const QString& text);
    void statusWanted(int id);  ///< a part of the status bar is to be seen from now on
    void paneWanted(int id);    ///< by the number of the command that shows and hides the pane
    void standsStill();         ///< what was told has to be on the screen now: a step that takes long begins

    void parametersReplaced();  ///< all parameters, by those of a file or of a reset

    void detected();   ///< the patches were looked for anew in every picture of a chart
    void previewed();  ///< the calibrated picture shows the raw one through the transform that the engine has now
};
