#include "app/ui/CuewrightApp.h"
#include "app/ui/DemoVideo.h"
#include "app/ui/EditorWindow.h"
#include "app/ui/SymbolIcons.h"

#include <QApplication>
#include <QDir>
#include <QStandardPaths>
#include <QTextStream>

int main(int argc, char* argv[])
{
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
