#pragma once

#include "app/model/AppModel.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <deque>
#include <memory>

// Readable QString failures.
inline void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}

namespace cuewright::testing {

// A player whose loads finish when the test says so, or at once with `autoDuration`.
class FakePlayer final : public MediaPlayer {
public:
    struct PendingLoad {
        QUrl url;
        std::function<void(std::optional<double>)> loaded;
    };

    void attach(const QUrl& url, std::function<void(std::optional<double>)> loaded) override
    {
        attached.push_back(url);
        time = 0;
        playing = false;
        if (autoComplete)
            loaded(autoDuration);
        else
            pending.push_back({ url, std::move(loaded) });
    }
    void detach() override
    {
        ++detachCount;
        time = 0;
        playing = false;
    }
    void seek(double seconds, std::function<void()> done) override
    {
        seeks.push_back(seconds);
        time = seconds;
        if (done)
            done();
    }
    void play() override { playing = true; }
    void pause() override { playing = false; }
    bool isPlaying() const override { return playing; }
    double currentTime() const override { return time; }

    void finishLoad(std::size_t index, std::optional<double> duration) { pending.at(index).loaded(duration); }

    bool autoComplete = true;
    std::optional<double> autoDuration = 60.0;
    std::vector<QUrl> attached;
    std::deque<PendingLoad> pending;
    std::vector<double> seeks;
    int detachCount = 0;
    double time = 0;
    bool playing = false;
};

// Answers dialogs from queues; an empty queue cancels. Records what each dialog proposed.
class FakeDialogs final : public FileDialogs {
public:
    struct Request {
        std::vector<FileType> types;
        QString proposedName;
    };

    std::optional<QUrl> openFile(const std::vector<FileType>& types, const QString& name) override
    {
        opens.push_back({ types, name });
        return next(openAnswers);
    }
    std::optional<QUrl> saveFile(const std::vector<FileType>& types, const QString& name) override
    {
        saves.push_back({ types, name });
        return next(saveAnswers);
    }

    std::deque<std::optional<QUrl>> openAnswers;
    std::deque<std::optional<QUrl>> saveAnswers;
    std::vector<Request> opens;
    std::vector<Request> saves;

private:
    static std::optional<QUrl> next(std::deque<std::optional<QUrl>>& answers)
    {
        if (answers.empty())
            return std::nullopt;
        auto answer = answers.front();
        answers.pop_front();
        return answer;
    }
};

// A model on fakes, with a temporary folder for files.
class ModelTest : public ::testing::Test {
protected:
    void SetUp() override { makeModel({}); }

    void makeModel(ModelServices services)
    {
        auto player = std::make_unique<FakePlayer>();
        auto dialogs = std::make_unique<FakeDialogs>();
        clock = std::make_shared<ManualClock>(1000.0);
        this->player = player.get();
        this->dialogs = dialogs.get();
        if (!services.supportedLanguageIdentifiers)
            services.supportedLanguageIdentifiers = [] { return QStringList { "en-US" }; };
        if (!services.currentLocaleIdentifier)
            services.currentLocaleIdentifier = [] { return QString("en-US"); };
        model.reset();
        model = std::make_unique<AppModel>(AppModelSeams { std::move(player), std::move(dialogs), clock, services });
    }

    QUrl file(const QString& name) const { return QUrl::fromLocalFile(dir.filePath(name)); }

    // A 60-second video with the given cues as (start, end) pairs.
    void loadVideoWithCues(std::initializer_list<std::pair<double, double>> times)
    {
        model->loadVideo(file("talk.mov"));
        for (const auto& [start, end] : times) {
            model->addCue(start);
            model->setCueTiming(*model->selectedCueID(), start, end);
            clock->advance(1);
        }
    }

    std::vector<Uuid> cueIDs() const
    {
        std::vector<Uuid> ids;
        for (const auto& cue : model->document().cues)
            ids.push_back(cue.id);
        return ids;
    }

    QTemporaryDir dir;
    std::shared_ptr<ManualClock> clock;
    FakePlayer* player = nullptr;
    FakeDialogs* dialogs = nullptr;
    std::unique_ptr<AppModel> model;
};

// Runs the event loop until `done` holds, for at most five seconds.
template <typename Predicate> bool waitFor(Predicate done)
{
    return QTest::qWaitFor(done, 5000);
}

} // namespace cuewright::testing
