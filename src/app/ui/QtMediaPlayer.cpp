#include "app/ui/QtMediaPlayer.h"

#include <QAudioDevice>
#include <QAudioOutput>
#include <QMediaDevices>
#include <QMediaPlayer>
#include <QTimer>
#include <QVideoSink>

#include <cmath>

namespace cuewright {

namespace {

    // A source that never reports a status would otherwise leave the model waiting for ever.
    constexpr int loadTimeoutMs = 15000;

} // namespace

QtMediaPlayer::QtMediaPlayer(QObject* parent)
    : QObject(parent)
    , m_player(new QMediaPlayer(this))
    , m_sink(new QVideoSink(this))
    , m_audio(new QAudioOutput(this))
    , m_loadTimeout(new QTimer(this))
{
    m_player->setVideoSink(m_sink);
    // Without an output Qt plays the picture in silence.
    m_player->setAudioOutput(m_audio);
    // Headphones plugged in during a session become the output, as elsewhere on the desktop.
    auto* devices = new QMediaDevices(this);
    connect(devices, &QMediaDevices::audioOutputsChanged, this,
        [this] { m_audio->setDevice(QMediaDevices::defaultAudioOutput()); });
    m_loadTimeout->setSingleShot(true);
    m_loadTimeout->setInterval(loadTimeoutMs);
    connect(m_loadTimeout, &QTimer::timeout, this, [this] { reportLoaded(std::nullopt); });

    connect(m_player, &QMediaPlayer::mediaStatusChanged, this, [this](QMediaPlayer::MediaStatus status) {
        switch (status) {
        case QMediaPlayer::LoadedMedia:
        case QMediaPlayer::BufferedMedia:
        case QMediaPlayer::BufferingMedia:
            if (m_player->duration() > 0)
                reportLoaded(m_player->duration() / 1000.0);
            break;
        case QMediaPlayer::InvalidMedia:
            reportLoaded(std::nullopt);
            break;
        default:
            break;
        }
    });
    // Some demuxers learn the length only after the first status.
    connect(m_player, &QMediaPlayer::durationChanged, this, [this](qint64 ms) {
        if (ms > 0 && m_player->mediaStatus() != QMediaPlayer::LoadingMedia)
            reportLoaded(ms / 1000.0);
    });
    connect(m_player, &QMediaPlayer::errorOccurred, this, [this](QMediaPlayer::Error error, const QString&) {
        if (error != QMediaPlayer::NoError)
            reportLoaded(std::nullopt);
    });
    connect(m_player, &QMediaPlayer::positionChanged, this, [this](qint64 ms) {
        if (m_pendingSeekMs && std::llabs(ms - *m_pendingSeekMs) <= 1)
            finishSeek();
    });
}

QtMediaPlayer::~QtMediaPlayer()
{
    m_loaded = nullptr;
    m_seekDone = nullptr;
}

void QtMediaPlayer::attach(const QUrl& url, std::function<void(std::optional<double>)> loaded)
{
    // A report still owed for the previous item is dropped: the model asked for this one.
    m_loaded = std::move(loaded);
    finishSeek();
    m_player->stop();
    m_player->setSource(url);
    m_loadTimeout->start();
    if (m_player->mediaStatus() == QMediaPlayer::InvalidMedia || m_player->error() != QMediaPlayer::NoError)
        reportLoaded(std::nullopt);
}

void QtMediaPlayer::reportLoaded(std::optional<double> duration)
{
    m_loadTimeout->stop();
    if (!m_loaded)
        return;
    auto loaded = std::move(m_loaded);
    m_loaded = nullptr;
    if (duration) {
        // Paused rather than stopped, so the first picture reaches the sink before playback.
        m_player->pause();
    }
    loaded(duration);
}

void QtMediaPlayer::detach()
{
    m_loaded = nullptr;
    m_loadTimeout->stop();
    finishSeek();
    m_player->stop();
    m_player->setSource(QUrl());
}

void QtMediaPlayer::seek(double seconds, std::function<void()> done)
{
    finishSeek();
    const double clamped = std::isfinite(seconds) && seconds > 0 ? seconds : 0.0;
    const auto target = static_cast<qint64>(std::llround(clamped * 1000.0));
    if (m_player->source().isEmpty() || m_player->position() == target) {
        m_player->setPosition(target);
        if (done)
            done();
        return;
    }
    m_seekDone = std::move(done);
    m_pendingSeekMs = target;
    m_player->setPosition(target);
    // The backend may settle on a neighbouring position or say nothing; the seek has been
    // handed over by the next turn of the event loop either way.
    QTimer::singleShot(250, this, [this, target] {
        if (m_pendingSeekMs == target)
            finishSeek();
    });
}

void QtMediaPlayer::finishSeek()
{
    m_pendingSeekMs.reset();
    if (auto done = std::move(m_seekDone)) {
        m_seekDone = nullptr;
        done();
    }
}

void QtMediaPlayer::play()
{
    m_player->play();
}

void QtMediaPlayer::pause()
{
    m_player->pause();
}

bool QtMediaPlayer::isPlaying() const
{
    return m_player->playbackState() == QMediaPlayer::PlayingState
        && m_player->mediaStatus() != QMediaPlayer::StalledMedia
        && m_player->mediaStatus() != QMediaPlayer::LoadingMedia && m_player->mediaStatus() != QMediaPlayer::EndOfMedia;
}

double QtMediaPlayer::currentTime() const
{
    if (m_player->source().isEmpty())
        return 0;
    return m_player->position() / 1000.0;
}

QObject* QtMediaPlayer::videoOutputHost()
{
    return m_player;
}

} // namespace cuewright
