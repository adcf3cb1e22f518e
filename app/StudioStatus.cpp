#include "app/StudioStatus.h"

#include <QLabel>
#include <QStatusBar>

#include "app/StringTable.h"
#include "app/toolkit/StatusRow.h"
#include "app/workflow/StatusTexts.h"

namespace {

struct PartRow {
    int id;
    bool extended;           // on the right
    int givesWay;            // where room is short, in this order
    const char* widestText;  // keeps its place while the numbers change; "": as wide as it needs
};

constexpr PartRow kParts[] = {
    {string_id::kBufferInformation, false, 1, ""},
    {string_id::kExecutionTime, false, 0, ""},
    {string_id::kNextPatch, false, -1, ""},
    {string_id::kPixelData, true, 3, "Pos 0000,0000 | Val 0000,0000,0000"},
    {string_id::kRoi, true, 2, "ROI s:(0000,0000), w:0000, h:0000"},
    {string_id::kZoomFactor, true, 4, "Zoom 0100.00x"},
};

}  // namespace

StudioStatus::StudioStatus(QStatusBar& bar) {
    bar.setSizeGripEnabled(false);
    auto* texts = new StatusRow(&bar);
    bar.addWidget(texts, 1);
    for (const PartRow& row : kParts) {
        QLabel* const part = texts->Add(row.extended, row.givesWay, row.widestText);
        part->setText(LoadStudioString(row.id));
        part->setObjectName(QString::number(row.id));
        if (row.id != string_id::kBufferInformation) part->setProperty("divided", true);
        m_parts[row.id] = part;
    }
    Set(string_id::kBufferInformation, status_texts::BufferAtStart());
    HideNextPatch();
    m_parts.at(string_id::kRoi)->hide();  // until colors are first selected by hand
}

void StudioStatus::Set(int id, const QString& text) { m_parts.at(id)->setText(text); }

void StudioStatus::Show(int id) { m_parts.at(id)->show(); }

void StudioStatus::Repaint(int id) { m_parts.at(id)->repaint(); }

void StudioStatus::ShowNextPatch(std::size_t picked, const ChartSize& chart) {
    Set(string_id::kNextPatch, status_texts::NextPatch(picked, chart));
    Show(string_id::kNextPatch);
}

void StudioStatus::HideNextPatch() { m_parts.at(string_id::kNextPatch)->hide(); }
