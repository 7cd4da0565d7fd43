// One timeline drag sample over a long document: the CaptionTimeline call and the repaint
// of the visible strip. Goal: under 4 ms per sample. The first sample of a drag also paints
// the static bars once (BM_TimelineStaticRepaint), as any document change does.
#include "app/ui/TimelinePainter.h"

#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include <benchmark/benchmark.h>

#include <vector>

namespace {

using namespace cuewright;

constexpr int cueCount = 10'000;
constexpr double cueSpacing = 3.0;

CaptionDocument longDocument()
{
    std::vector<CaptionCue> cues;
    cues.reserve(cueCount);
    for (int i = 0; i < cueCount; ++i)
        cues.emplace_back(
            Uuid::generate(), i * cueSpacing, i * cueSpacing + 2.2, "Caption number " + std::to_string(i));
    return CaptionDocument(std::move(cues));
}

QGuiApplication& application()
{
    static int argc = 1;
    static char name[] = "bench_timeline_view";
    static char* argv[] = { name, nullptr };
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static QGuiApplication app(argc, argv);
    return app;
}

void BM_TimelineDragSample(benchmark::State& state)
{
    application();
    const auto document = longDocument();
    const double duration = cueCount * cueSpacing;
    const double zoom = static_cast<double>(state.range(0));
    const double width = TimelineGeometry::contentWidth(zoom);
    const TimelineCueIndex index(document.cues);
    TimelineDragModel drag;
    TimelineLayerCache cache;
    const auto& dragged = document.cues[cueCount / 2];

    // The viewport a window shows: about 1,000 points around the dragged cue.
    const double barX = TimelineGeometry::x(dragged.start, duration, width);
    const QRectF visible(std::max(0.0, barX - 500), 0, 1000, TimelineGeometry::stripHeight);
    QImage image(visible.size().toSize(), QImage::Format_ARGB32_Premultiplied);

    TimelineScene scene;
    scene.document = &document;
    scene.index = &index;
    scene.drag = &drag;
    scene.selectedCueID = dragged.id;
    scene.duration = duration;
    scene.playhead = dragged.start;
    scene.width = width;
    scene.draggedCue = &dragged;

    double translation = 0;
    for (auto _ : state) {
        translation = translation > 40 ? -40 : translation + 1.5;
        drag.sample(dragged, TimelineBarPart::middle, translation, width, document.cues, duration);
        QPainter painter(&image);
        painter.translate(-visible.left(), 0);
        cache.paint(painter, scene, visible, 1.0);
        benchmark::DoNotOptimize(image.constBits());
    }
}
BENCHMARK(BM_TimelineDragSample)->Arg(1)->Arg(8)->Unit(benchmark::kMillisecond);

// A repaint of the visible strip from scratch: what a document change or scrolling costs.
void BM_TimelineStaticRepaint(benchmark::State& state)
{
    application();
    const auto document = longDocument();
    const double duration = cueCount * cueSpacing;
    const double width = TimelineGeometry::contentWidth(static_cast<double>(state.range(0)));
    const TimelineCueIndex index(document.cues);
    const QRectF visible(width / 2, 0, 1000, TimelineGeometry::stripHeight);
    QImage image(visible.size().toSize(), QImage::Format_ARGB32_Premultiplied);
    TimelineScene scene;
    scene.document = &document;
    scene.index = &index;
    scene.duration = duration;
    scene.width = width;
    for (auto _ : state) {
        QPainter painter(&image);
        painter.translate(-visible.left(), 0);
        paintTimeline(painter, scene, visible);
        benchmark::DoNotOptimize(image.constBits());
    }
}
BENCHMARK(BM_TimelineStaticRepaint)->Arg(1)->Arg(8)->Unit(benchmark::kMillisecond);

} // namespace
