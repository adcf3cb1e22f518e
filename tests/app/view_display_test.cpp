#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>

#include "app/view/CDemoDIB.h"
#include "app/view/CDemoUtil.h"
#include "app/view/Overlay.h"
#include "app/view/overlay_mapping.h"
#include "tests/support/library.h"

namespace {

using D = CTivData;

constexpr QRgb gray(int value) { return qRgb(value, value, value); }

/// An image whose left and right halves have one value each.
CTivImage halves(D::Format format, int width, int height, const D& left, const D& right) {
    CTivImage image(width, height, format, nullptr, true);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) image.SetData(x, y, x < width / 2 ? left : right);
    }
    return image;
}

/// Paints a part of an image over a canvas of red.
QImage painted(CTivImage& image, const ViewRect& source, QSize size, int significantBits = -1) {
    QImage canvas(size, QImage::Format_RGB32);
    canvas.fill(Qt::red);
    QPainter painter(&canvas);
    const ViewRect destination{0, 0, size.width(), size.height()};
    EXPECT_TRUE(CDemoUtil::DisplayImage(&image, &painter, &source, &destination, significantBits));
    return canvas;
}

TEST(CDemoDIB, WrapsRowsWithoutPaddingAndCopiesOthers) {
    struct Case {
        D::Format format;
        int width, headerWidth, bitCount;
        unsigned colors;
        bool owned;
    };
    const Case cases[] = {
        {D::FormatUByte, 100, 100, 8, 256, false}, {D::FormatUByte, 101, 104, 8, 256, true},
        {D::FormatRgb, 101, 101, 32, 0, false},    {D::FormatUShort, 100, 100, 8, 256, true},
        {D::FormatBinary, 40, 64, 1, 2, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(D::GetFormatName(c.format));
        CTivImage image(c.width, 3, c.format, nullptr, true);
        const CDemoDIB dib(&image, nullptr, -1);
        EXPECT_EQ(dib.Header().width, c.headerWidth);
        EXPECT_EQ(dib.Header().height, -3);
        EXPECT_EQ(dib.Header().bitCount, c.bitCount);
        EXPECT_EQ(dib.Header().colorsImportant, c.colors);
        EXPECT_EQ(dib.IsOwned(), c.owned);
        EXPECT_EQ(dib.Data() == image.GetData(), !c.owned);
        EXPECT_EQ(dib.View().size(), QSize(c.width, 3));
        EXPECT_EQ(dib.View().constBits(), dib.Data());
        if (c.colors > 0) {
            EXPECT_EQ(dib.Table().back(), 0xFFFFFFu);
        }
    }
}

TEST(CDemoDIB, SixteenBitsAreShiftedByTheHighestBitOfTheArea) {
    struct Case {
        std::uint16_t greatest;
        int significantBits, shown;
    };
    const Case cases[] = {{0x0FFF, -1, 0xFF}, {0x0800, -1, 0x80}, {0xFFFF, -1, 0xFF}, {0x00FF, -1, 0xFF},
                          {0x0000, -1, 0x00}, {0x0FFF, 10, 0xFF}, {0x0123, 10, 0x48}, {0x0123, 16, 0x01}};
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.greatest << " at " << c.significantBits);
        CTivImage image(37, 2, D::FormatUShort, nullptr, true);
        image.SetData(36, 1, D::UShort(c.greatest));
        image.SetData(0, 0, D::UShort(0xFFFF));  // beside the area
        const ViewRect area{1, 0, 99, 99};
        const CDemoDIB dib(&image, &area, c.significantBits);
        EXPECT_EQ(dib.Data()[dib.RowBytes() + 36], c.shown);
    }
}

TEST(CDemoDIB, BitsOfABinaryImageAreTurnedRound) {
    CTivImage image(16, 1, D::FormatBinary, nullptr, true);
    image.SetData(0, 0, D::Int(1));
    image.SetData(10, 0, D::Int(1));
    const CDemoDIB dib(&image, nullptr, -1);
    EXPECT_EQ(dib.Data()[0], 0x80);
    EXPECT_EQ(dib.Data()[1], 0x20);
}

TEST(DisplayImage, EveryFormatShowsItsColors) {
    const auto word = [](D::Format format, std::uint32_t value) { return D(format, value); };
    struct Case {
        D::Format format;
        D left, right;
        QRgb leftShown, rightShown;
    };
    const Case cases[] = {
        {D::FormatUByte, D::UByte(200), D::UByte(10), gray(200), gray(10)},
        {D::FormatByte, word(D::FormatByte, 0x9C), word(D::FormatByte, 100), gray(28), gray(228)},  // -100
        {D::FormatUShort, D::UShort(0x0FF0), D::UShort(0x0120), gray(0xFF), gray(0x12)},
        {D::FormatShort, word(D::FormatShort, 0xFC18), word(D::FormatShort, 1000), gray(0), gray(255)},  // -1000
        {D::FormatFloat, D::Float(0.75f), D::Float(0.25f), gray(255), gray(0)},
        {D::FormatBinary, D::Int(1), D::Int(0), gray(255), gray(0)},
        {D::FormatRgb, D::Rgb(10, 20, 30), D::Rgb(250, 0, 1), qRgb(10, 20, 30), qRgb(250, 0, 1)},
        {D::FormatRgb10, D::Rgb10(400, 800, 1023), D::Rgb10(3, 4, 0), qRgb(100, 200, 255), qRgb(0, 1, 0)},
        {D::FormatHsv, word(D::FormatHsv, 0x000064), word(D::FormatHsv, 0x00FFFF), gray(100), qRgb(255, 0, 0)},
        {D::FormatYuv, word(D::FormatYuv, 0x648080), word(D::FormatYuv, 0x008080), gray(100), gray(0)},
        {D::FormatLab, word(D::FormatLab, 0x808080), word(D::FormatLab, 0x008080), qRgb(56, 44, 42), gray(0)},
    };
    for (const Case& c : cases) {
        CTivImage image = halves(c.format, 48, 6, c.left, c.right);
        image.SetRoi({8, 1, 16, 2});  // plays no part
        for (const QSize size : {QSize(48, 6), QSize(96, 30), QSize(24, 3), QSize(24, 12)}) {
            SCOPED_TRACE(testing::Message() << D::GetFormatName(c.format) << " on " << size.width());
            const QImage canvas = painted(image, {0, 0, 48, 6}, size);
            const int right = size.width() - 1, bottom = size.height() - 1;
            EXPECT_EQ(canvas.pixel(0, 0), c.leftShown);
            EXPECT_EQ(canvas.pixel(right / 2, bottom), c.leftShown);
            EXPECT_EQ(canvas.pixel(right / 2 + 1, 0), c.rightShown);
            EXPECT_EQ(canvas.pixel(right, bottom), c.rightShown);
        }
        EXPECT_EQ(image.GetRoi(), (CTivRect{8, 1, 16, 2}));
    }
}

TEST(DisplayImage, APartComesToItsDestinationAndNowhereElse) {
    CTivImage image(5, 4, D::FormatUByte, nullptr, true);
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 5; ++x) image.SetData(x, y, D::UByte(static_cast<std::uint8_t>(10 * y + x)));
    }
    QImage canvas(12, 8, QImage::Format_RGB32);
    canvas.fill(Qt::red);
    QPainter painter(&canvas);
    const ViewRect source{1, 2, 4, 4};
    const ViewRect same{0, 0, 3, 2}, wide{4, 0, 10, 2}, tall{4, 3, 7, 7};
    for (const ViewRect& destination : {same, wide, tall}) {
        CDemoUtil::DisplayImage(&image, &painter, &source, &destination, -1);
    }
    const int expected[8][12] = {
        // -1: untouched
        {21, 22, 23, -1, 21, 21, 22, 22, 23, 23, -1, -1}, {31, 32, 33, -1, 31, 31, 32, 32, 33, 33, -1, -1},
        {-1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1}, {-1, -1, -1, -1, 21, 22, 23, -1, -1, -1, -1, -1},
        {-1, -1, -1, -1, 21, 22, 23, -1, -1, -1, -1, -1}, {-1, -1, -1, -1, 31, 32, 33, -1, -1, -1, -1, -1},
        {-1, -1, -1, -1, 31, 32, 33, -1, -1, -1, -1, -1}, {-1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1}};
    for (int y = 0; y < 8; ++y) {
        for (int x = 0; x < 12; ++x) {
            const QRgb shown = expected[y][x] < 0 ? qRgb(255, 0, 0) : gray(expected[y][x]);
            EXPECT_EQ(canvas.pixel(x, y), shown) << x << ", " << y;
        }
    }
}

TEST(DisplayImage, MissingRectanglesAreTheWholeImageAndTheWholeDevice) {
    CTivImage image = halves(D::FormatRgb, 10, 10, D::Rgb(1, 2, 3), D::Rgb(4, 5, 6));
    QImage canvas(40, 20, QImage::Format_RGB32);
    QPainter painter(&canvas);
    ASSERT_TRUE(CDemoUtil::DisplayImage(&image, &painter, nullptr, nullptr, -1));
    EXPECT_EQ(canvas.pixel(19, 19), qRgb(1, 2, 3));
    EXPECT_EQ(canvas.pixel(39, 19), qRgb(4, 5, 6));
    canvas.fill(Qt::red);
    painter.setClipRect(10, 0, 10, 20);
    ASSERT_TRUE(CDemoUtil::DisplayImage(&image, &painter, nullptr, nullptr, -1));
    EXPECT_EQ(canvas.pixel(14, 0), qRgb(1, 2, 3));
    EXPECT_EQ(canvas.pixel(15, 0), qRgb(4, 5, 6));
    EXPECT_EQ(canvas.pixel(20, 0), qRgb(255, 0, 0));
}

TEST(DisplayImage, OnADenseScreenEachDevicePixelShowsItsOwnImagePixel) {
    CTivImage image(8, 1, D::FormatUByte, nullptr, true);
    for (int x = 0; x < 8; ++x) image.SetData(x, 0, D::UByte(static_cast<std::uint8_t>(x)));
    QImage canvas(8, 2, QImage::Format_RGB32);
    canvas.setDevicePixelRatio(2.0);
    QPainter painter(&canvas);
    const ViewRect destination{0, 0, 4, 1};  // 8 x 2 on the screen
    CDemoUtil::DisplayImage(&image, &painter, nullptr, &destination, -1);
    for (int x = 0; x < 8; ++x) EXPECT_EQ(canvas.pixel(x, 1), gray(x));
}

TEST(DisplayImage, OtherFormatsAreRefusedAndAPainterWithoutDeviceIsTold) {
    QImage canvas(8, 8, QImage::Format_RGB32);
    QPainter painter(&canvas);
    for (const auto format : {D::FormatRgb16, D::FormatInt, D::FormatDouble, D::FormatPoint, D::FormatNone}) {
        CTivImage image;
        if (format != D::FormatNone) image.Set(8, 8, format, nullptr, true);
        ClearLastError();
        EXPECT_FALSE(CDemoUtil::DisplayImage(&image, &painter, nullptr, nullptr, -1));
        EXPECT_EQ(LastError(), "CDemoUtil::DisplayImage => image format not supported");
    }
    CTivImage image(8, 8, D::FormatRgb, nullptr, true);
    QPainter idle;
    EXPECT_TRUE(CDemoUtil::DisplayImage(&image, &idle, nullptr, nullptr, -1));
    EXPECT_EQ(LastError(), "CDemoUtil::DisplayImage => Error blitting bitmap to device");
}

TEST(IntersectSegments, TellsOnWhichSegmentThePointLies) {
    struct Case {
        ViewPoint a1, a2, b1, b2;
        int answer;
        ViewPoint point;
    };
    const Case cases[] = {
        {{0, 0}, {10, 10}, {0, 10}, {10, 0}, 3, {5, 5}}, {{0, 0}, {10, 0}, {5, 5}, {5, 10}, 1, {5, 0}},
        {{5, 5}, {5, 10}, {0, 0}, {10, 0}, 2, {5, 0}},   {{0, 0}, {1, 0}, {5, 5}, {5, 10}, 4, {5, 0}},
        {{0, 0}, {10, 10}, {5, 0}, {15, 10}, 0, {0, 0}}, {{0, 0}, {30, 10}, {20, 0}, {20, 9}, 3, {20, 6}},
        {{7, 7}, {7, 7}, {0, 0}, {10, 0}, 0, {0, 0}},
    };
    for (const Case& c : cases) {
        ViewPoint point{-9, -9};
        EXPECT_EQ(CDemoUtil::IntersectSegments(c.a1, c.a2, c.b1, c.b2, &point), c.answer);
        EXPECT_EQ(point, c.point);
    }
}

TEST(ClipSegmentToRect, CutsAtTheRectangleGrownByOne) {
    struct Case {
        ViewPoint first, second;
        int count;
        ViewPoint a, b;
    };
    constexpr ViewPoint kUnset{-9, -9};
    const Case cases[] = {
        {{9, 9}, {21, 21}, 0, kUnset, kUnset},     {{15, 15}, {40, 15}, 1, {21, 15}, kUnset},
        {{0, 15}, {40, 15}, 2, {9, 15}, {21, 15}}, {{15, 40}, {15, 0}, 2, {15, 9}, {15, 21}},
        {{0, 0}, {0, 40}, 0, kUnset, kUnset},      {{0, 0}, {30, 30}, 4, {9, 9}, {21, 21}},
        {{0, 12}, {12, 0}, 0, kUnset, kUnset},
    };
    for (const Case& c : cases) {
        ViewPoint a = kUnset, b = kUnset;
        int count = -1;
        EXPECT_EQ(CDemoUtil::ClipSegmentToRect(c.first.x, c.first.y, c.second.x, c.second.y, {10, 10, 20, 20}, &a, &b,
                                               &count),
                  c.count > 0);
        EXPECT_EQ(count, c.count);
        EXPECT_EQ(a, c.a);
        EXPECT_EQ(b, c.b);
    }
}

TEST(OverlayMapping, ScalesWhatIsOnDisplayDropsTheRestAndCutsLines) {
    ViewGeometry view;
    view.Adapt(200, 200, 1000, 1000);
    view.SetZoom(2.0f);  // 100 x 100 pixels on display
    Overlay image;
    image.AddRectangle(10, 20, 30, 40, 0x33FF00);
    image.AddRectangle(90, 90, 30, 30);  // its lower corner isn't on display
    image.AddCross(50, 60, 0x0000FF, 5);
    image.AddCross(150, 60, 0x0000FF, 5);
    image.AddCircle(50, 50, 10, 0);
    image.AddLine(50, 50, 150, 50);
    image.AddLine(-50, 30, 150, 30);
    image.AddLine(0, 500, 500, 500);
    CTivVector points(2, D::FormatPoint, nullptr, true);
    static_cast<D::Point*>(points.GetDataPointer())[1] = {40, 10};
    image.AddPolyline(points);
    static_cast<D::Point*>(points.GetDataPointer())[1] = {400, 10};
    image.AddPolyline(points);

    const Overlay client = MapToClient(image, view);
    ASSERT_EQ(client.Rectangles().size(), 1u);
    const auto& rectangle = client.Rectangles()[0];
    EXPECT_EQ((ViewRect{rectangle.x, rectangle.y, rectangle.width, rectangle.height}), (ViewRect{20, 40, 60, 80}));
    ASSERT_EQ(client.Crosses().size(), 1u);
    EXPECT_EQ(client.Crosses()[0].y, 120);
    EXPECT_EQ(client.Crosses()[0].halfSize, 5);
    EXPECT_EQ(client.Circles().at(0).radius, 20.0f);
    ASSERT_EQ(client.Lines().size(), 2u);
    EXPECT_EQ(client.Lines()[0].x1, 100);
    EXPECT_EQ(client.Lines()[0].x2, 202);  // one pixel past the edge
    EXPECT_EQ(client.Lines()[1].x1, -1);   // trunc(-2 + 0.5)
    EXPECT_EQ(client.Lines()[1].x2, 202);
    ASSERT_EQ(client.Polylines().size(), 1u);
    EXPECT_EQ(client.Polylines()[0].points.GetData(1).AsPoint().x, 80);
}

TEST(OverlayDrawing, ShapesStandWhereTheyBelongInTheirColors) {
    QImage canvas(60, 40, QImage::Format_RGB32);
    canvas.fill(Qt::black);
    Overlay overlay;
    overlay.AddRectangle(10, 10, 8, 6, 0x33FF00);
    overlay.AddRectangle(30, 10, 8, 6, Overlay::kDefaultColor, 0x0000FF);
    overlay.AddCross(50, 30, 0x00FFFF, 5);
    QPainter painter(&canvas);
    overlay.Draw(painter, {0, 0}, 1.0f);
    constexpr QRgb kBlack = qRgb(0, 0, 0), kGreen = qRgb(0, 255, 51);
    for (const QPoint edge : {QPoint(10, 10), QPoint(17, 10), QPoint(10, 15), QPoint(17, 15)}) {
        EXPECT_EQ(canvas.pixel(edge), kGreen);
    }
    for (const QPoint beside : {QPoint(9, 10), QPoint(18, 15), QPoint(17, 16), QPoint(13, 13)}) {
        EXPECT_EQ(canvas.pixel(beside), kBlack);
    }
    EXPECT_EQ(canvas.pixel(30, 10), qRgb(0, 0, 255));  // the default color is blue
    EXPECT_EQ(canvas.pixel(33, 13), qRgb(255, 0, 0));
    for (const QPoint end : {QPoint(45, 30), QPoint(55, 30), QPoint(50, 25), QPoint(50, 35)}) {
        EXPECT_EQ(canvas.pixel(end), qRgb(255, 255, 0));
    }
    EXPECT_EQ(canvas.pixel(44, 30), kBlack);
    overlay.Clear();
    overlay.AddLine(40, 10, 40, 30, 0xFFFFFF);
    overlay.Draw(painter, {2, 1}, 2.0f);  // to (22, 6) - (22, 16)
    EXPECT_EQ(canvas.pixel(22, 6), qRgb(255, 255, 255));
    EXPECT_EQ(canvas.pixel(22, 16), qRgb(255, 255, 255));
    EXPECT_EQ(canvas.pixel(22, 18), kBlack);
}

}  // namespace
