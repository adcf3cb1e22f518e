#include "app/toolkit/RibbonForms.h"

std::vector<RibbonForm> ChooseRibbonForms(std::span<const RibbonPanelWidths> panels,
                                          std::span<const RibbonShrinkStep> steps, int available) {
    std::vector<RibbonForm> forms(panels.size(), RibbonForm::Full);
    const auto widthOf = [&](std::size_t panel, RibbonForm form) {
        return panels[panel][static_cast<std::size_t>(form)];
    };
    int total = 0;
    for (std::size_t i = 0; i < panels.size(); ++i) total += widthOf(i, RibbonForm::Full);
    for (const RibbonShrinkStep& step : steps) {
        if (total <= available) break;
        const int saved = widthOf(step.panel, forms[step.panel]) - widthOf(step.panel, step.form);
        if (saved <= 0) continue;
        forms[step.panel] = step.form;
        total -= saved;
    }
    return forms;
}
