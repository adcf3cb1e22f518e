#include <gtest/gtest.h>

#include "app/view/ViewGeometry.h"
#include "tests/app/view_support.h"

namespace {

struct Setting {
    int clientWidth, clientHeight, imageWidth, imageHeight;
    float zoom;
};

ViewGeometry viewOf(const Setting& s) {
    ViewGeometry view;
    view.Adapt(s.clientWidth, s.clientHeight, s.imageWidth, s.imageHeight);
    view.SetZoom(s.zoom);
    return view;
}

constexpr Setting kSmall{300, 200, 100, 80, 1.0f};     // stands at (100, 60)
constexpr Setting kHalf{200, 200, 100, 100, 0.5f};     // stands at (75, 75), 50 wide
constexpr Setting kWide{300, 200, 1000, 80, 0.5f};     // 600 columns on 300, all rows on 80 to 120
constexpr Setting kLarge{100, 100, 1000, 1000, 1.0f};  // a tenth in each direction

TEST(ViewGeometry, AnAxisThatFitsIsCentredAndOneThatDoesNotTakesTheWindow) {
    struct Case {
        Setting setting;
        ViewRect destination, source;
    };
    const Case cases[] = {
        {kSmall, {100, 60, 200, 140}, {0, 0, 100, 80}},
        {kWide, {0, 80, 300, 120}, {0, 0, 600, 80}},
        {{300, 200, 80, 1000, 0.5f}, {130, 0, 170, 200}, {0, 0, 80, 400}},
        {{1600, 900, 4096, 3000, 1.0f}, {0, 0, 1600, 900}, {0, 0, 1600, 900}},
        {{1600, 900, 4096, 3000, 0.3f}, {186, 0, 1414, 900}, {0, 0, 4096, 3000}},  // 1228.8 is 1228
        {{305, 203, 100, 100, 10.0f}, {0, 0, 305, 203}, {0, 0, 30, 20}},           // parts of a pixel are cut
        {{300, 200, 50, 50, 0.01f}, {150, 100, 150, 100}, {0, 0, 50, 50}},         // too small to be seen
    };
    for (const Case& c : cases) {
        const ViewGeometry view = viewOf(c.setting);
        EXPECT_EQ(view.GetDestination(), c.destination);
        EXPECT_EQ(view.GetSource(), c.source);
    }
}

// To the middle of what the other window shows, as near as the edges allow, and back to the pixel.
TEST(ViewGeometry, APlaceIsFoundAgainInAnotherWindowAndOnAnotherImage) {
    ViewGeometry from = viewOf(kLarge);
    from.GoTo({1.0f, 0.3, 0.6});
    EXPECT_EQ(from.GetSource(), (ViewRect{250, 550, 350, 650}));
    struct Case {
        Setting setting;
        ViewRect source;
    };
    for (const Case& c : {Case{{300, 50, 1000, 1000, 5.0f}, {150, 575, 450, 625}},
                          Case{{700, 100, 1000, 1000, 1.0f}, {0, 550, 700, 650}},  // no further to the left
                          Case{{100, 100, 500, 2000, 1.0f}, {100, 1150, 200, 1250}}, Case{kSmall, {0, 0, 100, 80}},
                          Case{{100, 100, 0, 0, 1.0f}, {0, 0, 0, 0}}}) {
        ViewGeometry view = viewOf(c.setting);
        view.FitToWindow();
        view.GoTo(from.GetPlace());
        EXPECT_EQ(view.GetZoom(), 1.0f);
        EXPECT_EQ(view.GetSource(), c.source) << c.setting.clientWidth;
        view.Adapt(c.setting.clientWidth / 2, c.setting.clientHeight, c.setting.imageWidth, c.setting.imageHeight);
        EXPECT_EQ(view.GetZoom(), 1.0f) << "fitted no longer";
    }
    ViewGeometry back = viewOf(kLarge);
    back.GoTo(from.GetPlace());
    EXPECT_EQ(back.GetSource(), from.GetSource());
}

TEST(ViewGeometry, TheWayToTheImageTruncatesAndTheWayBackRounds) {
    struct Case {
        Setting setting;
        bool toImage;
        ViewPoint in;
        bool maps;
        ViewPoint out;
    };
    constexpr ViewPoint kNowhere{};
    const Case cases[] = {
        {kWide, true, {150, 100}, true, {300, 40}},
        {kWide, true, {150, 79}, false, kNowhere},
        {kWide, false, {300, 40}, true, {150, 100}},
        {kWide, false, {301, 41}, true, {151, 101}},  // 150.5 and 20.5 go up
        {kHalf, false, {99, 99}, true, {125, 125}},   // 49.5 goes up to the edge
        {kHalf, true, {125, 125}, true, {99, 99}},    // and from the edge back to the last pixel
        {kHalf, true, {126, 100}, false, kNowhere},
        {kHalf, true, {74, 100}, false, kNowhere},
        {kHalf, false, {-1, 101}, true, {75, 126}},  // one pixel around the source still maps: trunc(-0.5 + 0.5)
        {kHalf, false, {-2, 50}, false, kNowhere},
        {kHalf, false, {50, 102}, false, kNowhere},
        {{300, 200, 7, 7, 10.0f}, true, {124, 74}, true, {0, 0}},  // stands at (115, 65): 0.9 of a pixel
        {{300, 200, 7, 7, 10.0f}, true, {125, 75}, true, {1, 1}},
        {{300, 200, 0, 0, 1.0f}, true, {150, 100}, false, kNowhere},
        {{3, 3, 100, 100, 10.0f}, true, {1, 1}, false, kNowhere},  // less than a pixel on display
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.in.x << ", " << c.in.y << " at " << c.setting.zoom);
        const ViewGeometry view = viewOf(c.setting);
        ViewPoint out{};
        EXPECT_EQ(c.toImage ? view.ClientToImage(c.in, &out) : view.ImageToClient(c.in, &out), c.maps);
        EXPECT_EQ(out, c.out);
    }
}

TEST(ViewGeometry, TheImagePointUnderTheWheelStaysUntilAnEdge) {
    ViewGeometry in = viewOf(kLarge);
    ASSERT_TRUE(in.Wheel({40, 60}, true, true));
    EXPECT_FLOAT_EQ(in.GetZoom(), 1.04f);
    EXPECT_EQ(in.GetSource(), (ViewRect{2, 3, 98, 99}));  // 96 visible: 40 - 38, 60 - 57
    ViewGeometry out = viewOf(kLarge);
    ASSERT_TRUE(out.Wheel({40, 60}, false, true));
    EXPECT_EQ(out.GetSource(), (ViewRect{0, 0, 104, 104}));  // -1 and -2 are cut off
    ASSERT_TRUE(out.Wheel({40, 60}, false, false));
    EXPECT_FLOAT_EQ(out.GetZoom(), 0.95f);

    ViewGeometry small = viewOf(kSmall);
    EXPECT_FALSE(small.Wheel({99, 100}, true, false));
    EXPECT_FALSE(small.Wheel({200, 100}, true, false));  // the first pixel beside the image
    EXPECT_EQ(small.GetZoom(), 1.0f);
    EXPECT_TRUE(small.Wheel({199, 100}, true, false));
}

TEST(ViewGeometry, AFitIsKeptInOtherWindowsUntilTheUserZoomsOrDrags) {
    const auto fittedThen = [](void (*change)(ViewGeometry&)) {
        ViewGeometry view;
        view.Adapt(400, 300, 800, 800);
        view.FitToWindow();
        EXPECT_FLOAT_EQ(view.GetZoom(), 0.375f);
        if (change) change(view);
        view.Adapt(200, 600, 800, 800);
        return view.GetZoom();
    };
    EXPECT_FLOAT_EQ(fittedThen(nullptr), 0.25f);
    EXPECT_FLOAT_EQ(fittedThen([](ViewGeometry& view) { view.FitHeight(); }), 0.75f);
    EXPECT_FLOAT_EQ(fittedThen([](ViewGeometry& view) { view.FitWidth(); }), 0.25f);
    EXPECT_FLOAT_EQ(fittedThen([](ViewGeometry& view) { view.Adapt(0, 0, 800, 800); }), 0.25f) << "out of sight";
    EXPECT_FLOAT_EQ(fittedThen([](ViewGeometry& view) { view.SetZoom(2); }), 2.0f);
    EXPECT_FLOAT_EQ(fittedThen([](ViewGeometry& view) { view.ResetScale(); }), 1.0f);
    EXPECT_FLOAT_EQ(fittedThen([](ViewGeometry& view) { view.Reset(); }), 1.0f);
    EXPECT_NEAR(fittedThen([](ViewGeometry& view) { view.Wheel({200, 150}, true, false); }), 0.385f, 1e-6f);
    EXPECT_FLOAT_EQ(fittedThen([](ViewGeometry& view) {
                        view.FitWidth();  // 0.5: higher than the window
                        view.BeginDrag({100, 100});
                        view.DragTo({100, 80});
                        view.EndDrag();
                    }),
                    0.5f);
}

TEST(ViewGeometry, AnImageThatWasShownWholeStaysSoAndIsNeverEnlarged) {
    struct Case {
        int firstWindow;
        bool isFitted;
        float zoom, inSmaller, inLarger;
    };
    for (const Case& c : {Case{400, true, 0.5f, 0.25f, 1.0f}, Case{1000, false, 1.0f, 0.25f, 1.0f}}) {
        ViewGeometry view;
        view.Adapt(c.firstWindow, c.firstWindow, 800, 600);
        EXPECT_EQ(view.FitIfLarger(), c.isFitted);
        EXPECT_FLOAT_EQ(view.GetZoom(), c.zoom);
        view.Adapt(200, 200, 800, 600);
        EXPECT_FLOAT_EQ(view.GetZoom(), c.inSmaller);
        view.Adapt(2000, 2000, 800, 600);
        EXPECT_FLOAT_EQ(view.GetZoom(), c.inLarger);
    }
    ViewGeometry zoomed;
    zoomed.Adapt(1000, 1000, 800, 600);
    zoomed.SetZoom(0.75f);
    EXPECT_FALSE(zoomed.FitIfLarger());
    zoomed.Adapt(200, 200, 800, 600);
    EXPECT_FLOAT_EQ(zoomed.GetZoom(), 0.75f);
}

TEST(ViewGeometry, ARoiIsNudgedAsFarAsTheImageGoes) {
    struct Case {
        const char* what;
        ViewRect roi;
        int dx, dy;
        bool resizes;
        ViewRect expected;
    };
    for (const Case& c : {Case{"moved", {10, 20, 30, 40}, 1, -10, false, {11, 10, 31, 30}},
                          Case{"to the corner", {10, 5, 30, 40}, -20, -10, false, {0, 0, 20, 35}},
                          Case{"to the last pixel", {60, 20, 95, 40}, 10, 0, false, {64, 20, 99, 40}},
                          Case{"grown", {10, 20, 30, 40}, 10, 1, true, {10, 20, 40, 41}},
                          Case{"grown to the edge", {10, 20, 95, 78}, 10, 10, true, {10, 20, 99, 79}},
                          Case{"shrunk to two pixels", {10, 20, 15, 22}, -10, -10, true, {10, 20, 12, 22}},
                          Case{"half outside, moved on", {-8, 20, 12, 40}, -1, 0, false, {-8, 20, 12, 40}},
                          Case{"half outside, moved back", {90, 20, 110, 40}, -1, 0, false, {89, 20, 109, 40}}}) {
        EXPECT_EQ(ViewGeometry::NudgeRoi(c.roi, c.dx, c.dy, c.resizes, 100, 80), c.expected) << c.what;
    }
}

TEST(ViewGeometry, ZoomStaysWithinItsLimits) {
    ViewGeometry view = viewOf(kLarge);
    for (int i = 0; i < 300; ++i) view.Wheel({50, 50}, true, true);
    EXPECT_EQ(view.GetZoom(), 10.0f);
    for (int i = 0; i < 300; ++i) view.Wheel({50, 50}, false, true);
    EXPECT_EQ(view.GetZoom(), 0.01f);
    view.ResetScale();
    EXPECT_EQ(view.GetZoom(), 1.0f);

    ViewGeometry camera = viewOf({1600, 900, 4096, 3000, 1.0f});
    camera.FitHeight();
    EXPECT_FLOAT_EQ(camera.GetZoom(), 0.3f);
    camera.FitWidth();
    EXPECT_FLOAT_EQ(camera.GetZoom(), 0.390625f);
    camera.FitToWindow();
    EXPECT_FLOAT_EQ(camera.GetZoom(), 0.3f);
    ViewGeometry tiny = viewOf({1600, 900, 10, 10, 1.0f});
    tiny.FitToWindow();
    EXPECT_EQ(tiny.GetZoom(), 10.0f);
    ViewGeometry nothing = viewOf({0, 0, 0, 0, 1.0f});
    nothing.FitToWindow();  // 0 / 0
    EXPECT_EQ(nothing.GetZoom(), 0.01f);
}

TEST(ViewGeometry, DraggingScrollsTheImageWithTheMouse) {
    ViewGeometry view = viewOf(kLarge);
    ASSERT_TRUE(view.BeginDrag({50, 50}));
    view.DragTo({30, 20});
    EXPECT_EQ(view.GetSource(), (ViewRect{20, 30, 120, 130}));
    view.DragTo({90, 90});  // 60 and 70 back, but no further than the corner
    EXPECT_EQ(view.GetSource(), (ViewRect{0, 0, 100, 100}));
    view.DragTo({90, 150});  // out of the window nothing moves
    view.DragTo({10, 10});
    EXPECT_EQ(view.GetSource(), (ViewRect{0, 0, 100, 100}));
    EXPECT_TRUE(view.EndDrag());
    EXPECT_FALSE(view.EndDrag());

    ViewGeometry magnified = viewOf({100, 100, 1000, 1000, 4.0f});
    ASSERT_TRUE(magnified.BeginDrag({10, 50}));
    for (const int x : {7, 5, 3}) magnified.DragTo({x, 50});
    EXPECT_EQ(magnified.GetSource(), (ViewRect{2, 0, 27, 25}));  // steps of less than a pixel are not lost
}

TEST(ViewGeometry, OnlyAnImageThatDoesNotFitIsDragged) {
    EXPECT_FALSE(viewOf(kSmall).BeginDrag({150, 100}));
    EXPECT_TRUE(viewOf(kWide).BeginDrag({150, 100}));
    EXPECT_TRUE(viewOf({300, 200, 300, 80, 1.0f}).BeginDrag({150, 100}));  // as wide as the window
    EXPECT_FALSE(viewOf({300, 200, 0, 0, 1.0f}).BeginDrag({150, 100}));
}

TEST(ViewGeometry, ADraggedImageStaysWhereItWasLeft) {
    ViewGeometry view = viewOf(kWide);
    view.BeginDrag({150, 100});
    view.DragTo({50, 100});
    view.EndDrag();
    for (int paint = 0; paint < 50; ++paint) view.Adapt(300, 200, 1000, 80);
    EXPECT_EQ(view.GetSource(), (ViewRect{200, 0, 800, 80}));
    view.Adapt(200, 200, 1000, 80);
    EXPECT_EQ(view.GetDestination(), (ViewRect{0, 80, 200, 120}));
    EXPECT_EQ(view.GetSource().Width(), 400);
}

TEST(ViewGeometry, ASmallerImageComesIntoViewFromAScrolledOne) {
    ViewGeometry view = viewOf(kLarge);
    view.BeginDrag({90, 90});
    for (int i = 0; i < 20; ++i) {
        view.DragTo({10, 10});
        view.EndDrag();
        view.BeginDrag({90, 90});
    }
    EXPECT_EQ(view.GetSource(), (ViewRect{900, 900, 1000, 1000}));
    view.Adapt(100, 100, 120, 50);
    EXPECT_EQ(view.GetSource(), (ViewRect{20, 0, 120, 50}));
    view.Adapt(100, 100, 0, 0);
    EXPECT_TRUE(view.GetSource().IsEmpty());
    view.Reset();
    EXPECT_EQ(view.GetZoom(), 1.0f);
    EXPECT_FALSE(view.IsDragging());
}

TEST(ViewGeometry, RoiAndTrackerBeginAtTheirShareAndMapToEachOther) {
    EXPECT_EQ(ViewGeometry::DefaultRoi(100, 50), (ViewRect{6, 3, 93, 46}));
    const ViewGeometry view = viewOf(kSmall);
    EXPECT_EQ(view.DefaultTracker(), (ViewRect{102, 61, 198, 139}));
    ViewRect roi, tracker;
    ASSERT_TRUE(view.TrackerToRoi({102, 61, 198, 139}, &roi));
    EXPECT_EQ(roi, (ViewRect{2, 1, 98, 79}));
    ASSERT_TRUE(view.RoiToTracker(roi, &tracker));
    EXPECT_EQ(tracker, (ViewRect{102, 61, 198, 139}));
    ASSERT_TRUE(view.TrackerToRoi({90, 50, 900, 900}, &roi));  // the part beside the image is cut off
    EXPECT_EQ(roi, (ViewRect{0, 0, 99, 79}));

    const ViewGeometry magnified = viewOf(kLarge);
    EXPECT_FALSE(magnified.RoiToTracker({10, 10, 500, 500}, &tracker));
    EXPECT_FALSE(viewOf({300, 200, 0, 0, 1.0f}).TrackerToRoi({0, 0, 10, 10}, &roi));
}

}  // namespace
