#include "app/model/AppModel.h"

#include "core/CaptionTiming.h"

#if __has_include("update/AppBundle.h")
#include "update/AppBundle.h"
#endif

#include <QFileInfo>
#include <QFuture>
#include <QPointer>
#include <QRegularExpression>
#include <QtConcurrent/QtConcurrentRun>

#include <unicode/locid.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace cuewright {

namespace {

    constexpr double coalescingInterval = 0.7;
    constexpr std::size_t undoLimit = 100;
    constexpr int observerIntervalMs = 50;

    // The first subtag, lower-cased; empty when the identifier has none.
    QString languageCode(const QString& identifier)
    {
        const auto end = identifier.indexOf(QRegularExpression(QStringLiteral("[-_]")));
        return identifier.left(end < 0 ? identifier.size() : end).toLower();
    }

} // namespace

AppModel::AppModel(AppModelSeams seams, QObject* parent)
    : QObject(parent)
    , m_player(seams.player ? std::move(seams.player) : std::make_unique<SilentMediaPlayer>())
    , m_dialogs(seams.dialogs ? std::move(seams.dialogs) : std::make_unique<CancellingFileDialogs>())
    , m_clock(seams.clock ? std::move(seams.clock) : std::make_shared<SystemClock>())
    , m_services(std::move(seams.services))
    , m_style(defaultCaptionStyle())
    , m_statusMessage(QStringLiteral("Add a video to begin."))
    , m_lastMutationDate(-std::numeric_limits<double>::infinity())
{
    const bool needsDefaults = !m_services.transcribe || !m_services.cuesFromWords || !m_services.exportBurnedVideo
        || !m_services.supportedLanguageIdentifiers || !m_services.currentLocaleIdentifier;
    if (needsDefaults) {
        auto defaults = defaultModelServices();
        if (!m_services.transcribe)
            m_services.transcribe = std::move(defaults.transcribe);
        if (!m_services.cuesFromWords)
            m_services.cuesFromWords = std::move(defaults.cuesFromWords);
        if (!m_services.exportBurnedVideo)
            m_services.exportBurnedVideo = std::move(defaults.exportBurnedVideo);
        if (!m_services.supportedLanguageIdentifiers)
            m_services.supportedLanguageIdentifiers = std::move(defaults.supportedLanguageIdentifiers);
        if (!m_services.currentLocaleIdentifier)
            m_services.currentLocaleIdentifier = std::move(defaults.currentLocaleIdentifier);
    }
    m_languageIdentifier
        = chooseLanguageIdentifier(m_services.supportedLanguageIdentifiers(), m_services.currentLocaleIdentifier());

    m_observer.setInterval(observerIntervalMs);
    connect(&m_observer, &QTimer::timeout, this, &AppModel::observePlayer);
    m_observer.start();
}

AppModel::~AppModel() = default;

QUrl AppModel::websiteURL() const
{
    return QUrl(QStringLiteral("https://www.vantrel.com/caption/"));
}

QUrl AppModel::feedbackURL() const
{
    return QUrl(QStringLiteral("https://feedback.vantrel.com/?app=cuewright"));
}

void AppModel::setFileDialogs(std::unique_ptr<FileDialogs> dialogs)
{
    m_dialogs = dialogs ? std::move(dialogs) : std::make_unique<CancellingFileDialogs>();
}

// ---- Setters: store, and notify only a real change (NaN never equals itself).

void AppModel::setSelectedCueID(std::optional<Uuid> id)
{
    if (m_selectedCueID == id)
        return;
    m_selectedCueID = id;
    emit selectedCueIDChanged();
}

void AppModel::setLanguageIdentifier(const QString& identifier)
{
    if (m_languageIdentifier == identifier)
        return;
    m_languageIdentifier = identifier;
    emit languageIdentifierChanged();
}

void AppModel::setExportFormat(CaptionFormat format)
{
    if (m_exportFormat == format)
        return;
    m_exportFormat = format;
    emit exportFormatChanged();
}

void AppModel::setVideoURL(const QUrl& url)
{
    if (m_videoURL == url)
        return;
    m_videoURL = url;
    emit videoURLChanged();
}

void AppModel::setProjectURL(const QUrl& url)
{
    if (m_projectURL == url)
        return;
    m_projectURL = url;
    emit projectURLChanged();
}

void AppModel::setMissingVideoPath(const std::optional<QString>& path)
{
    if (m_missingVideoPath == path)
        return;
    m_missingVideoPath = path;
    emit missingVideoPathChanged();
}

void AppModel::setDocument(const CaptionDocument& document)
{
    if (m_document == document)
        return;
    m_document = document;
    emit documentChanged();
}

void AppModel::setStyle(const CaptionStyle& style)
{
    if (m_style == style)
        return;
    m_style = style;
    emit styleChanged();
}

void AppModel::setPlayhead(double seconds)
{
    if (m_playhead == seconds)
        return;
    m_playhead = seconds;
    emit playheadChanged();
}

void AppModel::setDuration(double seconds)
{
    if (m_duration == seconds)
        return;
    m_duration = seconds;
    emit durationChanged();
}

void AppModel::setIsPlaying(bool playing)
{
    if (m_isPlaying == playing)
        return;
    m_isPlaying = playing;
    emit isPlayingChanged();
}

void AppModel::setIsWorking(bool working)
{
    if (m_isWorking == working)
        return;
    m_isWorking = working;
    emit isWorkingChanged();
}

void AppModel::setProgress(double progress)
{
    if (m_progress == progress)
        return;
    m_progress = progress;
    emit progressChanged();
}

void AppModel::setStatusMessage(const QString& message)
{
    if (m_statusMessage == message)
        return;
    m_statusMessage = message;
    emit statusMessageChanged();
}

// ---- Derived values

std::optional<CaptionCue> AppModel::selectedCue() const
{
    if (!m_selectedCueID)
        return std::nullopt;
    if (const auto index = indexOfCue(*m_selectedCueID))
        return m_document.cues[static_cast<std::size_t>(*index)];
    return std::nullopt;
}

bool AppModel::canExport() const
{
    return !m_videoURL.isEmpty() && !m_document.cues.empty() && !m_isWorking;
}

QString AppModel::selectedLanguageName() const
{
    UErrorCode status = U_ZERO_ERROR;
    const auto locale = icu::Locale::forLanguageTag(m_languageIdentifier.toStdString(), status);
    if (U_FAILURE(status) || locale.isBogus() || std::string_view(locale.getLanguage()).empty())
        return m_languageIdentifier;
    icu::UnicodeString name;
    locale.getDisplayName(icu::Locale::getDefault(), name);
    if (name.isEmpty())
        return m_languageIdentifier;
    return QString(reinterpret_cast<const QChar*>(name.getBuffer()), name.length());
}

QString AppModel::version() const
{
#if __has_include("update/AppBundle.h")
    return QString::fromStdString(AppBundle::version());
#else
    return QStringLiteral("1.0.0");
#endif
}

QStringList AppModel::supportedLanguageIdentifiers() const
{
    return m_services.supportedLanguageIdentifiers();
}

QString AppModel::chooseLanguageIdentifier(const QStringList& supported, const QString& currentLocaleIdentifier)
{
    if (supported.contains(currentLocaleIdentifier))
        return currentLocaleIdentifier;
    const auto language = languageCode(currentLocaleIdentifier);
    for (const auto& identifier : supported) {
        if (languageCode(identifier) == language)
            return identifier;
    }
    return QStringLiteral("en-US");
}

std::optional<qsizetype> AppModel::indexOfCue(const Uuid& id) const
{
    const auto& cues = m_document.cues;
    const auto it = std::find_if(cues.begin(), cues.end(), [&](const CaptionCue& cue) { return cue.id == id; });
    if (it == cues.end())
        return std::nullopt;
    return static_cast<qsizetype>(it - cues.begin());
}

std::optional<double> AppModel::normalizeLimit() const
{
    // Without a known length (no video, a failed load) a limit of 0 would drop every cue.
    if (m_duration > 0)
        return m_duration;
    return std::nullopt;
}

// ---- The mutation gate and history

AppModel::EditorSnapshot AppModel::snapshot() const
{
    return { m_document, m_style, m_selectedCueID };
}

void AppModel::restore(EditorSnapshot snapshot)
{
    setDocument(snapshot.document);
    setStyle(snapshot.style);
    setSelectedCueID(snapshot.selectedCueID);
}

void AppModel::mutate(
    const std::string& key, const std::optional<QString>& message, const std::function<void(EditorSnapshot&)>& body)
{
    const EditorSnapshot before = snapshot();
    EditorSnapshot after = before;
    body(after);
    if (after == before)
        return;

    const double now = m_clock->now();
    const bool joinsPrevious = m_lastMutationKey == key && !(now - m_lastMutationDate > coalescingInterval);
    if (!joinsPrevious) {
        m_undoStack.push_back(before);
        if (m_undoStack.size() > undoLimit)
            m_undoStack.erase(m_undoStack.begin());
    }
    m_redoStack.clear();
    m_lastMutationKey = key;
    m_lastMutationDate = now;
    restore(std::move(after));
    emit historyChanged();
    changed(message);
}

void AppModel::changed(const std::optional<QString>& message)
{
    if (message)
        setStatusMessage(*message);
    saveOpenProject();
}

void AppModel::clearHistory()
{
    const bool hadHistory = !m_undoStack.empty() || !m_redoStack.empty();
    m_undoStack.clear();
    m_redoStack.clear();
    m_lastMutationKey.reset();
    if (hadHistory)
        emit historyChanged();
}

void AppModel::undo()
{
    if (m_undoStack.empty())
        return;
    EditorSnapshot entry = std::move(m_undoStack.back());
    m_undoStack.pop_back();
    m_redoStack.push_back(snapshot());
    restore(std::move(entry));
    m_lastMutationKey.reset();
    emit historyChanged();
    changed(std::nullopt);
    setStatusMessage(QStringLiteral("Undid last edit."));
}

void AppModel::redo()
{
    if (m_redoStack.empty())
        return;
    EditorSnapshot entry = std::move(m_redoStack.back());
    m_redoStack.pop_back();
    m_undoStack.push_back(snapshot());
    restore(std::move(entry));
    m_lastMutationKey.reset();
    emit historyChanged();
    changed(std::nullopt);
    setStatusMessage(QStringLiteral("Redid edit."));
}

// ---- Cue editing without timeline rules

void AppModel::addCue(std::optional<double> time)
{
    const double t = time.value_or(m_playhead);
    const double from = t >= 0 ? t : 0;
    const auto limit = normalizeLimit();
    double start = from;
    double end = start + 2.5;
    if (limit) {
        const double latest = *limit - CaptionTiming::minimumDuration;
        start = std::min(from, latest >= 0 ? latest : 0);
        end = std::min(start + 2.5, *limit);
        if (start + CaptionTiming::minimumDuration > end)
            end = start + CaptionTiming::minimumDuration;
    }
    const CaptionCue cue(Uuid::generate(), start, end, "New caption");
    mutate("add", QStringLiteral("Caption added."), [&](EditorSnapshot& s) {
        s.document.cues.push_back(cue);
        s.document.normalize(limit);
        s.selectedCueID = cue.id;
    });
}

void AppModel::updateSelected(const std::function<void(CaptionCue&)>& body)
{
    if (!m_selectedCueID)
        return;
    const auto index = indexOfCue(*m_selectedCueID);
    if (!index)
        return;
    const Uuid id = *m_selectedCueID;
    const auto limit = normalizeLimit();
    mutate("cue-" + id.toString(), std::nullopt, [&](EditorSnapshot& s) {
        body(s.document.cues.mutableAt(static_cast<std::size_t>(*index)));
        s.document.normalize(limit);
        s.selectedCueID = id;
    });
}

void AppModel::setCueTiming(const Uuid& id, double start, double end)
{
    const auto index = indexOfCue(id);
    if (!index)
        return;
    const auto limit = normalizeLimit();
    mutate("timing-" + id.toString(), std::nullopt, [&](EditorSnapshot& s) {
        auto& cue = s.document.cues.mutableAt(static_cast<std::size_t>(*index));
        cue.start = start;
        cue.end = end;
        s.document.normalize(limit);
        s.selectedCueID = id;
    });
}

void AppModel::setCuePosition(const Uuid& id, double x, double y)
{
    const auto index = indexOfCue(id);
    if (!index)
        return;
    mutate("position-" + id.toString(), QStringLiteral("Caption position updated."), [&](EditorSnapshot& s) {
        const auto& current = s.document.cues[static_cast<std::size_t>(*index)];
        const auto newX = clampedUnit(x);
        const auto newY = clampedUnit(y);
        // Writing equal values would still copy the cue's shared chunk.
        if (current.positionX != newX || current.positionY != newY) {
            auto& cue = s.document.cues.mutableAt(static_cast<std::size_t>(*index));
            cue.positionX = newX;
            cue.positionY = newY;
        }
        s.selectedCueID = id;
    });
}

void AppModel::resetSelectedCuePosition()
{
    updateSelected([](CaptionCue& cue) {
        cue.positionX.reset();
        cue.positionY.reset();
    });
}

void AppModel::removeSelectedCue()
{
    if (!m_selectedCueID)
        return;
    const Uuid id = *m_selectedCueID;
    mutate("remove", QStringLiteral("Caption removed."), [&](EditorSnapshot& s) {
        auto& cues = s.document.cues;
        for (std::size_t i = cues.size(); i > 0; --i) {
            if (cues[i - 1].id == id)
                cues.erase(i - 1);
        }
        s.selectedCueID = cues.empty() ? std::nullopt : std::optional<Uuid>(cues.front().id);
    });
}

void AppModel::splitSelectedCue()
{
    const auto cue = selectedCue();
    if (!cue)
        return;
    const double at = m_playhead;
    if (!(at > cue->start) || !(at < cue->end))
        return;
    const auto index = indexOfCue(cue->id);
    if (!index)
        return;
    CaptionCue later;
    later.id = Uuid::generate();
    later.start = at;
    later.end = cue->end;
    later.text = cue->text;
    mutate("split", QStringLiteral("Caption split at playhead."), [&](EditorSnapshot& s) {
        const auto i = static_cast<std::size_t>(*index);
        s.document.cues.mutableAt(i).end = at;
        s.document.cues.insert(i + 1, later);
        s.selectedCueID = later.id;
    });
}

void AppModel::updateStyle(const QString& key, const std::function<void(CaptionStyle&)>& body)
{
    mutate(key.toStdString(), std::nullopt, [&](EditorSnapshot& s) { body(s.style); });
}

// ---- Playback

void AppModel::observePlayer()
{
    const double t = m_player->currentTime();
    const double s = std::isfinite(t) ? t : 0;
    setPlayhead(s >= 0 ? s : 0);
    setIsPlaying(m_player->isPlaying());
}

void AppModel::seek(double time)
{
    double target = time >= 0 ? time : 0;
    if (target > m_duration)
        target = m_duration;
    m_player->seek(target);
    setPlayhead(target);
}

void AppModel::togglePlayback()
{
    if (m_player->isPlaying()) {
        m_player->pause();
        setIsPlaying(false);
        return;
    }
    if (m_playhead >= m_duration - 0.05)
        seek(0);
    m_player->play();
    setIsPlaying(true);
}

// ---- Loading videos

void AppModel::attachVideo(const QUrl& url, std::function<void()> then)
{
    setVideoURL(url);
    const auto generation = ++m_attachGeneration;
    QPointer<AppModel> self(this);
    m_player->attach(url, [this, self, generation, then](std::optional<double> loaded) {
        if (!self || generation != m_attachGeneration)
            return;
        setDuration(loaded.value_or(0));
        m_player->seek(0, [this, self, generation, then] {
            if (!self || generation != m_attachGeneration)
                return;
            setPlayhead(0);
            if (then)
                then();
        });
    });
}

void AppModel::loadVideo(const QUrl& url)
{
    ++m_workGeneration;
    // The old project file must not take up the new video while it loads.
    setProjectURL({});
    attachVideo(url, [this, url] {
        setProjectURL({});
        setMissingVideoPath(std::nullopt);
        setDocument(CaptionDocument());
        setSelectedCueID(std::nullopt);
        clearHistory();
        setStatusMessage(QStringLiteral("Ready to caption ") + url.fileName() + QStringLiteral("."));
    });
}

void AppModel::addVideo()
{
    const auto url = m_dialogs->openFile({ FileType::movie, FileType::mpeg4Movie, FileType::quickTimeMovie }, {});
    if (!url || url->isEmpty())
        return;
    loadVideo(*url);
}

// ---- Long-running work

void AppModel::transcribe()
{
    if (m_videoURL.isEmpty() || m_isWorking)
        return;
    setIsWorking(true);
    setProgress(0.15);
    setStatusMessage(QStringLiteral("Preparing audio for local transcription\u2026"));

    const QString videoPath = m_videoURL.toLocalFile();
    const QString language = m_languageIdentifier;
    const auto generation = m_workGeneration;
    const auto work = m_services.transcribe;

    struct Outcome {
        std::vector<RecognizedWord> words;
        std::optional<QString> error;
    };

    QTimer::singleShot(0, this, [=, this] {
        setProgress(0.35);
        QtConcurrent::run([=]() -> Outcome {
            try {
                return { work(videoPath, language), std::nullopt };
            } catch (const std::exception& error) {
                return { {}, QString::fromUtf8(error.what()) };
            }
        }).then(this, [=, this](Outcome outcome) {
            if (generation != m_workGeneration) {
                // The work was replaced while the recogniser ran: the result belongs nowhere.
                setProgress(1.0);
                setIsWorking(false);
                return;
            }
            if (outcome.error) {
                setStatusMessage(*outcome.error);
                setProgress(1.0);
                setIsWorking(false);
                return;
            }
            setProgress(0.9);
            const auto cues = m_services.cuesFromWords(outcome.words, 8, 4.5);
            const auto limit = normalizeLimit();
            mutate("transcribe", std::nullopt, [&](EditorSnapshot& s) {
                s.document = CaptionDocument(cues);
                s.document.normalize(limit);
                s.selectedCueID
                    = s.document.cues.empty() ? std::nullopt : std::optional<Uuid>(s.document.cues.front().id);
            });
            setStatusMessage(QStringLiteral("Created %1 captions locally on this Mac.").arg(m_document.cues.size()));
            setProgress(1.0);
            setIsWorking(false);
        });
    });
}

void AppModel::exportBurnedVideo()
{
    if (!canExport())
        return;
    const QString proposed = QFileInfo(m_videoURL.fileName()).completeBaseName() + QStringLiteral("-captioned.mp4");
    const auto destination = m_dialogs->saveFile({ FileType::mpeg4Movie }, proposed);
    if (!destination || destination->isEmpty())
        return;
    setIsWorking(true);
    setProgress(0.1);
    setStatusMessage(QStringLiteral("Rendering captions into the video\u2026"));

    const QString source = m_videoURL.toLocalFile();
    const QString target = destination->toLocalFile();
    const CaptionDocument document = m_document;
    const CaptionStyle style = m_style;
    const auto work = m_services.exportBurnedVideo;

    QtConcurrent::run([=]() -> std::optional<QString> {
        try {
            work(source, target, document, style);
            return std::nullopt;
        } catch (const std::exception& error) {
            return QString::fromUtf8(error.what());
        }
    }).then(this, [this, name = destination->fileName()](std::optional<QString> error) {
        if (error) {
            setStatusMessage(*error);
        } else {
            setProgress(1.0);
            setStatusMessage(QStringLiteral("Exported ") + name + QStringLiteral("."));
        }
        setIsWorking(false);
    });
}

} // namespace cuewright
