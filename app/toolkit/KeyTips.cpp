#include "app/toolkit/KeyTips.h"

#include <QApplication>
#include <QCheckBox>
#include <QKeyEvent>
#include <QLabel>
#include <algorithm>

#include "app/toolkit/RibbonBar.h"
#include "app/toolkit/RibbonButton.h"
#include "app/toolkit/RibbonPage.h"
#include "app/toolkit/RibbonPanel.h"

namespace {

constexpr int kOverEdge = 4;      // how far a tip below a tab reaches over its edge
constexpr int kLeftOfEdit = 14;   // how far a tip stands out of an edit, whose number is on the right
constexpr int kBelowPicture = 3;  // between a large button's picture and its text

}  // namespace

/// A point of a widget, and which point of the tip comes there, so that pictures are covered and texts are not.
struct KeyTips::Spot {
    QPoint at;
    Qt::Alignment tip;
};

KeyTips::KeyTips(RibbonBar& bar) : QObject(&bar), m_bar(bar) { qApp->installEventFilter(this); }

bool KeyTips::IsOwnWindow() const {
    const QWidget* active = QApplication::activeWindow();
    return active && active == m_bar.window() && !QApplication::activeModalWidget();
}

bool KeyTips::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
        case QEvent::ShortcutOverride:
            if (!IsShowing()) return false;
            event->accept();
            return true;
        case QEvent::KeyPress:
            // A key goes to the window first and to the widget in focus then: count it once.
            if (!watched->isWidgetType()) return false;
            if (IsShowing()) {
                const auto* key = static_cast<QKeyEvent*>(event);
                return HandleKey(key->key(), key->text());
            }
            return WatchAlt(event);
        case QEvent::KeyRelease:
            return watched->isWidgetType() && WatchAlt(event);
        case QEvent::MouseButtonPress:
        case QEvent::Wheel:
        case QEvent::WindowDeactivate:
            m_armed = false;
            if (IsShowing()) End();
            return false;
        default:
            return false;
    }
}

bool KeyTips::WatchAlt(QEvent* event) {
    const auto* key = static_cast<QKeyEvent*>(event);
    if (key->isAutoRepeat()) return false;
    if (event->type() == QEvent::KeyPress) {
        m_armed = key->key() == Qt::Key_Alt && IsOwnWindow();
        return false;
    }
    if (!m_armed || key->key() != Qt::Key_Alt) return false;
    m_armed = false;
    ShowTop();
    return true;
}

bool KeyTips::HandleKey(int key, const QString& text) {
    if (key == Qt::Key_Escape && !m_onTop) {
        StepBack();
        return true;
    }
    if (text.isEmpty() || !text.front().isLetterOrNumber()) {
        End();
        return true;
    }
    m_typed += text.toUpper();
    const std::vector<Shown> candidates = m_shown;
    bool anyLeft = false;
    for (const Shown& shown : candidates) {
        if (shown.target.keyTip == m_typed) {
            Choose(shown.target);
            return true;
        }
        const bool fits = shown.target.keyTip.startsWith(m_typed);
        if (shown.label) shown.label->setVisible(fits);
        anyLeft = anyLeft || fits;
    }
    if (!anyLeft) End();
    return true;
}

RibbonPanel* KeyTips::DroppedDown() const {
    const std::vector<RibbonPanel*>& panels = m_bar.CurrentPage().Panels();
    const auto dropped = std::ranges::find_if(panels, &RibbonPanel::IsDroppedDown);
    return dropped == panels.end() ? nullptr : *dropped;
}

// From a panel that dropped down to its tab, from there to the tabs.
void KeyTips::StepBack() {
    RibbonPanel* const dropped = DroppedDown();
    if (!dropped) return ShowTop();
    dropped->CloseDropDown();
    ShowPage();
}

// Tips follow a tab and a panel that drops down; a control in such a panel takes the keys from then on.
void KeyTips::Choose(const RibbonBody::Target& target) {
    const std::function<void()> activate = target.activate;
    const bool isTab = m_onTop && !target.widget;
    const bool wasDroppedDown = DroppedDown();
    End();
    activate();
    if (isTab || (!wasDroppedDown && DroppedDown())) ShowPage();
}

void KeyTips::ShowTop() {
    End();
    m_onTop = true;
    int tab = 0;
    for (const RibbonBody::Target& target : m_bar.TopTargets()) {
        const QRect place = target.widget ? QRect(target.widget->mapTo(&m_bar, QPoint(0, 0)), target.widget->size())
                                          : m_bar.TabRect(tab++);
        const QPoint below(place.center().x(), place.bottom() - kOverEdge);
        Show(target, m_bar.window(), {m_bar.mapTo(m_bar.window(), below), Qt::AlignHCenter | Qt::AlignTop});
    }
}

// The tips of the current tab; while a panel is dropped down, that panel's alone.
void KeyTips::ShowPage() {
    End();
    const RibbonPanel* const dropped = DroppedDown();
    for (const RibbonPanel* panel : m_bar.CurrentPage().Panels()) {
        if (dropped && panel != dropped) continue;
        for (const RibbonBody::Target& target : panel->Targets()) {
            QWidget* const window = target.widget->window();
            const Spot spot = SpotOf(*target.widget);
            Show(target, window, {target.widget->mapTo(window, spot.at), spot.tip});
        }
    }
}

KeyTips::Spot KeyTips::SpotOf(QWidget& widget) {
    const int middle = widget.height() / 2;
    if (const auto* button = qobject_cast<RibbonButton*>(&widget)) {
        if (!button->IsLarge()) return {{RibbonButton::RowTextLeft(), middle}, Qt::AlignRight | Qt::AlignVCenter};
        return {{widget.width() / 2, RibbonButton::LargePictureBottom() + kBelowPicture},
                Qt::AlignHCenter | Qt::AlignBottom};
    }
    if (qobject_cast<QCheckBox*>(&widget)) return {{0, middle}, Qt::AlignRight | Qt::AlignVCenter};
    return {{-kLeftOfEdit, middle}, Qt::AlignLeft | Qt::AlignVCenter};
}

void KeyTips::Show(const RibbonBody::Target& target, QWidget* window, const Spot& spot) {
    auto* label = new QLabel(target.keyTip, window);
    label->setObjectName("keyTip");
    label->setAttribute(Qt::WA_TransparentForMouseEvents);
    label->adjustSize();
    QPoint corner = spot.at;
    if (spot.tip & Qt::AlignRight) corner.rx() -= label->width();
    if (spot.tip & Qt::AlignHCenter) corner.rx() -= label->width() / 2;
    if (spot.tip & Qt::AlignBottom) corner.ry() -= label->height();
    if (spot.tip & Qt::AlignVCenter) corner.ry() -= label->height() / 2;
    label->move(corner);
    label->show();
    label->raise();
    m_shown.push_back({target, label});
}

void KeyTips::End() {
    for (const Shown& shown : m_shown) {
        if (shown.label) shown.label->deleteLater();
    }
    for (const Shown& shown : m_shown) {
        if (shown.label) shown.label->hide();
    }
    m_shown.clear();
    m_typed.clear();
    m_onTop = false;
}
