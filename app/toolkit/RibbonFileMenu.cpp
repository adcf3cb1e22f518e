#include "app/toolkit/RibbonFileMenu.h"

#include <QAction>
#include <QFileInfo>
#include <QHelpEvent>
#include <QLabel>
#include <QListWidget>
#include <QToolTip>
#include <QVBoxLayout>

namespace {

constexpr int kFrame = 5;

// An entry has its own words and follows the command's state. The key label stands behind a tab, so that the menu shows
// it in its column and nothing is bound.
QAction* makeEntry(const ribbon::FileEntry& entry, QAction* command, QObject* parent) {
    QString text = entry.text;
    if (*entry.keyLabel) text += QString("    \t") + entry.keyLabel;
    auto* shown = new QAction(command->icon(), text, parent);
    const auto follow = [shown, command] {
        shown->setEnabled(command->isEnabled());
        shown->setWhatsThis(command->whatsThis());
    };
    follow();
    QObject::connect(command, &QAction::changed, shown, follow);
    QObject::connect(shown, &QAction::triggered, command, &QAction::trigger);
    return shown;
}

}  // namespace

RibbonFileMenu::RibbonFileMenu(const ribbon::Layout& layout, const RibbonActions& actions, QWidget* parent)
    : QMenu(parent), m_recent(new QWidget(this)), m_list(new QListWidget(m_recent)) {
    setObjectName("ribbonFileMenu");
    for (const ribbon::FileEntry& entry : layout.fileEntries) addAction(makeEntry(entry, actions(entry.id), this));
    setContentsMargins(0, 0, layout.recentWidth, 0);
    m_recent->setFixedWidth(layout.recentWidth);
    auto* column = new QVBoxLayout(m_recent);
    column->setContentsMargins(10, 6, 6, 6);
    auto* title = new QLabel(layout.recentTitle, m_recent);
    title->setObjectName("recentTitle");
    column->addWidget(title);
    column->addWidget(m_list);
    m_list->setObjectName("recentList");
    connect(m_list, &QListWidget::itemClicked, this, [this](QListWidgetItem* item) {
        hide();
        emit recentChosen(item->data(Qt::UserRole).toString());
    });
}

void RibbonFileMenu::SetRecentDocuments(const QStringList& paths) {
    m_list->clear();
    for (const QString& path : paths) {
        auto* item = new QListWidgetItem(QFileInfo(path).fileName(), m_list);
        item->setData(Qt::UserRole, path);
        item->setToolTip(path);
    }
}

// An entry shows its command's tip; the menu itself would show the text of one without a tip once more.
bool RibbonFileMenu::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip) return QMenu::event(event);
    const auto* help = static_cast<QHelpEvent*>(event);
    QAction* const entry = actionAt(help->pos());
    QToolTip::showText(help->globalPos(), entry ? entry->whatsThis() : QString(), this,
                       entry ? actionGeometry(entry) : QRect());
    return true;
}

void RibbonFileMenu::resizeEvent(QResizeEvent* event) {
    QMenu::resizeEvent(event);
    m_recent->setGeometry(width() - m_recent->width() - kFrame, kFrame, m_recent->width(), height() - 2 * kFrame);
}
