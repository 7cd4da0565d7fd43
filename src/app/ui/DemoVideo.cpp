#include "app/ui/DemoVideo.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>

namespace cuewright {

namespace {

    // About twenty seconds of speech, with sentences of caption length.
    const char* const demoScript
        = "Welcome to Vantrel Cuewright. This short video was made on your computer to show how captions work. "
          "Press transcribe, and the speech becomes timed captions in a few seconds. "
          "You can correct the words in the list, move captions on the timeline, and drag them on the picture. "
          "When everything reads well, export a subtitle file or a new video with the captions burned in.";

    bool run(const QString& program, const QStringList& arguments, QString* error)
    {
        const QString path = QStandardPaths::findExecutable(program);
        if (path.isEmpty()) {
            if (error)
                *error = QStringLiteral("The tool \u2018%1\u2019 is not installed.").arg(program);
            return false;
        }
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(path, arguments);
        if (!process.waitForFinished(120000) || process.exitStatus() != QProcess::NormalExit
            || process.exitCode() != 0) {
            if (error)
                *error = QStringLiteral("\u2018%1\u2019 failed: %2")
                             .arg(program, QString::fromLocal8Bit(process.readAll()).trimmed());
            return false;
        }
        return true;
    }

} // namespace

std::optional<QString> ensureDemoVideo(const QString& cacheDirectory, QString* error)
{
    QDir directory(cacheDirectory);
    const QString video = directory.filePath(QStringLiteral("cuewright-demo.mp4"));
    if (QFileInfo(video).size() > 0)
        return video;
    if (!directory.mkpath(QStringLiteral("."))) {
        if (error)
            *error = QStringLiteral("The folder %1 could not be created.").arg(cacheDirectory);
        return std::nullopt;
    }

    const QString speech = directory.filePath(QStringLiteral(".cuewright-demo-speech.wav"));
    const QString partial = directory.filePath(QStringLiteral(".cuewright-demo.partial.mp4"));
    const bool made = run(QStringLiteral("flite"),
                          { QStringLiteral("-voice"), QStringLiteral("slt"), QStringLiteral("-t"),
                              QString::fromUtf8(demoScript), QStringLiteral("-o"), speech },
                          error)
        && run(QStringLiteral("ffmpeg"),
            { QStringLiteral("-y"), QStringLiteral("-loglevel"), QStringLiteral("error"), QStringLiteral("-f"),
                QStringLiteral("lavfi"), QStringLiteral("-i"),
                QStringLiteral("smptehdbars=size=640x360:rate=30,drawtext=text='Vantrel Cuewright demo':"
                               "fontcolor=white:fontsize=28:x=(w-text_w)/2:y=40:box=1:boxcolor=black@0.5"),
                QStringLiteral("-i"), speech, QStringLiteral("-shortest"), QStringLiteral("-c:v"),
                QStringLiteral("libx264"), QStringLiteral("-preset"), QStringLiteral("veryfast"),
                QStringLiteral("-pix_fmt"), QStringLiteral("yuv420p"), QStringLiteral("-c:a"), QStringLiteral("aac"),
                QStringLiteral("-movflags"), QStringLiteral("+faststart"), partial },
            error);
    QFile::remove(speech);
    // The finished file appears only whole, so a broken run is never taken for the demo.
    if (!made || !QFile::rename(partial, video)) {
        QFile::remove(partial);
        if (error && error->isEmpty())
            *error = QStringLiteral("The demo video could not be written to %1.").arg(cacheDirectory);
        return std::nullopt;
    }
    return video;
}

} // namespace cuewright
