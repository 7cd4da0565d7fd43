#include "app/ui/CuewrightApp.h"
#include "app/ui/DemoVideo.h"
#include "app/ui/EditorWindow.h"
#include "app/ui/SymbolIcons.h"

#include <QApplication>
#include <QDir>
#include <QStandardPaths>
#include <QTextStream>

extern "C" {
#include <libavutil/log.h>
}

int main(int argc, char* argv[])
{
    // The codecs, x264 above all, would otherwise fill the terminal with progress chatter.
    av_log_set_level(AV_LOG_ERROR);
    QApplication application(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("Vantrel"));
    QApplication::setApplicationName(QStringLiteral("Cuewright"));
    QApplication::setApplicationDisplayName(QStringLiteral("Vantrel Cuewright"));
    QApplication::setDesktopFileName(QStringLiteral("com.vantrel.cuewright"));
    cuewright::installIconTheme();

    QStringList arguments = application.arguments().mid(1);
    const bool demo = arguments.removeAll(QStringLiteral("--demo")) > 0;

    cuewright::CuewrightApp app;
    app.window().show();

    if (demo) {
        const QString cache = QDir(QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation))
                                  .filePath(QStringLiteral("cuewright"));
        QString error;
        if (auto video = cuewright::ensureDemoVideo(cache, &error))
            arguments.prepend(*video);
        else
            QTextStream(stderr) << "cuewright: no demo video: " << error << '\n';
    }
    app.openArguments(arguments);
    return QApplication::exec();
}
