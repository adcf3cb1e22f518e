#include "app/toolkit/KeyTips.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <algorithm>

#include "app/toolkit/RibbonBar.h"
#include "app/toolkit/RibbonPage.h"
#include "app/toolkit/RibbonPanel.h"

namespace {

constexpr int kRowBelow = 40;       // pixels of height that tell a row from a large button
constexpr int kPictureCentre = 14;  // of a row's picture

}  // namespace

KeyTips::KeyTips(RibbonBar& bar) : QObject(&bar), bar_(bar) { qApp->installEventFilter(this); }

bool KeyTips::IsOwnWindow() const {
    const QWidget* active = QApplication::activeWindow();
    return active && active == bar_.window() && !QApplication::activeModalWidget();
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
            armed_ = false;
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
        armed_ = key->key() == Qt::Key_Alt && IsOwnWindow();
        return false;
    }
    if (!armed_ || key->key() != Qt::Key_Alt) return false;
    armed_ = false;
    ShowTop();
    return true;
}

bool KeyTips::HandleKey(int key, const QString& text) {
    if (key == Qt::Key_Escape && !onTop_) {
        ShowTop();
        return true;
    }
    if (text.isEmpty() || !text.front().isLetterOrNumber()) {
        End();
        return true;
    }
    typed_ += text.toUpper();
    const std::vector<Shown> candidates = shown_;
    bool anyLeft = false;
    for (const Shown& shown : candidates) {
        if (shown.target.keyTip == typed_) {
            Choose(shown.target);
            return true;
        }
        const bool fits = shown.target.keyTip.startsWith(typed_);
        if (shown.label) shown.label->setVisible(fits);
        anyLeft = anyLeft || fits;
    }
    if (!anyLeft) End();
    return true;
}

void KeyTips::Choose(const RibbonBody::Target& target) {
    const std::function<void()> activate = target.activate;
    const bool wasTop = onTop_;
    const bool isTab = wasTop && !target.widget;
    End();
    activate();
    if (isTab) {
        ShowPage();
        return;
    }
    for (RibbonPanel* panel : bar_.CurrentPage().Panels()) {
        if (panel->IsDroppedDown()) ShowPage();
    }
}

void KeyTips::ShowTop() {
    End();
    onTop_ = true;
    int tab = 0;
    for (const RibbonBody::Target& target : bar_.TopTargets()) {
        const QRect place = target.widget ? QRect(target.widget->mapTo(&bar_, QPoint(0, 0)), target.widget->size())
                                          : bar_.TabRect(tab++);
        Show(target, bar_.window(), bar_.mapTo(bar_.window(), QPoint(place.center().x(), place.bottom())));
    }
}

// The tips of the current tab; while a panel is dropped down, that panel's alone.
void KeyTips::ShowPage() {
    End();
    const std::vector<RibbonPanel*>& panels = bar_.CurrentPage().Panels();
    const RibbonPanel* dropped = nullptr;
    for (const RibbonPanel* panel : panels) {
        if (panel->IsDroppedDown()) dropped = panel;
    }
    for (const RibbonPanel* panel : panels) {
        if (dropped && panel != dropped) continue;
        for (const RibbonBody::Target& target : panel->Targets()) {
            // On a row the tip lies over the picture and leaves the text readable.
            QWidget* window = target.widget->window();
            const bool isRow = target.widget->height() < kRowBelow;
            const int x = isRow ? std::min(target.widget->width() / 2, kPictureCentre) : target.widget->width() / 2;
            Show(target, window, target.widget->mapTo(window, QPoint(x, target.widget->height())));
        }
    }
}

void KeyTips::Show(const RibbonBody::Target& target, QWidget* window, QPoint bottomCentre) {
    auto* label = new QLabel(target.keyTip, window);
    label->setObjectName("keyTip");
    label->setAttribute(Qt::WA_TransparentForMouseEvents);
    label->adjustSize();
    label->move(bottomCentre.x() - label->width() / 2, bottomCentre.y() - label->height() / 2 - 4);
    label->show();
    label->raise();
    shown_.push_back({target, label});
}

void KeyTips::End() {
    for (const Shown& shown : shown_) {
        if (shown.label) shown.label->deleteLater();
    }
    for (const Shown& shown : shown_) {
        if (shown.label) shown.label->hide();
    }
    shown_.clear();
    typed_.clear();
    onTop_ = false;
}
