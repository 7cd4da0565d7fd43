#pragma once

#include "app/model/Clock.h"
#include "app/model/FileDialogs.h"
#include "app/model/MediaPlayer.h"
#include "app/model/ModelServices.h"
#include "core/CaptionCue.h"
#include "core/CaptionDocument.h"
#include "core/CaptionFormat.h"
#include "core/CaptionNavigation.h"
#include "core/CaptionQuality.h"
#include "core/CaptionStyle.h"
#include "core/Uuid.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QUrl>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace cuewright {

// What the model is built with. Every member may be left empty: the model then uses a
// SilentMediaPlayer, CancellingFileDialogs, a SystemClock and, member by member,
// defaultModelServices().
struct AppModelSeams {
    std::unique_ptr<MediaPlayer> player;
    std::unique_ptr<FileDialogs> dialogs;
    std::shared_ptr<Clock> clock;
    ModelServices services;
};

// The open work: video, project file, captions, selection, style, transport state and the
// status line, with its undo history and every command on it.
//
// Lives on the main thread; all commands return at once. Views read the getters, listen
// to the *Changed signals (each fires only when the value really changed; a NaN double
// always fires) and call the commands. The only fields views assign are selectedCueID,
// languageIdentifier and exportFormat. No command throws: failures end in statusMessage.
class AppModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(QUrl videoURL READ videoURL NOTIFY videoURLChanged)
    Q_PROPERTY(QUrl projectURL READ projectURL NOTIFY projectURLChanged)
    Q_PROPERTY(double playhead READ playhead NOTIFY playheadChanged)
    Q_PROPERTY(double duration READ duration NOTIFY durationChanged)
    Q_PROPERTY(bool isPlaying READ isPlaying NOTIFY isPlayingChanged)
    Q_PROPERTY(bool isWorking READ isWorking NOTIFY isWorkingChanged)
    Q_PROPERTY(double progress READ progress NOTIFY progressChanged)
    Q_PROPERTY(QString statusMessage READ statusMessage NOTIFY statusMessageChanged)
    Q_PROPERTY(
        QString languageIdentifier READ languageIdentifier WRITE setLanguageIdentifier NOTIFY languageIdentifierChanged)

public:
    explicit AppModel(AppModelSeams seams = {}, QObject* parent = nullptr);
    ~AppModel() override;

    // Constant links of the publisher.
    QUrl websiteURL() const;
    QUrl feedbackURL() const;

    // The player the preview shows; never replaced.
    MediaPlayer& player() const { return *m_player; }
    // The window installs the real dialogs once it exists.
    void setFileDialogs(std::unique_ptr<FileDialogs> dialogs);

    // ---- Observed fields (empty QUrl / nullopt = none)
    QUrl videoURL() const { return m_videoURL; }
    QUrl projectURL() const { return m_projectURL; }
    std::optional<QString> missingVideoPath() const { return m_missingVideoPath; }
    const CaptionDocument& document() const { return m_document; }
    std::optional<Uuid> selectedCueID() const { return m_selectedCueID; }
    const CaptionStyle& style() const { return m_style; }
    double playhead() const { return m_playhead; }
    double duration() const { return m_duration; }
    bool isPlaying() const { return m_isPlaying; }
    bool isWorking() const { return m_isWorking; }
    double progress() const { return m_progress; }
    QString statusMessage() const { return m_statusMessage; }
    QString languageIdentifier() const { return m_languageIdentifier; }
    CaptionFormat exportFormat() const { return m_exportFormat; }

    void setSelectedCueID(std::optional<Uuid> id);
    void setLanguageIdentifier(const QString& identifier);
    void setExportFormat(CaptionFormat format);

    // ---- Derived values, computed at each read
    std::optional<CaptionCue> selectedCue() const;
    bool canExport() const;
    QString version() const;
    bool canMergeSelectedCueWithNext() const;
    std::vector<CaptionQualityIssue> selectedCueIssues() const;
    int qualityIssueCueCount() const;
    QString selectedLanguageName() const;
    QStringList supportedLanguageIdentifiers() const;
    bool canUndo() const { return !m_undoStack.empty(); }
    bool canRedo() const { return !m_redoStack.empty(); }
    int undoStackCount() const { return static_cast<int>(m_undoStack.size()); }
    int redoStackCount() const { return static_cast<int>(m_redoStack.size()); }

    // The language the model starts with: the locale itself when supported, else the first
    // supported one of the same language, else "en-US".
    static QString chooseLanguageIdentifier(const QStringList& supported, const QString& currentLocaleIdentifier);

    // ---- History and sidecar files
    void undo();
    void redo();
    void importCaptions();
    void exportSidecar();

    // ---- Cue editing
    // At `time`, or at the playhead when absent.
    void addCue(std::optional<double> time = std::nullopt);
    void updateSelected(const std::function<void(CaptionCue&)>& body);
    void setCueTiming(const Uuid& id, double start, double end);
    void setCuePosition(const Uuid& id, double x, double y);
    void resetSelectedCuePosition();
    void removeSelectedCue();
    void splitSelectedCue();
    void mergeSelectedCueWithNext();
    void removeCaptionOverlaps();
    // `key` is "style-" + the field's name, so that a drag on one control is one undo step.
    void updateStyle(const QString& key, const std::function<void(CaptionStyle&)>& body);
    void shiftAllCaptions(double delta);
    void setSelectedCueStartToPlayhead();
    void setSelectedCueEndToPlayhead();
    void nudgeSelectedCue(double delta);

    // ---- Video and project
    void addVideo();
    void loadVideo(const QUrl& url);
    // Whether one of the URLs was a video (which is then loaded).
    bool loadDroppedVideo(const QList<QUrl>& urls);
    void saveProject();
    void openProject();
    void openProject(const QUrl& url);
    // A file handed over by the system: a project, a video, or neither.
    void openExternalURL(const QUrl& url);
    void relinkVideo();

    // ---- Playback and navigation
    void seek(double time);
    void togglePlayback();
    void selectAdjacentCue(CaptionNavigation::Direction direction);
    void selectNextQualityIssue();

    // ---- Long-running work; progress in isWorking, progress and statusMessage
    void transcribe();
    void exportBurnedVideo();

signals:
    void videoURLChanged();
    void projectURLChanged();
    void missingVideoPathChanged();
    void documentChanged();
    void selectedCueIDChanged();
    void styleChanged();
    void playheadChanged();
    void durationChanged();
    void isPlayingChanged();
    void isWorkingChanged();
    void progressChanged();
    void statusMessageChanged();
    void languageIdentifierChanged();
    void exportFormatChanged();
    // canUndo, canRedo and the counts may have changed.
    void historyChanged();

private:
    struct EditorSnapshot {
        CaptionDocument document;
        CaptionStyle style;
        std::optional<Uuid> selectedCueID;
        friend bool operator==(const EditorSnapshot&, const EditorSnapshot&) = default;
    };

    EditorSnapshot snapshot() const;
    void restore(EditorSnapshot snapshot);
    // The one gate for undoable changes: `body` edits the working copy it is given.
    void mutate(const std::string& key, const std::optional<QString>& message,
        const std::function<void(EditorSnapshot&)>& body);
    void changed(const std::optional<QString>& message);
    void clearHistory();
    void saveOpenProject();
    // The limit normalize works against: none while there is no video at all.
    std::optional<double> normalizeLimit() const;
    // The duration the timeline rules work within.
    double timelineLimit() const;
    std::optional<qsizetype> indexOfCue(const Uuid& id) const;

    // Puts `url` behind the player; `then` runs once the duration is known and the player
    // stands at zero, unless a newer load or open has started meanwhile.
    void attachVideo(const QUrl& url, std::function<void()> then);
    void observePlayer();

    void setVideoURL(const QUrl& url);
    void setProjectURL(const QUrl& url);
    void setMissingVideoPath(const std::optional<QString>& path);
    void setDocument(const CaptionDocument& document);
    void setStyle(const CaptionStyle& style);
    void setPlayhead(double seconds);
    void setDuration(double seconds);
    void setIsPlaying(bool playing);
    void setIsWorking(bool working);
    void setProgress(double progress);
    void setStatusMessage(const QString& message);

    std::unique_ptr<MediaPlayer> m_player;
    std::unique_ptr<FileDialogs> m_dialogs;
    std::shared_ptr<Clock> m_clock;
    ModelServices m_services;
    QTimer m_observer;

    QUrl m_videoURL;
    QUrl m_projectURL;
    std::optional<QString> m_missingVideoPath;
    CaptionDocument m_document;
    std::optional<Uuid> m_selectedCueID;
    CaptionStyle m_style;
    double m_playhead = 0;
    double m_duration = 0;
    bool m_isPlaying = false;
    bool m_isWorking = false;
    double m_progress = 0;
    QString m_statusMessage;
    QString m_languageIdentifier;
    CaptionFormat m_exportFormat {}; // srt
    std::vector<EditorSnapshot> m_undoStack;
    std::vector<EditorSnapshot> m_redoStack;
    std::optional<std::string> m_lastMutationKey;
    double m_lastMutationDate;

    // Bumped whenever the work is replaced as a whole (video loaded, project opened), so
    // that late transcriptions of older work change nothing.
    std::uint64_t m_workGeneration = 0;
    // Bumped at every attach or detach: only the newest load may land.
    std::uint64_t m_attachGeneration = 0;
};

} // namespace cuewright
