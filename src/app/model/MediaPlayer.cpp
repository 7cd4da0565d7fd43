#include "app/model/MediaPlayer.h"

#include <QTimer>

namespace cuewright {

void SilentMediaPlayer::attach(const QUrl&, std::function<void(std::optional<double>)> loaded)
{
    m_time = 0;
    m_playing = false;
    if (loaded)
        QTimer::singleShot(0, [loaded = std::move(loaded)] { loaded(std::nullopt); });
}

void SilentMediaPlayer::detach()
{
    m_time = 0;
    m_playing = false;
}

void SilentMediaPlayer::seek(double seconds, std::function<void()> done)
{
    m_time = seconds;
    if (done)
        QTimer::singleShot(0, std::move(done));
}

} // namespace cuewright
