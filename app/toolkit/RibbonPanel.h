#pragma once

#include <QWidget>
#include <array>

#include "app/toolkit/RibbonBody.h"

class QFrame;

/// A panel of the ribbon: its controls over its caption, or one button that drops them down.
class RibbonPanel : public QWidget {
    Q_OBJECT
public:
    RibbonPanel(const ribbon::Panel& panel, const RibbonActions& actions, QWidget* parent);

    /// What the panel would take, caption and margins included, in pixels.
    RibbonPanelWidths Widths();
    void SetForm(RibbonForm form);
    RibbonForm Form() const { return m_form; }
    static int HeightFor(const QFontMetrics& metrics);

    RibbonBody& Body() { return *m_body; }
    void OpenDropDown();
    void CloseDropDown();
    bool IsDroppedDown() const;
    /// Its controls, or in the button form the button.
    std::vector<RibbonBody::Target> Targets() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QFont CaptionFont() const;

    const ribbon::Panel& m_panel;
    RibbonBody* m_body;
    RibbonButton* m_button;
    QFrame* m_dropDown;
    RibbonForm m_form = RibbonForm::Full;
};
