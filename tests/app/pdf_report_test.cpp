#include "app/pdf_report.h"

#include <gtest/gtest.h>

#include <QPaintDevice>
#include <QPaintEngine>
#include <QPainterPath>
#include <QRegularExpression>
#include <QStringList>

#include "foundation/CTivImage.h"

using namespace tonewright;

namespace {

/// What was written where, page by page. Device units are points.
struct Written {
    QString text;
    QRectF place;
    int page;
};

class ListeningEngine : public QPaintEngine {
public:
    ListeningEngine() : QPaintEngine(AllFeatures) {}
    bool begin(QPaintDevice*) override { return true; }
    bool end() override { return true; }
    void updateState(const QPaintEngineState& state) override {
        if (state.state() & DirtyTransform) m_transform = state.transform();
    }
    void drawPixmap(const QRectF& place, const QPixmap&, const QRectF&) override { Draw(place); }
    void drawImage(const QRectF& place, const QImage&, const QRectF&, Qt::ImageConversionFlags) override {
        ++images;
        Draw(place);
    }
    void drawPolygon(const QPointF* points, int count, PolygonDrawMode) override {
        QPolygonF polygon;
        for (int i = 0; i < count; ++i) polygon << points[i];
        Draw(polygon.boundingRect());
    }
    void drawPath(const QPainterPath& path) override { Draw(path.boundingRect()); }
    void drawTextItem(const QPointF& at, const QTextItem& item) override {
        const QRectF place(at.x(), at.y() - item.ascent(), item.width(), item.ascent() + item.descent());
        written.push_back({item.text(), m_transform.mapRect(place), page});
        Draw(place);
    }
    Type type() const override { return User; }

    std::vector<Written> written;
    QRectF drawn;  ///< all of it
    int page = 0, images = 0;

private:
    void Draw(const QRectF& place) { drawn |= m_transform.mapRect(place); }
    QTransform m_transform;
};

class ListeningDevice : public QPaintDevice {
public:
    static constexpr int kWidth = 510, kHeight = 757;  // A4 less 15 mm at each side
    QPaintEngine* paintEngine() const override { return &engine; }
    mutable ListeningEngine engine;

protected:
    int metric(PaintDeviceMetric metric) const override {
        switch (metric) {
            case PdmWidth:
                return kWidth;
            case PdmHeight:
                return kHeight;
            case PdmDpiX:
            case PdmDpiY:
            case PdmPhysicalDpiX:
            case PdmPhysicalDpiY:
                return 72;
            case PdmDepth:
                return 32;
            case PdmDevicePixelRatio:
                return 1;
            case PdmDevicePixelRatioScaled:
                return static_cast<int>(devicePixelRatioFScale());
            default:
                return QPaintDevice::metric(metric);
        }
    }
};

Report makeReport(int columns, int rows) {
    Report report;
    report.title = "Calibration report";
    report.mean = 4.06;
    report.before = 10.82;
    report.unseen = 4.84;
    report.columns = columns;
    report.candidates = {{4, 1, 2, 3}, {7, 1, 2, 3}, {10, 1, 2, 3}};
    report.terms = 7;
    for (int i = 0; i < columns * rows; ++i) {
        ReportPatch patch;
        patch.number = i + 1;
        patch.name = "A color with a name " + std::to_string(i + 1);
        patch.difference = 1 + 0.01 * i;
        patch.isNeutral = i < 4;
        patch.outline = {{10, 10}, {20, 10}, {20, 20}, {10, 20}};
        report.patches.push_back(patch);
    }
    for (int i = 0; i < 12; ++i) {
        report.findings.push_back(
            {"dark",
             Severity::Warning,
             "Finding " + std::to_string(i) +
                 " is told in a sentence that is long enough to take "
                 "more than one line on the page, so that it has to be wrapped somewhere, and then "
                 "says what to do about it.",
             {}});
    }
    report.settings = {{"Picture", "/a/folder/whose/name/does/not/end/" + std::string(150, 'x') + ".bmp"},
                       {"Gamma", "0.45"}};
    return report;
}

QString allText(const ListeningEngine& engine) {
    QStringList words;
    for (const Written& piece : engine.written) words += piece.text;
    return words.join(' ').simplified();
}

}  // namespace

// Whatever there is to tell: it stands on a page, whole, and no two texts on each other.
TEST(PdfReport, NothingIsCutAndNothingOverlaps) {
    const CTivImage picture(400, 1400, CTivData::FormatRgb, nullptr, true);
    for (const auto& [columns, rows] : {std::pair{6, 4}, {14, 10}, {1, 1}, {30, 20}}) {
        Report report = makeReport(columns, rows);
        report.picture = &picture;
        ListeningDevice device;
        ASSERT_TRUE(DrawReport(
            device, [&] { ++device.engine.page; }, report));
        const ListeningEngine& engine = device.engine;
        EXPECT_TRUE(QRectF(-1, -1, ListeningDevice::kWidth + 2, ListeningDevice::kHeight + 2).contains(engine.drawn))
            << columns << ": " << engine.drawn.right() << " " << engine.drawn.bottom();
        EXPECT_EQ(engine.images, 1);
        const QString text = allText(engine);
        for (const char* words :
             {"Calibration report", "4.1", "10.8", "4.8", "Finding 11",
              "so that it has to be wrapped somewhere, and then", "Gamma", "Patches left out", "7 (taken)"}) {
            EXPECT_TRUE(text.contains(words)) << columns << " " << words;
        }
        EXPECT_TRUE(text.contains("1.00")) << "the first patch's row";
        EXPECT_TRUE(text.contains(QString::number(1 + 0.01 * (columns * rows - 1), 'f', 2))) << "and the last one's";
        EXPECT_TRUE(text.contains(QString("Page %1").arg(engine.page + 1)));
        EXPECT_FALSE(text.contains(QString("Page %1").arg(engine.page + 2)));
        for (std::size_t i = 1; i < engine.written.size(); ++i) {
            const Written &one = engine.written[i - 1], &other = engine.written[i];
            if (one.page != other.page || one.text.trimmed().isEmpty() || other.text.trimmed().isEmpty()) continue;
            const QRectF common = one.place.intersected(other.place.adjusted(0, 2, 0, -2));
            EXPECT_LT(common.width() * common.height(), 4)
                << one.text.toStdString() << " | " << other.text.toStdString();
        }
    }
    ListeningDevice device;
    EXPECT_FALSE(DrawReport(device, [] {}, {})) << "nothing to report";
}

TEST(PdfReport, IsAFileOfA4Pages) {
    const std::string file = PdfReport(makeReport(6, 4));
    EXPECT_TRUE(file.starts_with("%PDF-"));
    const QString words = QString::fromLatin1(file.data(), static_cast<qsizetype>(file.size()));
    EXPECT_TRUE(words.trimmed().endsWith("%%EOF"));
    auto boxes = QRegularExpression("/MediaBox \\[0 0 (\\d+)\\S* (\\d+)").globalMatch(words);
    ASSERT_TRUE(boxes.hasNext());
    for (; boxes.hasNext();) {
        const auto box = boxes.next();
        EXPECT_NEAR(box.captured(1).toInt(), 595, 1);
        EXPECT_NEAR(box.captured(2).toInt(), 842, 1);
    }
    EXPECT_TRUE(PdfReport({}).empty());
}
