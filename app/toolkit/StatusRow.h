#pragma once

#include <QWidget>
#include <span>
#include <vector>

class QLabel;

/// A text of a status bar: the width that it wants, in pixels, and when it gives way.
struct StatusPart {
    int wanted;
    int givesWay;  ///< the part with the least number shrinks first, to nothing if need be
};

/// Gives each part its width, less where not all fit side by side.
std::vector<int> ShareStatusRoom(std::span<const StatusPart> parts, int available);

/// The texts of a status bar in one row, some on the left, the others on the right. Where room is short the less
/// important ones are cut with an ellipsis; the pointer brings the whole text.
class StatusRow : public QWidget {
    Q_OBJECT
public:
    using QWidget::QWidget;

    /// @param onRight after the others on the right
    /// @param givesWay as in StatusPart
    /// @param widest the text for which room is kept while the texts change; empty for none
    QLabel* Add(bool onRight, int givesWay, const QString& widest);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return {0, sizeHint().height()}; }

protected:
    void resizeEvent(QResizeEvent* event) override;
    bool event(QEvent* event) override;

private:
    struct Part {
        QLabel* label;
        bool onRight;
        int givesWay;
        QString widest;
    };
    int Wanted(const Part& part) const;
    void Arrange();

    std::vector<Part> m_parts;
};
