#pragma once

#include <QWidget>
#include <vector>

#include "app/toolkit/RibbonBody.h"

class RibbonPanel;

/// What one tab of the ribbon shows: panels side by side, each in the fullest form that the width allows.
class RibbonPage : public QWidget {
    Q_OBJECT
public:
    RibbonPage(const ribbon::Tab& tab, const RibbonActions& actions, QWidget* parent);

    const std::vector<RibbonPanel*>& Panels() const { return m_panels; }
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    std::span<const RibbonShrinkStep> m_shrinkSteps;
    std::vector<RibbonPanel*> m_panels;
};
