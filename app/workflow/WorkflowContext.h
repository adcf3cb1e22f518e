#pragma once

#include <QString>
#include <optional>
#include <string>
#include <vector>

#include "acquisition/CTonewrightAcq.h"
#include "app/workflow/CalibrationInputs.h"
#include "app/workflow/ColorLists.h"
#include "app/workflow/ParameterControls.h"
#include "app/workflow/PictureView.h"
#include "app/workflow/UserValues.h"
#include "app/workflow/WorkflowNews.h"
#include "calibration/CTivTonewrightDC.h"
#include "quality/color_spaces.h"
#include "report/html_report.h"

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
    std::string (*makePdf)(
        const tonewright::Report& report);  ///< the report as a file of pages; empty: it can't be made
    QString baseDir;                        ///< where the file dialogs start; may be empty
};

/// The fit that succeeded last: what its transform was made for.
struct LastFit {
    std::vector<tonewright::Xyz> targets;  ///< XYZ under D65, one a patch
    bool isAbsolute = true;
    std::size_t transform = 0;  ///< its checksum
    std::vector<tonewright::ReportRow> settings;
};

/// What the steps remember from one to the next; the rest stands in the engine.
struct WorkflowState {
    int deviceKind = DeviceKindNone;
    bool manualColors = false;   ///< colors are picked by hand
    int pictures = 0;            ///< how many pictures of a chart have come so far
    bool previewActive = false;  ///< the calibrated picture follows the parameters
    std::optional<LastFit> fit;
    QString coefficientFile;  ///< the coefficients that the user loaded or saved last; empty after a new fit
};

/// What all steps share.
struct WorkflowContext : WorkflowParts, WorkflowState {
    explicit WorkflowContext(const WorkflowParts& parts) : WorkflowParts(parts) {}
    WorkflowNews news;
};
