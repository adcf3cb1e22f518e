#include <gtest/gtest.h>

#include "app/toolkit/RectTracker.h"
#include "tests/app/view_support.h"

namespace {

using Hit = RectTracker::Hit;
using Cursor = RectTracker::Cursor;

constexpr ViewRect kBounds{0, 0, 200, 150};

RectTracker trackerAt(const ViewRect& rect) {
    RectTracker tracker;
    tracker.SetStyle(RectTracker::DottedLine | RectTracker::ResizeInside);
    tracker.SetRect(rect);
    return tracker;
}

TEST(RectTracker, EachHandleLiesInsideAndNamesItsCursor) {
    struct Case {
        ViewPoint point;
        Hit hit;
        Cursor cursor;
    };
    const Case cases[] = {
        {{50, 40}, Hit::TopLeft, Cursor::FallingDiagonal},
        {{56, 46}, Hit::TopLeft, Cursor::FallingDiagonal},
        {{57, 47}, Hit::Middle, Cursor::Move},
        {{100, 40}, Hit::Top, Cursor::Vertical},
        {{149, 40}, Hit::TopRight, Cursor::RisingDiagonal},
        {{149, 65}, Hit::Right, Cursor::Horizontal},
        {{149, 89}, Hit::BottomRight, Cursor::FallingDiagonal},
        {{100, 89}, Hit::Bottom, Cursor::Vertical},
        {{50, 89}, Hit::BottomLeft, Cursor::RisingDiagonal},
        {{50, 65}, Hit::Left, Cursor::Horizontal},
        {{100, 65}, Hit::Middle, Cursor::Move},
        {{49, 65}, Hit::Nothing, Cursor::Arrow},
        {{150, 65}, Hit::Nothing, Cursor::Arrow},
    };
    const RectTracker tracker = trackerAt({50, 40, 150, 90});
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.point.x << ", " << c.point.y);
        EXPECT_EQ(tracker.HitTest(c.point), c.hit);
        EXPECT_EQ(RectTracker::CursorFor(tracker.HitTest(c.point)), c.cursor);
    }
}

TEST(RectTracker, WithoutTheStyleThereAreNoHandlesAndWithoutARectangleThereIsNothing) {
    RectTracker tracker = trackerAt({50, 40, 150, 90});
    tracker.SetStyle(RectTracker::NoStyle);
    EXPECT_EQ(tracker.HitTest({50, 40}), Hit::Middle);
    tracker.SetRect({});
    EXPECT_EQ(tracker.HitTest({0, 0}), Hit::Nothing);
    EXPECT_FALSE(tracker.Begin({0, 0}));
}

TEST(RectTracker, FollowsTheMouseWithinTheBounds) {
    struct Case {
        const char* what;
        ViewPoint from, to;
        ViewRect result;
    };
    const Case cases[] = {
        {"moves", {100, 65}, {110, 60}, {60, 35, 160, 85}},
        {"moved too far, stops at the edges with its size", {100, 65}, {500, -500}, {100, 0, 200, 50}},
        {"left edge alone", {50, 65}, {30, 20}, {30, 40, 150, 90}},
        {"lower right corner moves two edges", {149, 89}, {159, 99}, {50, 40, 160, 100}},
        {"corner stops at the bounds", {149, 89}, {900, 900}, {50, 40, 200, 150}},
        {"no edge passes the opposite one", {50, 65}, {190, 65}, {148, 40, 150, 90}},
        {"nor from the other side", {100, 89}, {100, 0}, {50, 40, 150, 42}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        RectTracker tracker = trackerAt({50, 40, 150, 90});
        ASSERT_TRUE(tracker.Begin(c.from));
        tracker.Follow({1000, 1000}, kBounds);  // only the last place counts
        tracker.Follow(c.to, kBounds);
        EXPECT_EQ(tracker.GetRect(), c.result);
        EXPECT_TRUE(tracker.End());
        EXPECT_FALSE(tracker.IsFollowing());
    }
}

TEST(RectTracker, TellsNoMoveAfterReturningOrCancelling) {
    RectTracker tracker = trackerAt({50, 40, 150, 90});
    tracker.Begin({100, 65});
    tracker.Follow({120, 65}, kBounds);
    tracker.Follow({100, 65}, kBounds);
    EXPECT_FALSE(tracker.End());
    tracker.Begin({100, 65});
    tracker.Follow({120, 65}, kBounds);
    tracker.Cancel();
    EXPECT_EQ(tracker.GetRect(), (ViewRect{50, 40, 150, 90}));
    EXPECT_FALSE(tracker.End());
}

TEST(RectTracker, OutOfBoundsAtTheBeginningItNeverJumps) {
    RectTracker tracker = trackerAt({-50, 40, 50, 90});
    tracker.Begin({10, 65});
    tracker.Follow({10, 65}, kBounds);
    EXPECT_EQ(tracker.GetRect(), (ViewRect{-50, 40, 50, 90}));
    tracker.Follow({5, 66}, kBounds);
    EXPECT_EQ(tracker.GetRect(), (ViewRect{-50, 41, 50, 91}));
    EXPECT_TRUE(tracker.End());
}

}  // namespace
