#include "app/panes/CSpectrumValuesWnd.h"

#include <QBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <algorithm>
#include <cmath>

#include "app/panes/CLoggerWnd.h"
#include "app/panes/CellTable.h"
#include "app/toolkit/Profile.h"
#include "app/toolkit/Prompts.h"
#include "chart/CCSVParser.h"

namespace {

constexpr int kIlluminantColumn = 35;
constexpr int kNumberColumn = 35;
constexpr int kValueColumn = 65;
constexpr const char* kZeroCell = "0.00000";
constexpr const char* kFilter = "Comma Separated Values (*.csv)|*.csv||";
constexpr const char* kProfileSection = "SpectrumValueFile";
constexpr const char* kProfileEntry = "Name";

// Shown as a whole number; what an integer cannot hold shows as 0.
int truncated(float value) { return std::abs(value) < 2147483648.0f ? static_cast<int>(value) : 0; }

QPushButton* addButton(QBoxLayout* row, int id, const QString& text) {
    auto* button = new QPushButton(text);
    button->setProperty("controlId", id);
    row->addWidget(button);
    return button;
}

}  // namespace

CIlluminantValue::CIlluminantValue(QWidget* parent) : CListCtrlEx({"", "X", "Y", "Z"}, false, parent) {
    Cells().Resize(1, "0");
    setColumnWidth(0, 0);
    for (int column = 1; column < 4; ++column) setColumnWidth(column, kIlluminantColumn);
    horizontalHeader()->setSectionsClickable(false);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFixedHeight(horizontalHeader()->sizeHint().height() + verticalHeader()->defaultSectionSize() + 2 * frameWidth());
    // A long number widens its column, so that none is cut off.
    connect(model(), &QAbstractItemModel::dataChanged, this, [this](const QModelIndex& cell) {
        setColumnWidth(cell.column(), std::max(kIlluminantColumn, sizeHintForColumn(cell.column())));
    });
}

void CIlluminantValue::Reset() {
    for (int column = 1; column < 4; ++column) SetCellText(0, column, "0");
}

CSpectrumValuesListCtrl::CSpectrumValuesListCtrl(QWidget* parent) : CListCtrlEx({"ID", "X", "Y", "Z"}, true, parent) {
    setColumnWidth(0, kNumberColumn);
    for (int column = 1; column < 4; ++column) setColumnWidth(column, kValueColumn);
    horizontalHeader()->setSectionsClickable(false);
}

void CSpectrumValuesListCtrl::Resize(int rows) { Cells().Resize(std::max(rows, 1), kZeroCell); }

void CSpectrumValuesListCtrl::Reset(int rows) {
    Cells().Resize(0, {});
    Resize(rows);
}

CSpectrumValuesWnd::CSpectrumValuesWnd(QWidget* parent) : QDockWidget("User Values", parent) {
    setObjectName("UserValues");
    auto* content = new QWidget(this);
    auto* layout = new QVBoxLayout(content);
    layout->setContentsMargins(6, 6, 6, 6);
    layout->setSpacing(4);
    m_illuminantList = new CIlluminantValue(content);
    m_spectrumList = new CSpectrumValuesListCtrl(content);
    m_illuminantList->setAccessibleName("Illuminant Value");
    m_spectrumList->setAccessibleName("Spectrum Values");
    layout->addWidget(new QLabel("Illuminant Value"));
    layout->addWidget(m_illuminantList);
    layout->addWidget(new QLabel("Spectrum Values"));
    layout->addWidget(m_spectrumList, 1);
    // In two rows: three buttons side by side would not let the pane be as narrow as it first is.
    auto* files = new QHBoxLayout;
    auto* below = new QHBoxLayout;
    connect(addButton(files, 2, "Load Values"), &QPushButton::clicked, this, &CSpectrumValuesWnd::LoadValues);
    connect(addButton(files, 3, "Save Values"), &QPushButton::clicked, this, &CSpectrumValuesWnd::SaveValues);
    connect(addButton(below, 4, "Matrix Size"), &QPushButton::clicked, this, &CSpectrumValuesWnd::EditMatrixSize);
    layout->addLayout(files);
    layout->addLayout(below);
    setWidget(content);
    ResetValues();
}

CTivVector CSpectrumValuesWnd::GetSpectrumValues() const {
    CTivVector values(m_spectrumList->RowCount(), CTivData::FormatColorFloat, nullptr, true);
    for (int row = 0; row < m_spectrumList->RowCount(); ++row) {
        const float xyz[4] = {m_spectrumList->CellNumber(row, 1), m_spectrumList->CellNumber(row, 2),
                              m_spectrumList->CellNumber(row, 3), 0.0f};
        values.SetData(row, CTivData::ColorFloat(xyz));
    }
    return values;
}

std::array<float, 4> CSpectrumValuesWnd::GetIlluminantValue() const {
    return {m_illuminantList->CellNumber(0, 1), m_illuminantList->CellNumber(0, 2), m_illuminantList->CellNumber(0, 3),
            0.0f};
}

void CSpectrumValuesWnd::ShowSpectrumValues(const CTivVector& values) {
    m_spectrumList->Resize(values.GetSize());
    for (int row = 0; row < values.GetSize(); ++row) {
        const float* xyz = values.GetData(row).AsColorFloat();
        if (!xyz) continue;
        for (int column = 1; column < 4; ++column) {
            m_spectrumList->SetCellText(row, column, QString::asprintf("%.5f", static_cast<double>(xyz[column - 1])));
        }
    }
}

void CSpectrumValuesWnd::ShowIlluminantValue(const std::array<float, 4>& value) {
    for (int column = 1; column < 4; ++column) {
        m_illuminantList->SetCellText(0, column,
                                      QString::number(truncated(value[static_cast<std::size_t>(column - 1)])));
    }
}

UserValueTexts CSpectrumValuesWnd::GetTexts() const { return {m_illuminantList->Texts(), m_spectrumList->Texts()}; }

void CSpectrumValuesWnd::ShowTexts(const UserValueTexts& texts) {
    m_illuminantList->SetTexts(texts.white);
    m_spectrumList->SetTexts(texts.patches);
}

bool CSpectrumValuesWnd::Shows(const UserValueTexts& texts) const {
    return m_illuminantList->Texts() == texts.white && m_spectrumList->Texts() == texts.patches;
}

void CSpectrumValuesWnd::SetMatrixSize(int width, int height) {
    m_chartSize.Width = width;
    m_chartSize.Height = height;
}

void CSpectrumValuesWnd::SetEnabled(bool enabled) {
    m_enabled = enabled;
    for (CListCtrlEx* list : {static_cast<CListCtrlEx*>(m_illuminantList), static_cast<CListCtrlEx*>(m_spectrumList)}) {
        list->SetEditable(enabled);
        list->SetDimmed(!enabled);
    }
}

void CSpectrumValuesWnd::ResetValues() {
    SetEnabled(false);
    m_illuminantList->Reset();
    m_spectrumList->Reset(m_chartSize.Width * m_chartSize.Height);
}

bool CSpectrumValuesWnd::AskMatrixSize() {
    int width = m_chartSize.Width;
    int height = m_chartSize.Height;
    if (!GetPrompts().EditMatrixSize(width, height)) return false;
    SetMatrixSize(width, height);
    emit matrixSizeChosen();
    return true;
}

QString CSpectrumValuesWnd::StartPath() const {
    return GetProfile().ReadString(kProfileSection, kProfileEntry, m_baseDir + "*.csv");
}

void CSpectrumValuesWnd::LoadValues() {
    const auto choice = GetPrompts().OpenFile({StartPath(), kFilter, 1, ""});
    if (!choice) return;
    LoadValuesFrom(choice->path);
    GetProfile().WriteString(kProfileSection, kProfileEntry, choice->path);
}

void CSpectrumValuesWnd::LoadValuesFrom(const QString& path) {
    emit message("Please verify the matrix dimension of the current table before loading it's spectrum values.",
                 LogInformation);
    AskMatrixSize();  // on Cancel the size stays, and loading goes on
    CTivVector values(m_chartSize.Width * m_chartSize.Height, CTivData::FormatColorFloat, nullptr, true);
    if (CCSVParser().Read(path.toStdString(), values)) {
        ShowSpectrumValues(values);
    } else {
        emit message(QString::fromStdString(CTivManager::GetLastErrorString()), LogError);
    }
}

void CSpectrumValuesWnd::SaveValues() {
    const auto choice = GetPrompts().SaveFile({StartPath(), kFilter, 1, "csv"});
    if (!choice) return;
    CCSVParser().Write(choice->path.toStdString(), GetSpectrumValues());
    GetProfile().WriteString(kProfileSection, kProfileEntry, choice->path);
}

void CSpectrumValuesWnd::EditMatrixSize() {
    AskMatrixSize();
    m_spectrumList->Resize(m_chartSize.Width *
                           m_chartSize.Height);  // on Cancel too: a load that failed may have left it
}
