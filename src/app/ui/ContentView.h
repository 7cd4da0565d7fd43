#pragma once

#include <QWidget>

class QAction;
class QScrollArea;
class QSplitter;

namespace cuewright {

class AppModel;
class CaptionListView;
class HeaderView;
class StatusBarView;
class TransportBar;

// The editor window's content: header, the three panes (caption list, centre column with
// preview, transport and timeline, inspector) and the status bar. It keeps the timeline
// zoom and handles the two bare keys, space and delete, which a focused text control
// takes first.
class ContentView final : public QWidget {
    Q_OBJECT
public:
    explicit ContentView(AppModel& model, QWidget* parent = nullptr);

    static constexpr int minimumContentWidth = 1160;
    static constexpr int minimumContentHeight = 720;

    AppModel& model() const { return m_model; }
    double timelineZoom() const { return m_timelineZoom; }
    void setTimelineZoom(double zoom);

    HeaderView* header() const { return m_header; }
    CaptionListView* captionList() const { return m_captionList; }
    TransportBar* transportBar() const { return m_transport; }
    StatusBarView* statusBar() const { return m_statusBar; }
    QSplitter* splitter() const { return m_splitter; }
    QWidget* previewPane() const { return m_preview; }
    QWidget* timelinePane() const { return m_timeline; }
    QWidget* inspectorPane() const { return m_inspector; }
    QAction* playbackKeyAction() const { return m_spaceKey; }
    QAction* deleteKeyAction() const { return m_deleteKey; }

signals:
    void timelineZoomChanged(double zoom);

protected:
    void showEvent(QShowEvent* event) override;

private:
    QWidget* makeCentreColumn();
    QScrollArea* makeInspectorScroll();
    void installBareKeys();

    AppModel& m_model;
    double m_timelineZoom = 1.0;
    bool m_sizedPanes = false;
    HeaderView* m_header;
    CaptionListView* m_captionList = nullptr;
    TransportBar* m_transport = nullptr;
    StatusBarView* m_statusBar = nullptr;
    QSplitter* m_splitter = nullptr;
    QWidget* m_preview = nullptr;
    QWidget* m_timeline = nullptr;
    QWidget* m_inspector = nullptr;
    QAction* m_spaceKey = nullptr;
    QAction* m_deleteKey = nullptr;
};

} // namespace cuewright
