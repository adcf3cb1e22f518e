#include "app/panes/CRawColorListCtrl.h"

#include <QApplication>
#include <QHeaderView>
#include <QMouseEvent>
#include <QPixmap>

#include "app/panes/RawColorLists.h"

namespace {

constexpr QSize kSwatch(32, 16);
constexpr int kColumnWidth = 64;
const QColor kDimmedText(0x66, 0x66, 0x66);

QIcon swatch(std::uint32_t color) {
    QPixmap picture(kSwatch);
    picture.fill(QColor::fromRgb(color & 0xFFFFFF));
    // A selected or disabled row shows the same color: an icon would tint it.
    QIcon icon;
    for (const QIcon::Mode mode : {QIcon::Normal, QIcon::Disabled, QIcon::Active, QIcon::Selected}) {
        icon.addPixmap(picture, mode);
    }
    return icon;
}

}  // namespace

CRawColorListCtrl::CRawColorListCtrl(QWidget* parent) : QTableWidget(0, 1, parent) {
    setHorizontalHeaderLabels({"Color"});
    setIconSize(kSwatch);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setTabKeyNavigation(false);
    verticalHeader()->hide();
    verticalHeader()->setDefaultSectionSize(kSwatch.height() + 6);
    horizontalHeader()->setSectionsClickable(false);
    setColumnWidth(0, kColumnWidth);
}

void CRawColorListCtrl::Show(const RawColorSide& side) {
    const std::optional<std::size_t> selected = SelectedRow();
    const auto& rows = side.Rows();
    setRowCount(static_cast<int>(rows.size()));
    for (std::size_t i = 0; i < rows.size(); ++i) {
        auto* cell = new QTableWidgetItem(QString::number(rows[i].label));
        if (rows[i].image < side.Images().size()) cell->setIcon(swatch(side.Images()[rows[i].image]));
        setItem(static_cast<int>(i), 0, cell);
    }
    clearSelection();
    if (selected && *selected < rows.size()) selectRow(static_cast<int>(*selected));
}

void CRawColorListCtrl::mousePressEvent(QMouseEvent* event) {
    QTableWidget::mousePressEvent(event);
    if (event->button() == Qt::LeftButton) emit pressed();
}

void CRawColorListCtrl::SetDimmed(bool dimmed) {
    QPalette colors = QApplication::palette(this);
    if (dimmed) colors.setColor(QPalette::Text, kDimmedText);
    setPalette(colors);
}

std::optional<std::size_t> CRawColorListCtrl::SelectedRow() const {
    for (int row = 0; row < rowCount(); ++row) {
        if (selectionModel()->isRowSelected(row)) return static_cast<std::size_t>(row);
    }
    return std::nullopt;
}
