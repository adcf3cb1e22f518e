#include "app/view/CCompareViewer.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QTest>
#include <vector>

#include "app/view/CDemoImageViewerComm.h"
#include "tests/app/view_support.h"
#include "tests/support/library.h"

namespace {

constexpr int kEdge = 2;  // of the widgets, around the client area
constexpr std::uint32_t kRed = 0xFF0000, kBlue = 0x0000FF;

CTivImage plain(int width, int height, std::uint32_t color) {
    CTivImage image(width, height, CTivData::FormatRgb, nullptr, true);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) image.SetData(x, y, CTivData(CTivData::FormatRgb, color));
    }
    return image;
}

class LastPixel : public CDemoImageViewerComm {
public:
    void OnPixel(long, long, CTivData value) override { color = value.AsRgb() & 0xFFFFFF; }
    std::uint32_t color = 1;
};

/// A picture before of red and one after of blue, 1000 x 800, in windows of 400 x 300 and 200 x 300.
class CompareViewer : public testing::Test {
protected:
    CompareViewer() {
        before.resize(400 + 2 * kEdge, 300 + 2 * kEdge);
        after.resize(200 + 2 * kEdge, 300 + 2 * kEdge);
        before.show();
        after.show();
        after.SetComm(&pixel);
        Show(before, kRed);
        Show(after, kBlue);
    }
    static void Show(CImageViewerCtrl& viewer, std::uint32_t color, int width = 1000, int height = 800) {
        CTivImage image = plain(width, height, color);
        ASSERT_TRUE(viewer.SetImage(&image, true));
    }
    static void Mouse(QWidget& viewer, QEvent::Type type, int x, int y) {
        const QPointF local(x + kEdge, y + kEdge);
        QMouseEvent event(type, local, viewer.mapToGlobal(local),
                          type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton,
                          type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&viewer, &event);
    }
    static void Drag(QWidget& viewer, ViewPoint from, ViewPoint to) {
        Mouse(viewer, QEvent::MouseButtonPress, from.x, from.y);
        Mouse(viewer, QEvent::MouseMove, to.x, to.y);
        Mouse(viewer, QEvent::MouseButtonRelease, to.x, to.y);
    }
    QRgb Shown(int x, int y = 20) { return after.grab().toImage().pixel(x + kEdge, y + kEdge) & 0xFFFFFF; }
    /// What a calibration does to the viewer of its result. @param works else no picture is left
    void Recalibrate(bool works = true, int width = 1000, int height = 800) {
        after.ResetView();
        after.ClearOverlays();
        after.Image().Clear();
        if (!works) {
            after.Image().Free();
        } else if (after.Image().GetWidth() != width || after.Image().GetHeight() != height) {
            after.Image() = plain(width, height, kBlue);
        }
        if (works) after.FitIfLarger();
        after.ShowNow();
    }
    /// Both show the same middle at the same zoom, to a pixel.
    void ExpectShared(const char* when) {
        EXPECT_EQ(before.GetZoom(), after.GetZoom()) << when;
        EXPECT_NEAR(before.GetPlace().x, after.GetPlace().x, 0.001) << when;
        EXPECT_NEAR(before.GetPlace().y, after.GetPlace().y, 0.00125) << when;
    }

    CImageViewerCtrl before;
    CCompareViewer after;
    LastPixel pixel;
};

}  // namespace

TEST_F(CompareViewer, ZoomAndPlaceAreSharedFromWhicheverSideTheyAreMoved) {
    before.SetZoom(1.0f);
    Drag(before, {300, 200}, {100, 50});
    after.FitToWindow();
    ASSERT_NE(before.GetZoom(), after.GetZoom());
    after.CompareWith(&before);
    ExpectShared("at the start, from the raw side");
    EXPECT_EQ(before.Geometry().GetSource(), (ViewRect{200, 150, 600, 450}));
    EXPECT_EQ(after.Geometry().GetSource(), (ViewRect{300, 150, 500, 450})) << "the same middle";

    Drag(after, {150, 200}, {50, 100});
    EXPECT_EQ(before.Geometry().GetSource(), (ViewRect{300, 250, 700, 550}));
    after.SetZoom(2.0f);
    ExpectShared("zoomed on the right");
    before.FitToWindow();
    ExpectShared("fitted on the left");
    EXPECT_EQ(after.GetZoom(), 300.0f / 800.0f);

    after.CompareWith(nullptr);
    before.SetZoom(3.0f);
    EXPECT_EQ(after.GetZoom(), 300.0f / 800.0f);
}

// A fitted picture stays fitted in the window that it was fitted in, and the other window follows.
TEST_F(CompareViewer, WindowsMayChangeTheirSizes) {
    after.CompareWith(&before);
    before.FitToWindow();
    before.resize(800 + 2 * kEdge, 600 + 2 * kEdge);
    EXPECT_EQ(before.GetZoom(), 600.0f / 800.0f);
    ExpectShared("left window larger");
    after.resize(500 + 2 * kEdge, 100 + 2 * kEdge);
    EXPECT_EQ(before.GetZoom(), 600.0f / 800.0f);
    ExpectShared("right window flatter");
    after.FitToWindow();
    ExpectShared("fitted on the right");
    after.resize(250 + 2 * kEdge, 300 + 2 * kEdge);
    EXPECT_EQ(after.GetZoom(), 0.25f);
    ExpectShared("right window narrower");
    after.hide();
    before.SetZoom(2.0f);
    after.show();
    ExpectShared("moved while the other was hidden");
}

// While the raw window shows all of its picture, a narrow one beside it can still be scrolled.
TEST_F(CompareViewer, ANewResultComesToWhereTheEarlierOneWasLookedAt) {
    after.CompareWith(&before);
    before.SetZoom(0.375f);  // 375 x 300
    Drag(after, {180, 100}, {100, 100});
    const ViewPlace place = after.GetPlace();
    EXPECT_GT(place.x, 0.6);
    Recalibrate();
    EXPECT_EQ(after.GetPlace().x, place.x);
    EXPECT_EQ(after.GetZoom(), 0.375f);

    Recalibrate(false);
    EXPECT_EQ(before.GetZoom(), 0.375f);
    Recalibrate();
    ExpectShared("after a calibration that failed");
    EXPECT_EQ(before.GetPlace().x, 0.5);

    before.ResetView();  // as for a frame that may never come
    ExpectShared("after a reset");
    before.SetZoom(0.5f);
    Show(before, kRed, 500, 400);  // another picture, not calibrated yet
    before.FitIfLarger();
    EXPECT_EQ(after.GetZoom(), before.GetZoom());
    Recalibrate(true, 500, 400);
    ExpectShared("a result of another size");
}

TEST_F(CompareViewer, TheDividerPartsBeforeFromAfterAndSlides) {
    EXPECT_EQ(Shown(10), kBlue);
    after.CompareWith(&before);
    EXPECT_EQ(Shown(10), kRed);
    EXPECT_EQ(Shown(94), kRed);
    EXPECT_EQ(Shown(105), kBlue);
    Mouse(after, QEvent::MouseMove, 40, 30);
    EXPECT_EQ(pixel.color, kRed);
    Mouse(after, QEvent::MouseMove, 160, 30);
    EXPECT_EQ(pixel.color, kBlue);
    Mouse(after, QEvent::MouseMove, 101, 30);
    EXPECT_EQ(after.cursor().shape(), Qt::SplitHCursor);

    const ViewPlace place = after.GetPlace();
    Drag(after, {98, 50}, {50, 90});
    EXPECT_DOUBLE_EQ(after.GetDivider(), 0.25);
    EXPECT_EQ(after.IsSelected(), 1);
    EXPECT_EQ(after.GetPlace().x, place.x) << "nothing was scrolled";
    EXPECT_EQ(Shown(60), kBlue);
    Drag(after, {50, 50}, {-500, 50});
    EXPECT_EQ(after.GetDivider(), 0.0);
    EXPECT_EQ(Shown(10), kBlue);
    const auto press = [this](int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QKeyEvent event(QEvent::KeyPress, key, modifiers);
        QApplication::sendEvent(&after, &event);
    };
    press(Qt::Key_End);
    EXPECT_EQ(Shown(190), kRed);
    press(Qt::Key_Left);
    press(Qt::Key_Left, Qt::ShiftModifier);
    EXPECT_DOUBLE_EQ(after.GetDivider(), 0.89);
    Mouse(after, QEvent::MouseButtonDblClick, 178, 50);
    EXPECT_EQ(after.GetDivider(), 0.5);

    after.CompareWith(nullptr);
    press(Qt::Key_Home);
    EXPECT_EQ(after.GetDivider(), 0.5);
    EXPECT_EQ(Shown(10), kBlue);
}

// The picture before may be of another size by now, or gone.
TEST_F(CompareViewer, BeforeShowsTheSamePartOfAPictureOfAnotherSize) {
    after.CompareWith(&before);
    CTivImage halves = plain(500, 400, kRed);
    for (int y = 0; y < 400; ++y) {
        for (int x = 250; x < 500; ++x) halves.SetData(x, y, CTivData::Rgb(0, 255, 0));
    }
    ASSERT_TRUE(before.SetImage(&halves, true));
    after.SetZoom(0.2f);  // all of 1000 x 800 in 200 x 160, from line 70 on
    after.SetDivider(0.9);
    EXPECT_EQ(Shown(90, 80), kRed);
    EXPECT_EQ(Shown(120, 80), 0x00FF00u);
    EXPECT_EQ(Shown(190, 80), kBlue);
    Mouse(after, QEvent::MouseMove, 120, 80);
    EXPECT_EQ(pixel.color, 0x00FF00u);

    before.SetImage(nullptr, false);
    EXPECT_EQ(Shown(90, 80), kBlue);
    Show(after, kRed);
    before.SetZoom(0.5f);
    EXPECT_EQ(after.GetZoom(), 0.5f);
}

TEST_F(CompareViewer, TheWordsOfEachSideStandBesideTheDivider) {
    after.CompareWith(&before);
    const auto shades = [this](int left, int right) {  // along the lower edge, where the words stand
        const QImage shown = after.grab().toImage();
        int other = 0;
        for (int x = left; x < right; ++x) {
            const QRgb seen = shown.pixel(x + kEdge, 300 - 16 + kEdge) & 0xFFFFFF;
            other += seen != kRed && seen != kBlue;
        }
        return other;
    };
    EXPECT_GT(shades(60, 95), 20);
    EXPECT_GT(shades(105, 140), 20);
    after.SetDivider(0.02);
    EXPECT_EQ(shades(0, 1), 0) << "no room for the word on the left";
    EXPECT_GT(shades(12, 40), 20);
}
