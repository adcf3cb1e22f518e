#include "app/toolkit/RibbonForms.h"

#include <algorithm>
#include <numeric>

std::vector<RibbonForm> ChooseRibbonForms(const std::vector<RibbonPanelWidths>& panels, int available) {
    std::vector<RibbonForm> forms(panels.size(), RibbonForm::Full);
    const auto widthOf = [&](std::size_t i, RibbonForm form) {
        return panels[i].width[static_cast<std::size_t>(form)];
    };
    std::vector<std::size_t> order(panels.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::stable_sort(order, {}, [&](std::size_t i) { return panels[i].shrinkRank; });

    int total = 0;
    for (std::size_t i = 0; i < panels.size(); ++i) total += widthOf(i, RibbonForm::Full);
    for (const RibbonForm smaller : {RibbonForm::Compact, RibbonForm::Button}) {
        for (const std::size_t i : order) {
            if (total <= available) return forms;
            const int saved = widthOf(i, forms[i]) - widthOf(i, smaller);
            if (saved <= 0) continue;
            forms[i] = smaller;
            total -= saved;
        }
    }
    return forms;
}
