#include "app/toolkit/RibbonPage.h"

#include "app/toolkit/RibbonPanel.h"

namespace {

constexpr int kLeftMargin = 2;

}  // namespace

RibbonPage::RibbonPage(const ribbon::Tab& tab, const RibbonActions& actions, QWidget* parent)
    : QWidget(parent), shrinkSteps_(tab.shrinkSteps) {
    for (const ribbon::Panel& panel : tab.panels) panels_.push_back(new RibbonPanel(panel, actions, this));
}

QSize RibbonPage::sizeHint() const { return {0, RibbonPanel::HeightFor(fontMetrics())}; }

// All panels as buttons: below this something would be cut off.
QSize RibbonPage::minimumSizeHint() const {
    int width = kLeftMargin;
    for (RibbonPanel* panel : panels_) {
        width += panel->Widths()[static_cast<std::size_t>(RibbonForm::Button)];
    }
    return {width, sizeHint().height()};
}

void RibbonPage::resizeEvent(QResizeEvent*) {
    std::vector<RibbonPanelWidths> widths;
    for (RibbonPanel* panel : panels_) widths.push_back(panel->Widths());
    const std::vector<RibbonForm> forms = ChooseRibbonForms(widths, shrinkSteps_, width() - kLeftMargin);
    int x = kLeftMargin;
    for (std::size_t i = 0; i < panels_.size(); ++i) {
        const int panelWidth = widths[i][static_cast<std::size_t>(forms[i])];
        panels_[i]->setGeometry(x, 0, panelWidth, height());
        panels_[i]->SetForm(forms[i]);
        x += panelWidth;
    }
}
