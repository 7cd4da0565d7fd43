#pragma once

class QWidget;

namespace cuewright {

class AppModel;
class ContentView;

// The three regions whose views are built on their own. Each factory is the one place that
// names the view's class, so a finished view replaces its placeholder here.
QWidget* makePreviewPane(AppModel& model, ContentView& content);
QWidget* makeTimelinePane(AppModel& model, ContentView& content);
QWidget* makeInspectorPane(AppModel& model, ContentView& content);

} // namespace cuewright
