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
    : QWidget(parent), m_layout(layout), m_pages(new QStackedWidget(this)) {
    setAutoFillBackground(true);
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 0, 0, 1);
    rows->setSpacing(0);
    rows->addWidget(MakeTopRow(actions));
    rows->addWidget(m_pages);
    for (const ribbon::Tab& tab : layout.tabs) AddPage(tab, actions);
    connect(m_tabs, &QTabBar::currentChanged, m_pages, &QStackedWidget::setCurrentIndex);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    new KeyTips(*this);
}

QWidget* RibbonBar::MakeTopRow(const RibbonActions& actions) {
    auto* row = new QWidget(this);
    auto* places = new QHBoxLayout(row);
    places->setContentsMargins(0, 0, 4, 0);
    places->setSpacing(0);

    m_fileMenu = new RibbonFileMenu(m_layout, actions, this);
    connect(m_fileMenu, &RibbonFileMenu::recentChosen, this, &RibbonBar::recentChosen);
    m_file = new QToolButton(row);
    m_file->setObjectName("ribbonFile");
    m_file->setText(m_layout.fileTitle);
    m_file->setMenu(m_fileMenu);
    m_file->setPopupMode(QToolButton::InstantPopup);
    m_file->setFocusPolicy(Qt::TabFocus);
    places->addWidget(m_file);

    m_tabs = new QTabBar(row);
    m_tabs->setObjectName("ribbonTabs");
    m_tabs->setDrawBase(false);
    m_tabs->setExpanding(false);
    places->addWidget(m_tabs);
    places->addStretch();

    m_help = new QToolButton(row);
    m_help->setObjectName("ribbonHelp");
    m_help->setDefaultAction(actions(m_layout.helpId));
    m_help->setPopupMode(QToolButton::MenuButtonPopup);
    m_help->setFocusPolicy(Qt::TabFocus);
    auto* helpMenu = new QMenu(m_help);
    for (const int id : m_layout.helpMenuIds) helpMenu->addAction(actions(id));
    m_help->setMenu(helpMenu);
    places->addWidget(m_help);
    for (QToolButton* button : {m_file, m_help}) button->installEventFilter(this);
    return row;
}

void RibbonBar::AddPage(const ribbon::Tab& tab, const RibbonActions& actions) {
    m_tabs->addTab(tab.title);
    auto* page = new RibbonPage(tab, actions, m_pages);
    m_pages->addWidget(page);
    for (RibbonPanel* panel : page->Panels()) {
        RibbonBody& body = panel->Body();
        connect(&body, &RibbonBody::edited, this, &RibbonBar::edited);
        connect(&body, &RibbonBody::slid, this, &RibbonBar::slid);
        for (const auto& [id, edit] : body.Edits()) m_edits[id] = edit;
        for (const auto& [id, slider] : body.Sliders()) {
            m_sliders[id] = slider;
            connect(slider, &RibbonSlider::settled, this, &RibbonBar::slidEnough);
        }
    }
}

void RibbonBar::SetEditText(int id, const QString& text) {
    if (const auto found = m_edits.find(id); found != m_edits.end()) found->second->ShowText(text);
}

QString RibbonBar::EditText(int id) const {
    const auto found = m_edits.find(id);
    return found != m_edits.end() ? found->second->text() : QString();
}

void RibbonBar::CommitPendingEdits() {
    for (const auto& [id, edit] : m_edits) edit->CommitPending();
}

void RibbonBar::DropPendingEdits() {
    for (const auto& [id, edit] : m_edits) edit->DropPending();
}

void RibbonBar::SetSliderValue(int id, int value) {
    if (const auto found = m_sliders.find(id); found != m_sliders.end()) found->second->ShowValue(value);
}

int RibbonBar::SliderValue(int id) const {
    const auto found = m_sliders.find(id);
    return found != m_sliders.end() ? found->second->value() : 0;
}

void RibbonBar::SetRecentDocuments(const QStringList& paths) { m_fileMenu->SetRecentDocuments(paths); }

void RibbonBar::SelectTab(int index) { m_tabs->setCurrentIndex(index); }

void RibbonBar::OpenFileMenu() { m_file->showMenu(); }

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

RibbonPage& RibbonBar::CurrentPage() { return static_cast<RibbonPage&>(*m_pages->currentWidget()); }

QRect RibbonBar::TabRect(int index) const {
    const QRect rect = m_tabs->tabRect(index);
    return {m_tabs->mapTo(this, rect.topLeft()), rect.size()};
}

std::vector<RibbonBody::Target> RibbonBar::TopTargets() {
    std::vector<RibbonBody::Target> targets{{m_layout.fileKeyTip, m_file, [this] { OpenFileMenu(); }}};
    for (std::size_t i = 0; i < m_layout.tabs.size(); ++i) {
        targets.push_back({m_layout.tabs[i].keyTip, nullptr, [this, i] { SelectTab(static_cast<int>(i)); }});
    }
    targets.push_back({m_layout.helpKeyTip, m_help, [this] { m_help->showMenu(); }});
    return targets;
}

void RibbonBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), theme::Now().surface);
    painter.fillRect(0, 0, width(), m_pages->y(), theme::Now().window);
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
    if (isKey && (watched == m_file || watched == m_help)) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            event->accept();
            if (event->type() == QEvent::KeyPress) static_cast<QToolButton*>(watched)->click();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}
