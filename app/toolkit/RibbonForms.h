#pragma once

#include <array>
#include <cstddef>
#include <vector>

/// How much room a panel takes.
enum class RibbonForm : std::size_t {
    Full,     ///< as its layout says
    Compact,  ///< large buttons become small ones, sliders short
    Button    ///< one button that drops the panel down
};

inline constexpr std::size_t kRibbonForms = 3;

struct RibbonPanelWidths {
    std::array<int, kRibbonForms> width;  ///< pixels, indexed by form
    int shrinkRank;
};

/// Gives each panel the fullest form with which all fit side by side. Panels shrink one step at a time: by rank to the
/// compact form, then by rank to the button. A step that saves nothing is passed over.
/// @param available pixels for all panels together
std::vector<RibbonForm> ChooseRibbonForms(const std::vector<RibbonPanelWidths>& panels, int available);
