#include "app/panes/PatchCells.h"

#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>
#include <algorithm>
#include <cmath>

#include "app/panes/quality_texts.h"
#include "app/toolkit/Theme.h"
#include "report/html_report.h"

using namespace tonewright;

namespace {

constexpr int kGap = 3;
constexpr int kLeastCellWidth = 34;
constexpr int kLeastWidth = 210;
constexpr int kSwatchHeight = 22;
constexpr int kLightGround = 110;  // of 255: above it black can be read better than white

QColor shown(const LinearRgb& linear) {
    const auto coded = [](double v) {
        v = std::isfinite(v) ? std::clamp(v, 0.0, 1.0) : 0.0;
        return v <= 0.0031308 ? 12.92 * v : 1.055 * std::pow(v, 1 / 2.4) - 0.055;
    };
    return QColor::fromRgbF(static_cast<float>(coded(linear[0])), static_cast<float>(coded(linear[1])),
                            static_cast<float>(coded(linear[2])));
}

}  // namespace

CellGrid::CellGrid(const QRect& area, int columns, int count)
    : m_area(area), m_columns(std::max(1, columns)), m_count(count) {}

QRect CellGrid::Cell(int index) const {
    const int rows = std::max(1, (m_count + m_columns - 1) / m_columns);
    const auto edge = [](int length, int parts, int i) { return (length + kGap) * i / parts; };
    const int column = index % m_columns, row = index / m_columns;
    const int left = edge(m_area.width(), m_columns, column), right = edge(m_area.width(), m_columns, column + 1);
    const int top = edge(m_area.height(), rows, row), bottom = edge(m_area.height(), rows, row + 1);
    return {m_area.left() + left, m_area.top() + top, right - left - kGap, bottom - top - kGap};
}

int CellGrid::At(const QPoint& point) const {
    for (int i = 0; i < m_count; ++i) {
        if (Cell(i).contains(point)) return i;
    }
    return -1;
}

PatchCells::PatchCells(QWidget* parent) : QWidget(parent) { setMouseTracking(true); }

void PatchCells::SetPatches(const std::vector<ReportPatch>& patches, int columns) {
    m_patches = patches;
    m_columns = columns;
    const auto worst = std::max_element(patches.begin(), patches.end(), [](const ReportPatch& a, const ReportPatch& b) {
        return a.difference < b.difference;
    });
    m_worst = worst == patches.end() ? -1 : static_cast<int>(worst - patches.begin());
    const int count = static_cast<int>(patches.size());
    if (m_hovered >= count || m_kept >= count) Point(-1, -1);
    updateGeometry();
    update();
}

QSize PatchCells::sizeHint() const {
    const int columns = std::max(1, m_columns);
    const int rows = std::max(1, (static_cast<int>(m_patches.size()) + columns - 1) / columns);
    const int height = kSwatchHeight + fontMetrics().height() + 2 + kGap;
    return {columns * (kLeastCellWidth + kGap) - kGap, rows * height - kGap};
}

QSize PatchCells::minimumSizeHint() const { return {std::min(sizeHint().width(), kLeastWidth), sizeHint().height()}; }

CellGrid PatchCells::Grid() const { return {rect(), m_columns, static_cast<int>(m_patches.size())}; }

void PatchCells::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const theme::Colors& colors = theme::Now();
    const CellGrid grid = Grid();
    QFont small = font();
    small.setPointSizeF(small.pointSizeF() * 0.8);
    for (int i = 0; i < static_cast<int>(m_patches.size()); ++i) {
        const ReportPatch& patch = m_patches[static_cast<std::size_t>(i)];
        const QRect cell = grid.Cell(i);
        painter.fillRect(cell, colors.surface);
        const int height = cell.height() - fontMetrics().height() - 2;
        int part = 0;
        for (const LinearRgb* color : {&patch.color.measured, &patch.color.target, &patch.color.delivered}) {
            const int left = cell.width() * part / 3, right = cell.width() * (part + 1) / 3;
            painter.fillRect(QRect(cell.left() + left, cell.top(), right - left, height), shown(*color));
            ++part;
        }
        const QColor ground = shown(patch.color.measured);
        painter.setFont(small);
        painter.setPen(ground.lightness() > kLightGround ? Qt::black : Qt::white);
        painter.drawText(QRect(cell.left() + 2, cell.top(), cell.width() / 2, height), Qt::AlignLeft | Qt::AlignTop,
                         QString::number(patch.number));
        painter.setFont(font());
        painter.setPen(colors.text);
        painter.drawText(cell.adjusted(0, height, 0, 0), Qt::AlignCenter, quality_texts::Difference(patch.difference));
        const bool isPointed = i == GetPointed();
        painter.setPen(QPen(isPointed      ? colors.lit
                            : i == m_worst ? QColor(0xd0, 0x3a, 0x30)
                                           : colors.line,
                            isPointed || i == m_worst ? 2 : 1));
        painter.drawRect(cell.adjusted(0, 0, -1, -1));
    }
}

void PatchCells::Point(int hovered, int kept) {
    const int before = GetPointed();
    m_hovered = hovered;
    m_kept = kept;
    if (GetPointed() == before) return;
    update();
    emit pointed(GetPointed());
}

void PatchCells::mouseMoveEvent(QMouseEvent* event) { Point(Grid().At(event->position().toPoint()), m_kept); }

void PatchCells::mousePressEvent(QMouseEvent* event) {
    const int index = Grid().At(event->position().toPoint());
    Point(index, index == m_kept ? -1 : index);
}

void PatchCells::leaveEvent(QEvent*) { Point(-1, m_kept); }

bool PatchCells::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip) {
        const auto* help = static_cast<QHelpEvent*>(event);
        const int index = Grid().At(help->pos());
        const QString words =
            index < 0 ? QString() : quality_texts::PatchNumbers(m_patches[static_cast<std::size_t>(index)]);
        QToolTip::showText(help->globalPos(), words, this);
        return true;
    }
    return QWidget::event(event);
}
