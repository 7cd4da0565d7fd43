#pragma once

#include "app/model/MediaPlayer.h"

#include <QObject>
#include <QPointer>

#include <functional>
#include <optional>

class QAudioOutput;
class QMediaPlayer;
class QVideoSink;
class QTimer;

namespace cuewright {

// The model's player on Qt Multimedia. Frames go to videoSink(), which the preview paints
// itself, so the picture exists also without a window system. videoOutputHost() is the
// QMediaPlayer; its videoSink() is this sink until a view sets another.
class QtMediaPlayer final : public QObject, public MediaPlayer {
    Q_OBJECT
public:
    explicit QtMediaPlayer(QObject* parent = nullptr);
    ~QtMediaPlayer() override;

    void attach(const QUrl& url, std::function<void(std::optional<double> duration)> loaded) override;
    void detach() override;
    void seek(double seconds, std::function<void()> done = {}) override;
    void play() override;
    void pause() override;
    bool isPlaying() const override;
    double currentTime() const override;
    QObject* videoOutputHost() override;

    QVideoSink* videoSink() const { return m_sink; }
    QMediaPlayer* mediaPlayer() const { return m_player; }

private:
    void reportLoaded(std::optional<double> duration);
    void finishSeek();

    QMediaPlayer* m_player;
    QVideoSink* m_sink;
    QAudioOutput* m_audio;
    QTimer* m_loadTimeout;
    std::function<void(std::optional<double>)> m_loaded;
    std::function<void()> m_seekDone;
    std::optional<qint64> m_pendingSeekMs;
};

} // namespace cuewright
