#pragma once

#include <QString>
#include <optional>

#include "app/workflow/CalibrationSteps.h"
#include "app/workflow/EditHistory.h"
#include "app/workflow/ParameterSteps.h"
#include "app/workflow/WorkflowContext.h"

/// Undo and redo of edits: the lists of colors, the user's values, gamma and saturation. A parameter file and a reset
/// replace all of them, and nothing before is brought back. Mode, illuminant and color selection are choices and no
/// edits: they stay as they are.
class UndoSteps {
public:
    UndoSteps(WorkflowContext& work, CalibrationSteps& calibration, ParameterSteps& parameters);

    /// A command begins. The moves of one slider are one edit, until Settle.
    void Begin(int id);
    void Settle() { m_slider = 0; }
    /// What changed since the last call is an edit. Called whenever a command has run or the window has done something.
    void Note();

    void OnUndo();
    void OnRedo();
    bool CanUndo() const { return m_history.NextUndo() != 0; }
    bool CanRedo() const { return m_history.NextRedo() != 0; }
    QString GetUndoName() const { return GetEditPartNames(m_history.NextUndo()); }
    QString GetRedoName() const { return GetEditPartNames(m_history.NextRedo()); }

private:
    EditState Take() const;
    void Bring(unsigned parts, const EditState& state);

    WorkflowContext& m_work;
    CalibrationSteps& m_calibration;
    ParameterSteps& m_parameters;
    EditHistory m_history;
    std::optional<EditState> m_now;  ///< as last noted; none: whatever is there next is where edits begin
    int m_slider = 0;                ///< that is being moved; 0 for none
    bool m_hasMoved = false;         ///< its first move was noted
};
