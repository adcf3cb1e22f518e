#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>
#include <string>
#include <vector>

#include "app/toolkit/Theme.h"
#include "app/view/CAutoROIImageViewer.h"
#include "app/view/CDemoImageViewerComm.h"
#include "app/view/CDockableImgPane.h"
#include "app/view/ViewerHost.h"
#include "tests/app/view_support.h"
#include "tests/support/drawn_chart.h"
#include "tests/support/library.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr int kEdge = 2;  // of the widget, around the client area

/// Hears everything that a viewer tells, and is the frame around it.
class Listener : public CDemoImageViewerComm, public ViewerHost {
public:
    void OnPixel(long x, long y, CTivData value) override {
        pixels.push_back({static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y), value.AsRgb()});
    }
    void OnRoiChanged(ViewRect roi) override { rois.push_back(roi); }
    void OnZoomChanged(float zoom) override { zooms.push_back(zoom); }
    void DeselectAllViewers() override { ++deselections; }
    void RefreshManualPick() override { ++picks; }
    bool PicksByHand() const override { return byHand; }

    std::vector<std::array<std::uint32_t, 3>> pixels;
    std::vector<ViewRect> rois;
    std::vector<float> zooms;
    int deselections = 0;
    int picks = 0;
    bool byHand = false;
};

/// An image in which each pixel tells its own place: 0x00yyyxxx.
CTivImage mapOf(int width, int height) {
    CTivImage image(width, height, CTivData::FormatRgb, nullptr, true);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            image.SetData(x, y, CTivData(CTivData::FormatRgb, static_cast<std::uint32_t>(y << 12 | x)));
        }
    }
    return image;
}

template <class Viewer>
class ViewerTest : public testing::Test {
protected:
    ViewerTest() {
        viewer.resize(300 + 2 * kEdge, 200 + 2 * kEdge);
        viewer.SetComm(&listener);
        viewer.SetHost(&listener);
        viewer.show();
    }
    void Show(CTivImage image) {
        ASSERT_TRUE(viewer.SetImage(&image, true));
        listener = {};
    }
    // Points are in client coordinates.
    void Mouse(QEvent::Type type, ViewPoint at, Qt::MouseButton button = Qt::LeftButton) {
        const QPointF local(at.x + kEdge, at.y + kEdge);
        const bool isMove = type == QEvent::MouseMove;
        QMouseEvent event(type, local, viewer.mapToGlobal(local), isMove ? Qt::NoButton : button,
                          type == QEvent::MouseButtonRelease ? Qt::NoButton : button, Qt::NoModifier);
        QApplication::sendEvent(&viewer, &event);
    }
    void Press(ViewPoint at) { Mouse(QEvent::MouseButtonPress, at); }
    void Move(ViewPoint at) { Mouse(QEvent::MouseMove, at); }
    void Release(ViewPoint at) { Mouse(QEvent::MouseButtonRelease, at); }
    void Drag(ViewPoint from, ViewPoint to) {
        Press(from);
        Move(to);
        Release(to);
    }
    void Wheel(ViewPoint at, int turn, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        const QPointF local(at.x + kEdge, at.y + kEdge);
        QWheelEvent event(local, viewer.mapToGlobal(local), {}, {0, turn}, Qt::NoButton, modifiers, Qt::NoScrollPhase,
                          false);
        QApplication::sendEvent(&viewer, &event);
    }
    void Key(int key) {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(&viewer, &event);
    }
    QRgb Shown(ViewPoint at) { return viewer.grab().toImage().pixel(at.x + kEdge, at.y + kEdge) & 0xFFFFFF; }

    Viewer viewer;
    Listener listener;
};

using ImageViewer = ViewerTest<CImageViewerCtrl>;

TEST_F(ImageViewer, BackgroundIsBandsOfDarkAndMixedCells) {
    const QImage shown = viewer.grab().toImage();
    const auto cell = [&](int column, int row) { return shown.pixel(kEdge + 4 * column, kEdge + 4 * row) & 0xFFu; };
    for (int row = 0; row < 6; ++row) {
        for (int column = 0; column < 6; ++column) {
            const bool isLight = row % 2 == 0 && column % 2 == 1;
            EXPECT_EQ(cell(column, row), isLight ? 0x28u : 0x14u) << column << ", " << row;
        }
    }
    EXPECT_EQ(shown.pixel(kEdge + 7, kEdge + 3), 0xFF282828);
    EXPECT_EQ(shown.pixel(kEdge + 8, kEdge + 3), 0xFF141414);
}

TEST_F(ImageViewer, SetImageRefusesWhatHasNoPixelsAndTakesACopyOfTheRest) {
    CTivImage nothing;
    EXPECT_FALSE(viewer.SetImage(nullptr, true));
    EXPECT_FALSE(viewer.SetImage(&nothing, true));
    CTivImage image = mapOf(160, 96);
    image.SetRoi({1, 2, 3, 4});
    ASSERT_TRUE(viewer.SetImage(&image, true));
    image.Clear();
    EXPECT_EQ(viewer.Image().GetRoi(), (CTivRect{0, 0, 160, 96}));
    EXPECT_EQ(viewer.GetRoi(), (ViewRect{10, 6, 150, 90}));
    EXPECT_THAT(listener.zooms, ElementsAre(1.0f));
    EXPECT_THAT(listener.rois, IsEmpty());
    EXPECT_EQ(Shown({70, 52}), 0x000000u);  // centred from (70, 52)
    EXPECT_EQ(Shown({229, 147}), static_cast<QRgb>(95 << 12 | 159));
    EXPECT_EQ(Shown({69, 52}), 0x141414u);  // background: column 17 of row 13, and of row 12
    EXPECT_EQ(Shown({70, 51}), 0x282828u);
}

TEST_F(ImageViewer, EachPixelShowsWhatTheMappingSaysIsThere) {
    const CTivImage image = mapOf(500, 400);
    for (const float zoom : {0.37f, 0.5f, 1.0f, 1.37f, 3.3f, 10.0f}) {
        SCOPED_TRACE(zoom);
        Show(image);
        viewer.SetZoom(zoom);
        Wheel({40, 90}, -120);
        Drag({200, 120}, {190, 110});
        const QImage shown = viewer.grab().toImage();
        const ViewRect& destination = viewer.Geometry().GetDestination();
        int wrong = 0;
        for (int y = destination.top; y < destination.bottom; ++y) {
            for (int x = destination.left; x < destination.right; ++x) {
                ViewPoint at;
                ASSERT_TRUE(viewer.ClientToImage({x, y}, &at));
                const QRgb expected = static_cast<QRgb>(at.y << 12 | at.x);
                wrong += (shown.pixel(x + kEdge, y + kEdge) & 0xFFFFFF) != expected;
            }
        }
        EXPECT_EQ(wrong, 0);
    }
}

TEST_F(ImageViewer, WheelZoomsOverTheImageFasterWithControlAndTellsIt) {
    Show(mapOf(100, 100));
    Wheel({150, 100}, 120);
    Wheel({150, 100}, 360);  // one step, however far it turned
    Wheel({150, 100}, -15);
    Wheel({150, 100}, 120, Qt::ControlModifier);
    Wheel({90, 100}, 120);  // beside the image, which stands from 97 on
    EXPECT_THAT(listener.zooms, ElementsAre(testing::FloatEq(1.01f), testing::FloatEq(1.02f), testing::FloatEq(1.01f),
                                            testing::FloatEq(1.05f)));
}

TEST_F(ImageViewer, ZoomCommandsTellTheZoomAndKeepTheLimits) {
    Show(mapOf(600, 800));
    viewer.SetZoom(99.0f);
    viewer.SetZoom(-1.0f);
    viewer.FitHeight();
    viewer.FitWidth();
    viewer.FitToWindow();
    viewer.ResetScale();
    EXPECT_THAT(listener.zooms, ElementsAre(10.0f, 0.01f, 0.25f, 0.5f, 0.25f, 1.0f));
}

TEST_F(ImageViewer, PressSelectsThisViewerAlone) {
    EXPECT_EQ(viewer.IsSelected(), 0);
    Press({10, 10});
    EXPECT_EQ(viewer.IsSelected(), 1);
    EXPECT_EQ(listener.deselections, 1);
    Mouse(QEvent::MouseButtonPress, {10, 10}, Qt::RightButton);
    EXPECT_EQ(listener.deselections, 1);
}

TEST_F(ImageViewer, TheCaptionOfTheSelectedViewerStandsOnTheColorOfItsEdge) {
    viewer.setObjectName("Raw Image");
    Show(mapOf(300, 200));
    const ViewPoint corner{7, 7};  // of the caption's ground
    EXPECT_NE(Shown(corner), theme::Now().chosen.rgb() & 0xFFFFFF);
    viewer.SetSelected(1);
    EXPECT_EQ(Shown(corner), theme::Now().chosen.rgb() & 0xFFFFFF);
    EXPECT_EQ(Shown({-1, 50}), theme::Now().chosen.rgb() & 0xFFFFFF);
}

TEST_F(ImageViewer, WordsInTheCornersAreThoseOfThePictureOnShow) {
    viewer.setObjectName("Raw Image");
    const QImage empty = viewer.grab().toImage();
    viewer.ShowBadge("out of date");
    EXPECT_EQ(viewer.grab().toImage(), empty) << "nothing is there that could be";
    Show(mapOf(300, 200));
    EXPECT_EQ(Shown({293, 8}), 0x8a1c12u);
    EXPECT_EQ(viewer.GetCaption(), "Raw Image: 300 x 200");
    Show(CTivImage(300, 200, CTivData::FormatRgb16, nullptr, true));
    EXPECT_EQ(viewer.GetCaption(), "Raw Image: 300 x 200, FormatRgb16 cannot be shown");
}

TEST_F(ImageViewer, DraggingScrollsALargeImageAndLeavesASmallOne) {
    Show(mapOf(100, 100));
    Drag({150, 100}, {120, 80});
    EXPECT_EQ(Shown({100, 50}), 0x000000u);

    Show(mapOf(1000, 900));
    Drag({150, 100}, {120, 80});
    EXPECT_EQ(Shown({0, 0}), static_cast<QRgb>(20 << 12 | 30));
    Move({150, 100});  // released: no drag any more
    EXPECT_EQ(Shown({0, 0}), static_cast<QRgb>(20 << 12 | 30));
}

TEST_F(ImageViewer, TheMouseTellsThePixelUnderIt) {
    Show(mapOf(100, 100));
    Move({130, 60});
    Move({5, 5});  // beside the image
    EXPECT_THAT(listener.pixels, ElementsAre(ElementsAre(30u, 10u, 10u << 12 | 30u)));
}

TEST_F(ImageViewer, TheCursorTellsWhatAPressWouldDo) {
    Show(mapOf(1000, 100));
    Move({10, 10});
    EXPECT_EQ(viewer.cursor().shape(), Qt::ArrowCursor);
    Move({10, 60});
    EXPECT_EQ(viewer.cursor().shape(), Qt::CrossCursor);
    Press({10, 60});
    EXPECT_EQ(viewer.cursor().shape(), Qt::SizeAllCursor);
    Release({10, 60});
    EXPECT_EQ(viewer.cursor().shape(), Qt::CrossCursor);
    viewer.EnableRoi(true);  // from (6, 52) to (294, 148)
    Move({8, 54});
    EXPECT_EQ(viewer.cursor().shape(), Qt::SizeFDiagCursor);
}

TEST_F(ImageViewer, TheRoiFollowsItsTrackerAndIsToldOnceAtTheEnd) {
    Show(mapOf(100, 100));  // stands at (100, 50)
    viewer.EnableRoi(true);
    EXPECT_THAT(listener.rois, ElementsAre(ViewRect{2, 2, 98, 98}));
    Drag({197, 147}, {147, 117});  // the lower right handle
    EXPECT_THAT(listener.rois, ElementsAre(ViewRect{2, 2, 98, 98}, ViewRect{2, 2, 48, 68}));
    Drag({120, 70}, {130, 65});  // the middle, and no further than the image's edge
    EXPECT_EQ(viewer.GetRoi(), (ViewRect{12, 0, 58, 66}));
    Drag({130, 70}, {130, 70});
    EXPECT_EQ(listener.rois.size(), 3u);

    Press({130, 70});
    Move({140, 80});
    Key(Qt::Key_Escape);
    Release({140, 80});
    EXPECT_EQ(viewer.GetRoi(), (ViewRect{12, 0, 58, 66}));
    EXPECT_EQ(listener.rois.size(), 3u);
    EXPECT_EQ(viewer.GetZoom(), 1.0f);
}

TEST_F(ImageViewer, TheTrackerIsDrawnOnlyWhileTheRoiIsOn) {
    Show(mapOf(100, 100));
    const QRgb before = Shown({103, 53});
    viewer.EnableRoi(true);
    EXPECT_NE(Shown({103, 53}), before);  // within the handle at (102, 52)
    viewer.EnableRoi(false);
    EXPECT_EQ(Shown({103, 53}), before);
    EXPECT_EQ(listener.rois.size(), 1u);  // switching it off is not told
}

TEST_F(ImageViewer, ResetViewKeepsTheRoiAndDropsZoomTrackerAndOverlay) {
    Show(mapOf(100, 100));
    viewer.EnableRoi(true);
    Drag({197, 147}, {147, 117});
    viewer.SetZoom(3.0f);
    viewer.ImageOverlay().AddCross(50, 50, 0, 5);
    viewer.ResetView();
    EXPECT_EQ(viewer.GetZoom(), 1.0f);
    EXPECT_EQ(viewer.GetRoi(), (ViewRect{2, 2, 48, 68}));
    EXPECT_TRUE(viewer.Tracker().GetRect().IsEmpty());
    EXPECT_TRUE(viewer.ImageOverlay().IsEmpty());
    viewer.EnableRoi(true);
    EXPECT_EQ(viewer.GetRoi(), (ViewRect{2, 2, 98, 98}));
}

TEST_F(ImageViewer, TheOverlayMovesWithTheImage) {
    Show(mapOf(100, 100));
    viewer.ImageOverlay().AddRectangle(20, 30, 10, 10, 0x33FF00);
    EXPECT_EQ(Shown({120, 80}), 0x00FF33u);
    viewer.SetZoom(1.5f);  // stands at (75, 25)
    EXPECT_EQ(Shown({105, 70}), 0x00FF33u);
    viewer.ClearOverlays();
    EXPECT_NE(Shown({105, 70}), 0x00FF33u);
}

TEST_F(ImageViewer, KeysZoomAndNudgeTheRoiAndTellIt) {
    Show(mapOf(400, 300));
    viewer.EnableRoi(true);
    const ViewRect roi = viewer.GetRoi();
    listener = {};
    const auto press = [&](int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QKeyEvent event(QEvent::KeyPress, key, modifiers);
        QApplication::sendEvent(&viewer, &event);
        return event.isAccepted();
    };
    press(Qt::Key_Left);
    press(Qt::Key_Up, Qt::ShiftModifier);
    press(Qt::Key_Right, Qt::ControlModifier);
    press(Qt::Key_Down, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(viewer.GetRoi(),
              (ViewRect{roi.left - 1, std::max(roi.top - 10, 0), roi.right, roi.bottom - std::min(roi.top, 10) + 10}));
    EXPECT_EQ(listener.rois.size(), 4u);
    EXPECT_EQ(listener.rois.back(), viewer.GetRoi());

    press(Qt::Key_Plus, Qt::ShiftModifier);
    press(Qt::Key_Minus);
    press(Qt::Key_Minus);
    EXPECT_FLOAT_EQ(viewer.GetZoom(), 0.8f);
    press(Qt::Key_0);
    EXPECT_FLOAT_EQ(viewer.GetZoom(), 1.0f);
    press(Qt::Key_F);
    EXPECT_FLOAT_EQ(viewer.GetZoom(), 200.0f / 300.0f);
    EXPECT_FALSE(press(Qt::Key_0, Qt::ControlModifier)) << "a key of the window";
    EXPECT_FALSE(press(Qt::Key_Return));
}

TEST_F(ImageViewer, AFittedPictureStaysFittedAndItsRoiUnderItsTracker) {
    Show(mapOf(600, 400));
    viewer.FitToWindow();
    viewer.EnableRoi(true);
    const ViewRect roi = viewer.GetRoi();
    listener = {};
    viewer.resize(150 + 2 * kEdge, 200 + 2 * kEdge);
    EXPECT_THAT(listener.zooms, ElementsAre(0.25f));
    viewer.grab();
    EXPECT_EQ(viewer.GetRoi(), roi);
    ViewPoint corner;
    ASSERT_TRUE(viewer.ImageToClient({roi.left, roi.top}, &corner));
    EXPECT_EQ(viewer.Tracker().GetRect().left, corner.x);
    EXPECT_EQ(viewer.Tracker().GetRect().top, corner.y);
}

TEST_F(ImageViewer, ADoubleClickHereDoesNothing) {
    Show(mapOf(1000, 900));
    Mouse(QEvent::MouseButtonDblClick, {150, 100});
    Move({100, 50});
    EXPECT_EQ(Shown({0, 0}), 0x000000u);
    EXPECT_EQ(listener.picks, 0);
}

TEST(DockableImgPane, ItsChildFillsIt) {
    CDockableImgPane pane("Reference Image");
    CImageViewerCtrl viewer;
    pane.SetChild(&viewer);
    pane.resize(500, 400);
    pane.show();
    EXPECT_EQ(viewer.width(), 500);
    pane.resize(640, 300);
    EXPECT_EQ(viewer.width(), 640);
    EXPECT_GT(viewer.height(), 250);
    EXPECT_EQ(pane.GetChild(), &viewer);
    pane.setWidget(nullptr);
    viewer.setParent(nullptr);
}

/// Runs detection on each ROI notification, as the frame does in automatic mode.
class DetectingViewer : public ViewerTest<CAutoROIImageViewer> {
protected:
    DetectingViewer() {
        viewer.resize(400 + 2 * kEdge, 300 + 2 * kEdge);
        viewer.SetChartSize(&size);
    }
    ChartSize size;
};

TEST_F(DetectingViewer, ANewImageHasItsRoiOnAndFindsItsPatches) {
    CTivImage image = DrawnChart().Draw();  // 310 x 210, at (45, 45)
    ASSERT_TRUE(viewer.SetImage(&image, true));
    EXPECT_THAT(listener.rois, ElementsAre(ViewRect{6, 4, 304, 206}));
    viewer.DetectPatches();
    const auto& rectangles = viewer.ImageOverlay().Rectangles();
    ASSERT_EQ(rectangles.size(), 24u);
    EXPECT_EQ(rectangles[0].x, 19);  // the patch from 10 to 49, and half of it
    EXPECT_EQ(rectangles[23].y, 169);
    EXPECT_EQ(rectangles[23].width, 20);
    EXPECT_EQ(Shown({45 + 19, 45 + 19}), 0x00FF33u);
    const CTivVector colors = viewer.GetRawColors();
    ASSERT_EQ(colors.GetSize(), 24);
    EXPECT_EQ(colors.GetData(18).AsRgb(), 0xF0F1F2u);

    EXPECT_FALSE(viewer.SetImage(nullptr, false));
}

TEST_F(DetectingViewer, AutomaticAndManualPlaceTheRoiByTheirRules) {
    Show(DrawnChart().Draw());
    viewer.DetectPatches();
    viewer.SetAutoDetect(false);
    EXPECT_EQ(viewer.GetRoi(), (ViewRect{21, 21, 42, 42}));  // a tenth of the height, both ways
    EXPECT_TRUE(viewer.ImageOverlay().IsEmpty());
    EXPECT_THAT(listener.rois, IsEmpty());
    viewer.SetZoom(0.5f);
    viewer.SetAutoDetect(true);  // 155 x 105 on display, so 3 and 2 client pixels off: 6 and 4 of the image
    EXPECT_THAT(listener.rois, ElementsAre(ViewRect{6, 4, 304, 206}));
}

TEST_F(DetectingViewer, TheRoiIsTrueToAZoomThatWasNotPaintedYet) {
    Show(mapOf(1600, 1200));
    viewer.FitToWindow();
    viewer.SetAutoDetect(true);
    EXPECT_THAT(listener.rois, ElementsAre(ViewRect{32, 24, 1568, 1176}));
}

TEST_F(DetectingViewer, ADoubleClickCentresTheRoiAndAsksForAPick) {
    Show(DrawnChart().Draw());
    viewer.SetAutoDetect(false);                     // centred on (31, 31)
    Mouse(QEvent::MouseButtonDblClick, {145, 105});  // the image's (100, 60)
    EXPECT_EQ(viewer.GetRoi(), (ViewRect{90, 50, 111, 71}));
    EXPECT_EQ(listener.picks, 1);
    EXPECT_THAT(listener.rois, IsEmpty());
    Mouse(QEvent::MouseButtonDblClick, {5, 10});  // beside the image: as it stands, and out of it
    EXPECT_EQ(viewer.GetRoi(), (ViewRect{-5, 0, 16, 21}));
    EXPECT_EQ(listener.picks, 2);
}

TEST_F(DetectingViewer, TheRoisMeanColorIsPicked) {
    DrawnChart chart;
    chart.colors.assign(24, {200, 100, 50});
    Show(chart.Draw());
    viewer.SetAutoDetect(false);
    unsigned char bgr[3] = {};
    ViewPoint centre;
    viewer.GetRoiColor(bgr, &centre);
    EXPECT_THAT(bgr, ElementsAre(50, 100, 200));
    EXPECT_EQ(centre, (ViewPoint{31, 31}));
}

// On one patch, over the edge of two, back, while it is dragged, and where no color is picked by hand.
TEST_F(DetectingViewer, ARectangleToPickWithThatHoldsTwoColorsIsDashed) {
    Show(DrawnChart().Draw());
    viewer.SetZoom(2.0f);  // from the corner; the first patch from (10, 10) to (49, 49) of the image
    viewer.SetAutoDetect(false);
    listener.byHand = true;
    const auto upperLine = [this] {  // of the outline, between the handles
        const QImage shown = viewer.grab().toImage();
        const ViewRect outline = viewer.Tracker().GetRect();
        int runs = 0;
        for (int x = outline.left + 8; x < outline.left + 18; ++x) {
            const auto isDrawn = [&](int at) { return qGray(shown.pixel(at + kEdge, outline.top + kEdge)) > 120; };
            runs += isDrawn(x) != isDrawn(x - 1);
        }
        return runs;
    };
    const auto centreOn = [this](int x, int y) { Mouse(QEvent::MouseButtonDblClick, {2 * x, 2 * y}); };
    centreOn(30, 30);
    EXPECT_FALSE(viewer.HoldsTwoColors());
    const int dotted = upperLine();
    centreOn(50, 30);
    EXPECT_TRUE(viewer.HoldsTwoColors());
    const int dashed = upperLine();
    EXPECT_LT(dashed, dotted);
    listener.byHand = false;
    EXPECT_EQ(upperLine(), dotted);
    listener.byHand = true;

    Press({2 * 50, 2 * 30});
    Move({2 * 30, 2 * 30});
    EXPECT_EQ(upperLine(), dotted) << "before the button is released";
    Key(Qt::Key_Escape);
    EXPECT_EQ(upperLine(), dashed);
    CTivImage plain(310, 210, CTivData::FormatRgb, nullptr, true);
    ASSERT_TRUE(viewer.SetImage(&plain, false));
    EXPECT_FALSE(viewer.HoldsTwoColors());
}

class CountingPrompts : public CancellingPrompts {
public:
    void ShowWarning(const QString& caption, const QString& text) override {
        warnings.push_back(caption.toStdString() + ": " + text.toStdString());
    }
    std::vector<std::string> warnings;
};

TEST_F(DetectingViewer, SaturatedPatchesWarnOnceAndAreDelivered) {
    CountingPrompts prompts;
    SetPrompts(&prompts);
    DrawnChart chart;
    chart.colors[3].red = chart.colors[18].green = 255;
    Show(chart.Draw());
    viewer.DetectPatches();
    EXPECT_EQ(viewer.GetRawColors().GetSize(), 24);
    EXPECT_THAT(prompts.warnings, ElementsAre("Warning: There are saturated colors (Red Roi)"));
    EXPECT_EQ(viewer.GetOrientedRawColors().GetSize(), 24);
    EXPECT_EQ(prompts.warnings.size(), 2u);
    SetPrompts(nullptr);
}

}  // namespace
