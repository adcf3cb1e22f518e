#include "app/toolkit/RibbonPage.h"

#include "app/toolkit/RibbonPanel.h"

namespace {

constexpr int kLeftMargin = 2;

}  // namespace

RibbonPage::RibbonPage(const ribbon::Tab& tab, const RibbonActions& actions, QWidget* parent)
    : QWidget(parent), m_shrinkSteps(tab.shrinkSteps) {
    for (const ribbon::Panel& panel : tab.panels) m_panels.push_back(new RibbonPanel(panel, actions, this));
}

QSize RibbonPage::sizeHint() const { return {0, RibbonPanel::HeightFor(fontMetrics())}; }

// All panels as buttons: below this something would be cut off.
QSize RibbonPage::minimumSizeHint() const {
    int width = kLeftMargin;
    for (RibbonPanel* panel : m_panels) {
        width += panel->Widths()[static_cast<std::size_t>(RibbonForm::Button)];
    }
    return {width, sizeHint().height()};
}

void RibbonPage::resizeEvent(QResizeEvent*) {
    std::vector<RibbonPanelWidths> widths;
    for (RibbonPanel* panel : m_panels) widths.push_back(panel->Widths());
    const std::vector<RibbonForm> forms = ChooseRibbonForms(widths, m_shrinkSteps, width() - kLeftMargin);
    int x = kLeftMargin;
    for (std::size_t i = 0; i < m_panels.size(); ++i) {
        const int panelWidth = widths[i][static_cast<std::size_t>(forms[i])];
        m_panels[i]->setGeometry(x, 0, panelWidth, height());
        m_panels[i]->SetForm(forms[i]);
        x += panelWidth;
    }
}
