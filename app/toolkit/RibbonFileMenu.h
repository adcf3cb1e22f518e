#pragma once

#include <QMenu>
#include <QStringList>

#include "app/toolkit/RibbonBody.h"

class QListWidget;

/// The menu behind the file button: commands on the left, the list of recent documents on the right.
class RibbonFileMenu : public QMenu {
    Q_OBJECT
public:
    RibbonFileMenu(const ribbon::Layout& layout, const RibbonActions& actions, QWidget* parent);
    void SetRecentDocuments(const QStringList& paths);

signals:
    void recentChosen(const QString& path);

protected:
    bool event(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QWidget* m_recent;
    QListWidget* m_list;
};
