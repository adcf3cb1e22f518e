#include <QApplication>
#include <QImage>
#include <QPainter>
#include <algorithm>

#include "app/view/CImageViewerCtrl.h"
#include "bench/bench_support.h"

// One paint of a 1600 x 900 viewer with an image of 4096 x 3000, at zooms from the least to the greatest, beside what
// the toolkit does by itself (wrap the image, let the painter stretch it) and beside a copy of the window's pixels.

namespace {

constexpr int kWidth = 1600, kHeight = 900;
constexpr BenchSize kCamera = {"4096x3000", 4096, 3000};

void startApplication() {
    static int argc = 1;
    static char name[] = "bench";
    static char* argv[] = {name, nullptr};
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    // Never destroyed: at the end of the process its turn would come after what it stands on.
    [[maybe_unused]] static QApplication& application = *new QApplication(argc, argv);
}

/// The image, of 12 bits where it has words of 16.
CTivImage cameraImage(CTivData::Format format) {
    CTivImage image = MakeBenchImage(format, kCamera);
    if (format != CTivData::FormatUShort) return image;
    auto* words = static_cast<std::uint16_t*>(image.GetData());
    std::for_each(words, words + std::size_t{4096} * 3000, [](std::uint16_t& word) { word &= 0x0FFF; });
    return image;
}

void paintViewer(benchmark::State& state, CTivData::Format format, float zoom) {
    startApplication();
    CImageViewerCtrl viewer;
    viewer.resize(kWidth, kHeight);
    viewer.show();
    QApplication::processEvents();  // exposed from here on, so that repaint paints
    CTivImage image = cameraImage(format);
    viewer.SetImage(&image, true);
    viewer.SetZoom(zoom);
    viewer.repaint();
    for ([[maybe_unused]] auto _ : state) viewer.repaint();
}

/// As a wheel turned fast: each paint at another zoom.
void paintWhileZooming(benchmark::State& state, CTivData::Format format) {
    startApplication();
    CImageViewerCtrl viewer;
    viewer.resize(kWidth, kHeight);
    viewer.show();
    QApplication::processEvents();  // exposed from here on, so that repaint paints
    CTivImage image = cameraImage(format);
    viewer.SetImage(&image, true);
    float zoom = 0.3f;
    for ([[maybe_unused]] auto _ : state) {
        zoom = zoom < 4.0f ? zoom + 0.04f : 0.3f;
        viewer.SetZoom(zoom);
        viewer.repaint();
    }
}

void paintByToolkit(benchmark::State& state, float zoom) {
    startApplication();
    const CTivImage image = MakeBenchImage(CTivData::FormatRgb, kCamera);
    const QImage view(static_cast<const uchar*>(image.GetData()), kCamera.width, kCamera.height, kCamera.width * 4,
                      QImage::Format_RGB32);
    QImage window(kWidth, kHeight, QImage::Format_RGB32);
    const QRectF source(0, 0, std::min(kWidth / zoom, 4096.0f), std::min(kHeight / zoom, 3000.0f));
    for ([[maybe_unused]] auto _ : state) {
        QPainter painter(&window);
        painter.drawImage(QRectF(0, 0, source.width() * zoom, source.height() * zoom), view, source);
        benchmark::ClobberMemory();
    }
}

const bool kRegistered = [] {
    for (const CTivData::Format format : {CTivData::FormatRgb, CTivData::FormatUByte, CTivData::FormatUShort,
                                          CTivData::FormatRgb10, CTivData::FormatBinary, CTivData::FormatLab}) {
        const std::string name = std::string("BM_Paint/") + CTivData::GetFormatName(format);
        for (const float zoom : {0.01f, 0.3f, 0.7f, 1.0f, 3.3f, 10.0f}) {
            benchmark::RegisterBenchmark((name + "/zoom:" + std::to_string(zoom).substr(0, 4)).c_str(),
                                         [=](benchmark::State& state) { paintViewer(state, format, zoom); })
                ->Unit(benchmark::kMillisecond);
        }
        benchmark::RegisterBenchmark((name + "/zooming").c_str(), [=](benchmark::State& state) {
            paintWhileZooming(state, format);
        })->Unit(benchmark::kMillisecond);
    }
    for (const float zoom : {0.3f, 1.0f, 3.3f}) {
        benchmark::RegisterBenchmark(("BM_Paint/toolkit/zoom:" + std::to_string(zoom).substr(0, 4)).c_str(),
                                     [=](benchmark::State& state) { paintByToolkit(state, zoom); })
            ->Unit(benchmark::kMillisecond);
    }
    benchmark::RegisterBenchmark("BM_Paint/memcpy", [](benchmark::State& state) {
        RunMemcpy(state, std::size_t{kWidth} * kHeight * 4);
    })->Unit(benchmark::kMillisecond);
    return true;
}();

}  // namespace
