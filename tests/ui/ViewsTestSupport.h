#pragma once

// Helpers of the view tests: raw mouse events with explicit buttons and cue look-ups.

#include "model/ModelTestSupport.h"

#include <QApplication>
#include <QMouseEvent>
#include <QWidget>

namespace cuewright::testing {

// Sends a mouse event with explicit buttons, as a real drag delivers them.
inline void sendMouse(
    QWidget* widget, QEvent::Type type, QPointF position, Qt::MouseButton button, Qt::MouseButtons buttons)
{
    QMouseEvent event(type, position, widget->mapToGlobal(position), button, buttons, Qt::NoModifier);
    QApplication::sendEvent(widget, &event);
}

inline void press(QWidget* w, QPointF p)
{
    sendMouse(w, QEvent::MouseButtonPress, p, Qt::LeftButton, Qt::LeftButton);
}
inline void moveTo(QWidget* w, QPointF p)
{
    sendMouse(w, QEvent::MouseMove, p, Qt::NoButton, Qt::LeftButton);
}
inline void release(QWidget* w, QPointF p)
{
    sendMouse(w, QEvent::MouseButtonRelease, p, Qt::LeftButton, Qt::NoButton);
}

inline std::optional<CaptionCue> cueWithID(const AppModel& model, const Uuid& id)
{
    for (const auto& cue : model.document().cues)
        if (cue.id == id)
            return cue;
    return std::nullopt;
}

} // namespace cuewright::testing
