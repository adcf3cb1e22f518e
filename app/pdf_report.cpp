#include "app/pdf_report.h"

#include <QBuffer>
#include <QImage>
#include <QMarginsF>
#include <QPageSize>
#include <QPdfWriter>
#include <algorithm>
#include <cmath>

#include "app/ReportSheet.h"
#include "foundation/CTivImage.h"
#include "quality/color_spaces.h"
#include "report/plots.h"
#include "report/report_words.h"

using namespace tonewright;

namespace {

using Sheet = ReportSheet;
using Style = ReportSheet::Style;

constexpr double kMarginMm = 15;
constexpr int kResolution = 600;  // dots an inch
constexpr double kGap = 8;

const QColor kInk(0x1b, 0x1e, 0x23), kSoft(0x55, 0x5b, 0x66), kRule(0xc8, 0xcc, 0xd2), kPanel(0xf4, 0xf5, 0xf7),
    kAccent(0x1f, 0x5f, 0xbf), kBad(0xb3, 0x26, 0x1e), kWarn(0x8a, 0x5a, 0x00), kEdge(0x6b, 0x70, 0x78);
const Style kPlain{.size = 9, .color = kInk};
const Style kNote{.size = 8, .color = kSoft};

QString text(const std::string& words) { return QString::fromStdString(words); }
QString number(double value, int decimals) {
    return std::isfinite(value) ? QString::number(value, 'f', decimals) : QString("–");
}

QColor toColor(const LinearRgb& linear) { return QColor(QString::fromStdString(GetReportColor(linear))); }

/// @param follows what must stand on the same page, in points
void heading(Sheet& sheet, const char* words, double follows) {
    sheet.Need(34 + follows);
    if (sheet.Y() > 0) sheet.Skip(14);
    sheet.Skip(sheet.Text(words, {.size = 11.5, .weight = Sheet::Weight::Bold, .color = kInk}, 0, sheet.Width()) + 2);
    sheet.Fill({0, 0, sheet.Width(), 0.6}, kRule);
    sheet.Skip(6);
}

void paragraph(Sheet& sheet, const QString& words, const Style& style) {
    sheet.Need(sheet.HeightOf(words, style, sheet.Width()));
    sheet.Skip(sheet.Text(words, style, 0, sheet.Width()) + 4);
}

void headline(Sheet& sheet, const Report& report) {
    sheet.Skip(
        sheet.Text(text(report.title), {.size = 18, .weight = Sheet::Weight::Bold, .color = kInk}, 0, sheet.Width()) +
        4);
    if (!report.subtitle.empty()) {
        paragraph(sheet, text(report.subtitle), {.size = 9, .weight = Sheet::Weight::Bold, .color = kBad});
    }
    const ReportPatch& worst = GetWorst(report);
    std::vector<std::pair<double, QString>> figures = {
        {report.mean, report_words::kDelivered}, {worst.difference, report_words::kWorst + text(GetPatchName(worst))}};
    if (report.unseen) figures.push_back({*report.unseen, report_words::kUnseen});
    figures.push_back({report.before, report_words::kBefore});
    const double width = (sheet.Width() + kGap) / static_cast<double>(figures.size()) - kGap;
    constexpr double kHeight = 58;
    double x = 0;
    for (const auto& [value, words] : figures) {
        sheet.Fill({x, 0, width, kHeight}, kPanel);
        sheet.Text(number(value, 1), {.size = 19, .weight = Sheet::Weight::Bold, .color = x == 0 ? kAccent : kInk},
                   x + 8, width - 16, 5);
        sheet.Text(words, kNote, x + 8, width - 12, 32);
        x += width + kGap;
    }
    sheet.Skip(kHeight + 6);
    if (!report.inPicture.empty()) paragraph(sheet, text(report.inPicture) + ".", kPlain);
    if (!report.verdict.empty()) {
        const QString verdict = QString(report.hasPassed ? "Passed: " : "Not passed: ") + text(report.verdict);
        paragraph(sheet, verdict, {.size = 9, .weight = Sheet::Weight::Bold, .color = report.hasPassed ? kInk : kBad});
    }
    paragraph(sheet, report_words::kScale, kNote);
}

void findings(Sheet& sheet, const Report& report) {
    heading(sheet, report_words::kFindings, 30);
    if (report.findings.empty()) paragraph(sheet, report_words::WithoutFindings(report), kPlain);
    for (const Finding& finding : report.findings) {
        const QColor color = finding.severity == Severity::Error     ? kBad
                             : finding.severity == Severity::Warning ? kWarn
                                                                     : kEdge;
        QString word = GetSeverityName(finding.severity);
        word[0] = word[0].toUpper();
        const QString words = text(finding.text);
        constexpr double kWordWidth = 52, kIn = 9;
        const double width = sheet.Width() - kWordWidth - kIn - 4;
        const double height = sheet.HeightOf(words, kPlain, width) + 8;
        sheet.Need(height);
        sheet.Fill({0, 0, sheet.Width(), height}, kPanel);
        sheet.Fill({0, 0, 3, height}, color);
        sheet.Line(word, {.size = 9, .weight = Sheet::Weight::Bold, .color = color}, kIn, kWordWidth, 4);
        sheet.Text(words, kPlain, kIn + kWordWidth, width, 4);
        sheet.Skip(height + 4);
    }
}

QImage toImage(const CTivImage& picture) {
    if (picture.GetFormat() != CTivData::FormatRgb) return {};
    const auto* const pixels = static_cast<const uchar*>(picture.GetData());
    return QImage(pixels, picture.GetWidth(), picture.GetHeight(), picture.GetWidth() * 4, QImage::Format_RGB32);
}

void picture(Sheet& sheet, const Report& report) {
    if (!report.picture) return;
    constexpr double kMostHeight = 340;  // points: below title and findings on one page
    constexpr int kMostPixels = 1600;    // of a side; more can't be seen on paper
    const QImage whole = toImage(*report.picture);
    if (whole.isNull()) return;
    const QImage shown =
        whole.scaled(whole.size().boundedTo({kMostPixels, kMostPixels}), Qt::KeepAspectRatio, Qt::SmoothTransformation);
    QSizeF size = whole.size();
    size.scale(sheet.Width(), kMostHeight, Qt::KeepAspectRatio);
    heading(sheet, report_words::kPicture, size.height() + 20);
    sheet.Image({QPointF(), size}, shown);
    const double scale = size.width() / whole.width();
    const auto outline = [&](const ReportPatch& patch, const QColor& color, double thickness) {
        QPolygonF points;
        for (const auto& [x, y] : patch.outline) points << QPointF(x * scale, y * scale);
        if (!points.isEmpty()) sheet.Polygon(points, color, thickness);
    };
    for (const ReportPatch& patch : report.patches) {
        outline(patch, Qt::black, 1.6);
        outline(patch, Qt::white, 0.8);
    }
    outline(GetWorst(report), QColor(0xff, 0x3b, 0x30), 1.6);
    sheet.Skip(size.height() + 4);
    paragraph(sheet, report_words::kOutlines + text(GetPatchName(GetWorst(report))) + ".", kNote);
}

void swatches(Sheet& sheet, const Report& report) {
    const int columns = std::max(1, report.columns);
    const double gap = columns > 10 ? 3 : 6;
    const double width = (sheet.Width() + gap) / columns - gap;
    constexpr double kSwatch = 24, kWords = 24;
    constexpr double kMostTogether = 400;  // a chart as high as this is not parted
    const auto perRow = static_cast<std::size_t>(columns);
    const std::size_t rows = (report.patches.size() + perRow - 1) / perRow;
    const double whole = static_cast<double>(rows) * (kSwatch + kWords + gap);
    heading(sheet, report_words::kPatches, 30 + (whole < kMostTogether ? whole : kSwatch + kWords));
    paragraph(sheet, report_words::kSwatches, kNote);
    const double size = std::clamp(width / 9, 4.5, 7.5);
    for (std::size_t i = 0; i < report.patches.size(); ++i) {
        const int column = static_cast<int>(i) % columns;
        if (column == 0) sheet.Need(kSwatch + kWords + gap);
        const ReportPatch& patch = report.patches[i];
        const bool isWorst = &patch == &GetWorst(report);
        const double x = column * (width + gap);
        double part = x;
        for (const LinearRgb& color : {patch.color.measured, patch.color.target, patch.color.delivered}) {
            sheet.Fill({part, 0, width / 3, kSwatch}, toColor(color));
            part += width / 3;
        }
        const QString difference = number(patch.difference, 1) + " (" + number(patch.before, 1) + ")";
        sheet.Line(text(GetPatchName(patch)), {.size = size, .color = kInk}, x + 2, width - 3, kSwatch + 1);
        sheet.Line(difference, {.size = size, .weight = Sheet::Weight::Bold, .color = isWorst ? kBad : kInk}, x + 2,
                   width - 3, kSwatch + 2 + size * 1.35);
        sheet.Frame({x, 0, width, kSwatch + kWords}, isWorst ? kBad : kRule, isWorst ? 1.4 : 0.6);
        if (column == columns - 1 || i + 1 == report.patches.size()) sheet.Skip(kSwatch + kWords + gap);
    }
}

void plots(Sheet& sheet, const Report& report) {
    const auto css = [](const QColor& color) { return color.name().toStdString(); };
    const PlotColors colors = {css(kInk), css(kSoft), css(kRule), css(kEdge), css(kAccent), css(kBad)};
    const double width = (sheet.Width() - kGap) / 2;
    const double height = width * kPlotHeight / kPlotWidth;
    constexpr double kTitle = 16;
    heading(sheet, report_words::kPlots, height + kTitle);
    int column = 0;
    for (const ReportPlot plot : kReportPlots) {
        const std::string drawn = DrawPlot(report, plot);
        if (drawn.empty()) continue;
        if (column == 0) sheet.Need(height + kTitle + kGap);
        const double x = column * (width + kGap);
        sheet.Line(GetPlotName(plot), {.size = 9, .weight = Sheet::Weight::Bold, .color = kInk}, x + 6, width - 12, 3);
        sheet.Plot({x + 4, kTitle, width - 8, height - 8}, StandalonePlot(drawn, colors));
        sheet.Frame({x, 0, width, height + kTitle}, kRule);
        column = 1 - column;
        if (column == 0) sheet.Skip(height + kTitle + kGap);
    }
    if (column == 1) sheet.Skip(height + kTitle + kGap);
}

/// A table whose head comes again on each page.
class Table {
public:
    struct Column {
        QString title;
        double width;  ///< share of the whole
        int alignment;
    };

    Table(Sheet& sheet, std::vector<Column> columns) : m_sheet(sheet), m_columns(std::move(columns)) { Head(); }

    void Add(const std::vector<QString>& cells, const Style& style = kPlain) {
        if (m_sheet.Need(kRow)) Head();
        Row(cells, style);
    }

private:
    static constexpr double kRow = 14;

    void Head() {
        std::vector<QString> titles;
        for (const Column& column : m_columns) titles.push_back(column.title);
        Row(titles, {.size = 8, .weight = Sheet::Weight::Bold, .color = kSoft});
    }
    void Row(const std::vector<QString>& cells, Style style) {
        double x = 0;
        for (std::size_t i = 0; i < m_columns.size(); ++i) {
            const double width = m_columns[i].width * m_sheet.Width();
            style.alignment = m_columns[i].alignment;
            m_sheet.Line(cells[i], style, x + 2, width - 4, 1);
            x += width;
        }
        m_sheet.Fill({0, kRow - 0.5, m_sheet.Width(), 0.5}, kRule);
        m_sheet.Skip(kRow);
    }

    Sheet& m_sheet;
    std::vector<Column> m_columns;
};

void candidates(Sheet& sheet, const Report& report) {
    if (report.candidates.empty()) return;
    heading(sheet, report_words::kCandidates, 90);
    paragraph(sheet, report_words::kTermsMean, kNote);
    Table table(sheet, {{"Terms", 0.25, Qt::AlignLeft},
                        {"Bare fit", 0.25, Qt::AlignRight},
                        {"Delivered", 0.25, Qt::AlignRight},
                        {"Patches left out", 0.25, Qt::AlignRight}});
    for (const TermsFigures& candidate : report.candidates) {
        const bool isChosen = candidate.terms == report.terms;
        table.Add({QString::number(candidate.terms) + (isChosen ? " (taken)" : ""), number(candidate.fitted, 2),
                   number(candidate.delivered, 2), number(candidate.unseen, 2)},
                  isChosen ? Style{.size = 9, .weight = Sheet::Weight::Bold, .color = kAccent} : kPlain);
    }
}

QString lab(const Lab& color) { return number(color[0], 1) + ", " + number(color[1], 1) + ", " + number(color[2], 1); }

void numbers(Sheet& sheet, const Report& report) {
    heading(sheet, report_words::kNumbers, 60);
    Table table(sheet, {{"Patch", 0.24, Qt::AlignLeft},
                        {"Wanted L*, a*, b*", 0.25, Qt::AlignRight},
                        {"Delivered L*, a*, b*", 0.25, Qt::AlignRight},
                        {"Difference", 0.13, Qt::AlignRight},
                        {"Before", 0.13, Qt::AlignRight}});
    for (const ReportPatch& patch : report.patches) {
        table.Add({text(GetPatchName(patch)), lab(patch.color.targetLab), lab(patch.color.deliveredLab),
                   number(patch.difference, 2), number(patch.before, 2)});
    }
}

void settings(Sheet& sheet, const Report& report) {
    heading(sheet, report_words::kSettings, 40);
    constexpr double kName = 110;
    for (const ReportRow& row : report.settings) {
        const double width = sheet.Width() - kName;
        const double height = std::max(12.0, sheet.HeightOf(text(row.value), kPlain, width)) + 3;
        sheet.Need(height);
        sheet.Line(text(row.name), {.size = 9, .color = kSoft}, 2, kName - 4);
        sheet.Text(text(row.value), kPlain, kName, width);
        sheet.Fill({0, height - 1, sheet.Width(), 0.5}, kRule);
        sheet.Skip(height + 1);
    }
}

}  // namespace

bool DrawReport(QPaintDevice& device, const std::function<void()>& newPage, const Report& report) {
    if (report.patches.empty()) return false;
    ReportSheet sheet(device, newPage, text(report.title));
    if (!sheet.IsOpen()) return false;
    for (const auto& part : {headline, findings, picture, swatches, plots, candidates, numbers, settings}) {
        part(sheet, report);
    }
    return true;
}

std::string PdfReport(const Report& report) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    {
        QPdfWriter writer(&buffer);
        writer.setResolution(kResolution);
        writer.setPageSize(QPageSize(QPageSize::A4));
        writer.setPageMargins(QMarginsF(kMarginMm, kMarginMm, kMarginMm, kMarginMm), QPageLayout::Millimeter);
        writer.setTitle(text(report.title));
        writer.setCreator("Tonewright Studio");
        if (!DrawReport(
                writer, [&writer] { writer.newPage(); }, report))
            return {};
    }
    return bytes.toStdString();
}
