#pragma once

#include <QDockWidget>
#include <QIcon>
#include <array>

#include "app/toolkit/LogType.h"

class Clock;
class QTableWidget;

/// The pane "Logs": every word for the user ends up here, one row a message, for as long as the program runs.
/// Main thread only.
class CLoggerWnd : public QDockWidget {
    Q_OBJECT
public:
    enum Column : int { ColumnType = 0, ColumnTime, ColumnMessage, ColumnCount };

    /// @param clock tells the time of a message; must outlive the pane
    CLoggerWnd(const Clock& clock, QWidget* parent);

    /// Appends a row, scrolls to it and brings the pane into view, also when the user has closed it.
    /// @param type a LogType
    void AddMessage(const QString& text, int type);
    void AddMessage(const char* text, int type) { AddMessage(QString::fromUtf8(text), type); }
    void ClearLog();

    const QTableWidget& List() const { return *m_list; }

private:
    void FitColumns(const std::array<int, ColumnCount>& newest);

    const Clock& m_clock;
    QTableWidget* m_list;
    std::array<QIcon, 3> m_icons;
    std::array<int, ColumnCount> m_contentWidths{};  // of the widest row so far, pixels
};
