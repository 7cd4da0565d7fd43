#pragma once

// Qt first: moc trips over <concepts> when the core headers come before it.
#include <QImage>
#include <QPointer>
#include <QWidget>

#include "app/ui/CanvasDragModel.h"

#include <optional>

class QLabel;

namespace cuewright {

class AppModel;

// A caption as the preview draws it: bold system text at the style's size, padded, on its
// rounded background, with shadow and, when selected, a dashed green outline. The image's
// device-independent size is the caption's box plus room for the shadow.
struct PreviewCaptionImage {
    QImage image;
    QSizeF boxSize; // the rounded rectangle
    QPointF boxOffset; // where the box starts inside the image
};
PreviewCaptionImage renderPreviewCaption(
    const CaptionCue& cue, const CaptionStyle& style, bool selected, double maximumWidth, qreal devicePixelRatio);

// The large picture region: the player's frames fitted with their aspect kept, the caption
// active at the playhead on top, draggable to a new place; the two placeholders; the drop
// target for videos.
class PreviewCanvas : public QWidget {
    Q_OBJECT

public:
    explicit PreviewCanvas(AppModel& model, QWidget* parent = nullptr);

    const CanvasDragModel& dragModel() const { return m_drag; }
    bool videoDropTargeted() const { return m_videoDropTargeted; }
    // The rectangle of the caption drawn now, in widget coordinates; empty when none.
    QRectF captionRect() const;
    // The latest picture of the player; tests and screenshots may hand one in.
    void setFrame(const QImage& frame);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    struct Press {
        CaptionCue cue;
        QPointF position;
        bool dragging = false;
    };

    void refreshContent();
    std::optional<CaptionCue> activeCue() const;
    void setVideoDropTargeted(bool targeted);
    void cancelGesture();

    AppModel& m_model;
    CanvasDragModel m_drag;
    QImage m_frame;
    std::optional<Press> m_press;
    bool m_videoDropTargeted = false;
    QWidget* m_missingPlaceholder = nullptr;
    QLabel* m_missingName = nullptr;
    QWidget* m_emptyPlaceholder = nullptr;
    QWidget* m_dropOverlay = nullptr;
};

} // namespace cuewright
