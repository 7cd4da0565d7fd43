#pragma once

#include <QUrl>

#include <functional>
#include <optional>

class QObject;

namespace cuewright {

// The model's one media player. All calls and callbacks happen on the main thread.
// The real one (Qt Multimedia) lives with the user interface; tests use a fake.
class MediaPlayer {
public:
    virtual ~MediaPlayer() = default;

    // Replaces the current item with `url` and reports its duration in seconds, or nothing
    // when it cannot be loaded. The item is in place when `loaded` runs, also after a failure.
    // `loaded` may run later, after other calls; the model ignores reports it no longer wants.
    virtual void attach(const QUrl& url, std::function<void(std::optional<double> duration)> loaded) = 0;
    // Removes the current item; currentTime() then reads 0.
    virtual void detach() = 0;

    // Exact seek (no key-frame tolerance). `done`, if given, runs once the seek has ended.
    virtual void seek(double seconds, std::function<void()> done = {}) = 0;
    virtual void play() = 0;
    virtual void pause() = 0;
    // True only while really playing; waiting to play counts as not playing.
    virtual bool isPlaying() const = 0;
    virtual double currentTime() const = 0;

    // The object that delivers the picture (e.g. the QMediaPlayer a view connects its
    // QVideoSink to); nothing for players without a picture.
    virtual QObject* videoOutputHost() { return nullptr; }
};

// A player without a picture that loads nothing: every attach reports failure. It keeps the
// position it was sought to, so the model works without a media backend.
class SilentMediaPlayer final : public MediaPlayer {
public:
    void attach(const QUrl& url, std::function<void(std::optional<double>)> loaded) override;
    void detach() override;
    void seek(double seconds, std::function<void()> done = {}) override;
    void play() override { m_playing = true; }
    void pause() override { m_playing = false; }
    bool isPlaying() const override { return m_playing; }
    double currentTime() const override { return m_time; }

private:
    double m_time = 0;
    bool m_playing = false;
};

} // namespace cuewright
