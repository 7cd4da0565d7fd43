#pragma once

#include <QWidget>

class QLabel;
class QToolButton;

namespace cuewright {

class AppModel;

// The strip between the preview and the timeline: playback, stepping between captions, the
// time read-out, split and add, and the timeline's zoom. The zoom belongs to the window; the
// bar only asks for a new value through zoomRequested.
class TransportBar final : public QWidget {
    Q_OBJECT
public:
    explicit TransportBar(AppModel& model, QWidget* parent = nullptr);

    static constexpr double zoomStep = 1.25;
    static constexpr double minimumZoom = 1.0;
    static constexpr double maximumZoom = 8.0;
    static double zoomedIn(double zoom);
    static double zoomedOut(double zoom);

    // The zoom the two buttons step from.
    void setTimelineZoom(double zoom) { m_zoom = zoom; }

    QToolButton* previousButton() const { return m_previous; }
    QToolButton* playButton() const { return m_play; }
    QToolButton* nextButton() const { return m_next; }
    QToolButton* backButton() const { return m_back; }
    QToolButton* splitButton() const { return m_split; }
    QToolButton* addButton() const { return m_add; }
    QToolButton* zoomOutButton() const { return m_zoomOut; }
    QToolButton* zoomInButton() const { return m_zoomIn; }
    QLabel* timeLabel() const { return m_time; }

signals:
    void zoomRequested(double zoom);

private:
    QToolButton* iconButton(const QString& symbol, const QString& toolTip, const QString& name);

    AppModel& m_model;
    double m_zoom = 1.0;
    QToolButton* m_previous;
    QToolButton* m_play;
    QToolButton* m_next;
    QToolButton* m_back;
    QLabel* m_time;
    QToolButton* m_split;
    QToolButton* m_add;
    QToolButton* m_zoomOut;
    QToolButton* m_zoomIn;
};

} // namespace cuewright
