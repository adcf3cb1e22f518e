#pragma once

#include <QString>
#include <array>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>

#include "app/workflow/RawColorLists.h"
#include "app/workflow/UserValues.h"
#include "chart/PatchDetector.h"

/// What undo brings back.
struct EditState {
    float gamma = 0;
    int saturationMode = 0;
    std::uint32_t saturation = 0;             ///< the engine's packed value in manual mode, else 0
    std::array<int, 3> saturationControls{};  ///< what the controls of red, green and blue show
    std::shared_ptr<const RawColorLists> colors;
    std::shared_ptr<const UserValueTexts> values;
    ChartSize chart;  ///< goes with the values
};

/// The parts of a state, as bits.
enum EditPart : unsigned { kGammaPart = 1, kSaturationPart = 2, kColorsPart = 4, kValuesPart = 8 };

/// One edit: which parts it changed, and what they were before and after it.
struct EditStep {
    unsigned parts = 0;
    EditState before, after;
};

/// The edits that can be taken back, and those that were. Bounded: the oldest go first.
class EditHistory {
public:
    static constexpr std::size_t kMostSteps = 20;

    /// A new edit; what was taken back can't be repeated from then on.
    void Push(EditStep step);
    /// Lets the last edit end in another state. Only where there is one.
    void Extend(unsigned parts, const EditState& after);
    /// The edit to take back, to be repeated from then on. Nothing where there is none.
    std::optional<EditStep> Undo();
    std::optional<EditStep> Redo();
    void Clear();

    unsigned NextUndo() const { return m_done.empty() ? 0 : m_done.back().parts; }  ///< its parts; 0: none
    unsigned NextRedo() const { return m_undone.empty() ? 0 : m_undone.back().parts; }

private:
    std::deque<EditStep> m_done;
    std::deque<EditStep> m_undone;
};

/// "gamma", "saturation", "colors", "user's values", with commas between them.
QString GetEditPartNames(unsigned parts);
