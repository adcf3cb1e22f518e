#pragma once

#include <QString>

#include "acquisition/CTonewrightAcq.h"
#include "app/workflow/ColorLists.h"
#include "app/workflow/ParameterControls.h"
#include "app/workflow/PictureView.h"
#include "app/workflow/UserValues.h"
#include "app/workflow/WorkflowNews.h"
#include "calibration/CTivTonewrightDC.h"

/// What the steps work with. None of it is owned; all of it outlives them.
struct WorkflowParts {
    CTivTonewrightDC& engine;
    CTonewrightAcq* session;  ///< null where it could not be made: then the window closes before a step runs
    PictureView& raw;
    PictureView& reference;
    PictureView& calibrated;
    ColorLists& lists;
    UserValues& values;
    ParameterControls& controls;
    QString baseDir;  ///< where the file dialogs start; may be empty
};

/// What the steps remember from one to the next; the rest stands in the engine.
struct WorkflowState {
    int deviceKind = DeviceKindNone;
    bool manualColors = false;   ///< colors are picked by hand
    int pictures = 0;            ///< how many pictures of a chart have come so far
    bool previewActive = false;  ///< the calibrated picture follows the parameters
    QString coefficientFile;     ///< the coefficients that the user loaded or saved last; empty after a new fit
};

/// What all steps share.
struct WorkflowContext : WorkflowParts, WorkflowState {
    explicit WorkflowContext(const WorkflowParts& parts) : WorkflowParts(parts) {}
    WorkflowNews news;
};
