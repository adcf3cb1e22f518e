#include "app/toolkit/RibbonBar.h"

#include <QAction>
#include <QBoxLayout>
#include <QCursor>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QStackedWidget>
#include <QTabBar>
#include <QToolButton>

#include "app/toolkit/KeyTips.h"
#include "app/toolkit/RibbonButton.h"
#include "app/toolkit/RibbonField.h"
#include "app/toolkit/RibbonFileMenu.h"
#include "app/toolkit/RibbonPage.h"
#include "app/toolkit/RibbonPanel.h"
#include "app/toolkit/Theme.h"

RibbonBar::RibbonBar(const ribbon::Layout& layout, const RibbonActions& actions, QWidget* parent)
    : QWidget(parent), layout_(layout), pages_(new QStackedWidget(this)) {
    setAutoFillBackground(true);
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 0, 0, 1);
    rows->setSpacing(0);
    rows->addWidget(MakeTopRow(actions));
    rows->addWidget(pages_);
    for (const ribbon::Tab& tab : layout.tabs) AddPage(tab, actions);
    connect(tabs_, &QTabBar::currentChanged, pages_, &QStackedWidget::setCurrentIndex);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    new KeyTips(*this);
}

QWidget* RibbonBar::MakeTopRow(const RibbonActions& actions) {
    auto* row = new QWidget(this);
    auto* places = new QHBoxLayout(row);
    places->setContentsMargins(0, 0, 4, 0);
    places->setSpacing(0);

    fileMenu_ = new RibbonFileMenu(layout_, actions, this);
    connect(fileMenu_, &RibbonFileMenu::recentChosen, this, &RibbonBar::recentChosen);
    file_ = new QToolButton(row);
    file_->setObjectName("ribbonFile");
    file_->setText(layout_.fileTitle);
    file_->setMenu(fileMenu_);
    file_->setPopupMode(QToolButton::InstantPopup);
    file_->setFocusPolicy(Qt::TabFocus);
    places->addWidget(file_);

    tabs_ = new QTabBar(row);
    tabs_->setObjectName("ribbonTabs");
    tabs_->setDrawBase(false);
    tabs_->setExpanding(false);
    places->addWidget(tabs_);
    places->addStretch();

    help_ = new QToolButton(row);
    help_->setObjectName("ribbonHelp");
    help_->setDefaultAction(actions(layout_.helpId));
    help_->setPopupMode(QToolButton::MenuButtonPopup);
    help_->setFocusPolicy(Qt::TabFocus);
    auto* helpMenu = new QMenu(help_);
    for (const int id : layout_.helpMenuIds) helpMenu->addAction(actions(id));
    help_->setMenu(helpMenu);
    places->addWidget(help_);
    for (QToolButton* button : {file_, help_}) button->installEventFilter(this);
    return row;
}

void RibbonBar::AddPage(const ribbon::Tab& tab, const RibbonActions& actions) {
    tabs_->addTab(tab.title);
    auto* page = new RibbonPage(tab, actions, pages_);
    pages_->addWidget(page);
    for (RibbonPanel* panel : page->Panels()) {
        RibbonBody& body = panel->Body();
        connect(&body, &RibbonBody::edited, this, &RibbonBar::edited);
        connect(&body, &RibbonBody::slid, this, &RibbonBar::slid);
        for (const auto& [id, edit] : body.Edits()) edits_[id] = edit;
        for (const auto& [id, slider] : body.Sliders()) sliders_[id] = slider;
    }
}

void RibbonBar::SetEditText(int id, const QString& text) {
    if (const auto found = edits_.find(id); found != edits_.end()) found->second->ShowText(text);
}

QString RibbonBar::EditText(int id) const {
    const auto found = edits_.find(id);
    return found != edits_.end() ? found->second->text() : QString();
}

void RibbonBar::CommitPendingEdits() {
    for (const auto& [id, edit] : edits_) edit->CommitPending();
}

void RibbonBar::DropPendingEdits() {
    for (const auto& [id, edit] : edits_) edit->DropPending();
}

void RibbonBar::SetSliderValue(int id, int value) {
    if (const auto found = sliders_.find(id); found != sliders_.end()) found->second->ShowValue(value);
}

int RibbonBar::SliderValue(int id) const {
    const auto found = sliders_.find(id);
    return found != sliders_.end() ? found->second->value() : 0;
}

void RibbonBar::SetRecentDocuments(const QStringList& paths) { fileMenu_->SetRecentDocuments(paths); }

void RibbonBar::SelectTab(int index) { tabs_->setCurrentIndex(index); }

void RibbonBar::OpenFileMenu() { file_->showMenu(); }

void RibbonBar::OpenMenuOf(int id) {
    QMenu* hidden = nullptr;  // in a panel's drop-down that the press has closed
    for (RibbonButton* button : findChildren<RibbonButton*>()) {
        const bool shows = button->defaultAction() && button->defaultAction()->data().toInt() == id;
        if (!shows || !button->menu()) continue;
        if (button->isVisible()) return button->showMenu();
        hidden = button->menu();
    }
    if (hidden) hidden->popup(QCursor::pos());
}

RibbonPage& RibbonBar::CurrentPage() { return static_cast<RibbonPage&>(*pages_->currentWidget()); }

QRect RibbonBar::TabRect(int index) const {
    const QRect rect = tabs_->tabRect(index);
    return {tabs_->mapTo(this, rect.topLeft()), rect.size()};
}

std::vector<RibbonBody::Target> RibbonBar::TopTargets() {
    std::vector<RibbonBody::Target> targets{{layout_.fileKeyTip, file_, [this] { OpenFileMenu(); }}};
    for (std::size_t i = 0; i < layout_.tabs.size(); ++i) {
        targets.push_back({layout_.tabs[i].keyTip, nullptr, [this, i] { SelectTab(static_cast<int>(i)); }});
    }
    targets.push_back({layout_.helpKeyTip, help_, [this] { help_->showMenu(); }});
    return targets;
}

void RibbonBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), theme::Now().surface);
    painter.fillRect(0, 0, width(), pages_->y(), theme::Now().window);
    painter.fillRect(0, height() - 1, width(), 1, theme::Now().border);
}

void RibbonBar::showEvent(QShowEvent* event) {
    window()->installEventFilter(this);
    QWidget::showEvent(event);
}

// A dialog that opens while a panel is dropped down would stand under it.
bool RibbonBar::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::WindowBlocked) {
        for (RibbonPanel* panel : CurrentPage().Panels()) panel->CloseDropDown();
    }
    const bool isKey = event->type() == QEvent::ShortcutOverride || event->type() == QEvent::KeyPress;
    if (isKey && (watched == file_ || watched == help_)) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            event->accept();
            if (event->type() == QEvent::KeyPress) static_cast<QToolButton*>(watched)->click();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}
