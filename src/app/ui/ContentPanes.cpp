#include "app/ui/ContentPanes.h"

#include "app/model/AppModel.h"
#include "app/ui/ContentView.h"
#include "app/ui/InspectorView.h"
#include "app/ui/PreviewCanvas.h"
#include "app/ui/TimelineView.h"

namespace cuewright {

QWidget* makePreviewPane(AppModel& model, ContentView&)
{
    return new PreviewCanvas(model);
}

QWidget* makeTimelinePane(AppModel& model, ContentView& content)
{
    auto* timeline = new TimelineView(model);
    timeline->setZoom(content.timelineZoom());
    QObject::connect(&content, &ContentView::timelineZoomChanged, timeline, &TimelineView::setZoom);
    return timeline;
}

QWidget* makeInspectorPane(AppModel& model, ContentView&)
{
    return new InspectorView(model);
}

} // namespace cuewright
