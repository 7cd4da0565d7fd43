// Renders the editor in its main states to PNG files, for looking at the layout:
//   ui_screenshots <output folder> [video | --demo] [subtitles.srt]
// With a video, it is loaded and transcribed locally (or the subtitles are imported).
#include "app/model/FileDialogs.h"
#include "app/ui/ContentView.h"
#include "app/ui/CuewrightApp.h"
#include "app/ui/DemoVideo.h"
#include "app/ui/EditorWindow.h"
#include "app/ui/SymbolIcons.h"

#include <QApplication>
#include <QDir>
#include <QTest>
#include <QTextStream>

#include <deque>

namespace {

// Answers the import dialog with the subtitles given on the command line.
class ScriptedDialogs final : public cuewright::FileDialogs {
public:
    std::deque<QUrl> answers;
    std::optional<QUrl> openFile(const std::vector<cuewright::FileType>&, const QString&) override
    {
        if (answers.empty())
            return std::nullopt;
        QUrl next = answers.front();
        answers.pop_front();
        return next;
    }
    std::optional<QUrl> saveFile(const std::vector<cuewright::FileType>&, const QString&) override
    {
        return std::nullopt;
    }
};

bool save(QWidget& window, const QString& path)
{
    QCoreApplication::processEvents();
    QTest::qWait(300);
    const bool saved = window.grab().save(path);
    QTextStream(stdout) << (saved ? "wrote " : "could not write ") << path << '\n';
    return saved;
}

} // namespace

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    cuewright::installIconTheme();
    QStringList arguments = application.arguments();
    // "--demo" stands for the generated sample video.
    if (const qsizetype demo = arguments.indexOf(QStringLiteral("--demo")); demo > 0) {
        QString error;
        const auto video = cuewright::ensureDemoVideo(QDir::temp().filePath(QStringLiteral("cuewright-demo")), &error);
        if (!video) {
            QTextStream(stderr) << error << '\n';
            return 1;
        }
        arguments[demo] = *video;
    }
    if (arguments.size() < 2) {
        QTextStream(stderr) << "usage: ui_screenshots <output folder> [video] [subtitles]\n";
        return 2;
    }
    QDir output(arguments[1]);
    output.mkpath(QStringLiteral("."));

    auto dialogs = std::make_unique<ScriptedDialogs>();
    ScriptedDialogs* script = dialogs.get();
    cuewright::CuewrightApp::Options options;
    options.seams.dialogs = std::move(dialogs);
    cuewright::CuewrightApp app(std::move(options));
    cuewright::AppModel& model = app.model();
    QWidget& window = app.window();
    window.resize(1400, 860);
    window.show();
    bool ok = save(window, output.filePath(QStringLiteral("empty-window.png")));

    if (arguments.size() >= 3) {
        model.loadVideo(QUrl::fromLocalFile(QFileInfo(arguments[2]).absoluteFilePath()));
        if (!QTest::qWaitFor([&] { return model.duration() > 0; }, 15000))
            QTextStream(stderr) << "the video did not load\n";
        if (arguments.size() >= 4) {
            script->answers.push_back(QUrl::fromLocalFile(QFileInfo(arguments[3]).absoluteFilePath()));
            model.importCaptions();
        } else {
            model.transcribe();
            if (!QTest::qWaitFor([&] { return !model.isWorking(); }, 120000))
                QTextStream(stderr) << "transcription did not finish\n";
        }
        QTextStream(stdout) << model.statusMessage() << '\n';
        if (model.document().cues.size() > 2) {
            const auto& cue = model.document().cues[2];
            model.setSelectedCueID(cue.id);
            model.seek(cue.start + 0.2);
        }
        ok = save(window, output.filePath(QStringLiteral("demo-transcribed.png"))) && ok;
    }

    window.resize(400, 300);
    ok = save(window, output.filePath(QStringLiteral("minimum-size.png"))) && ok;
    return ok ? 0 : 1;
}
