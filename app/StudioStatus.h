#pragma once

#include <QString>
#include <map>

struct ChartSize;
class QLabel;
class QStatusBar;

/// The parts of the status bar, by the numbers of their labels.
class StudioStatus {
public:
    explicit StudioStatus(QStatusBar& bar);

    void Set(int id, const QString& text);
    void Show(int id);     ///< from now on
    void Repaint(int id);  ///< at once
    /// Which patch to pick next by hand. @param picked how many colors the list has
    void ShowNextPatch(std::size_t picked, const ChartSize& chart);
    void HideNextPatch();

private:
    std::map<int, QLabel*> m_parts;
};
