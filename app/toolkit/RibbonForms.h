#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <vector>

/// How much room a panel takes.
enum class RibbonForm : std::size_t {
    Full,     ///< as its layout says
    Compact,  ///< large buttons become small ones, sliders short
    Button    ///< one button that drops the panel down
};

inline constexpr std::size_t kRibbonForms = 3;

/// Pixels that a panel takes, by form.
using RibbonPanelWidths = std::array<int, kRibbonForms>;

/// One step of making room: a panel takes a smaller form.
struct RibbonShrinkStep {
    std::size_t panel;
    RibbonForm form;
};

/// Takes the steps in their order until all panels fit side by side. A step that saves nothing is passed over.
/// @param available pixels for all panels together
/// @return a form for each panel; where not even all steps make enough room, those after the last one
std::vector<RibbonForm> ChooseRibbonForms(std::span<const RibbonPanelWidths> panels,
                                          std::span<const RibbonShrinkStep> steps, int available);
