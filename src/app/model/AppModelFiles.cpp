#include "app/model/AppModel.h"

#include "app/model/MimeContentTypes.h"
#include "core/AtomicFile.h"
#include "core/CaptionCodec.h"
#include "core/CaptionFormat.h"
#include "core/CaptionOpenItem.h"
#include "core/CaptionProjectFile.h"
#include "core/CaptionProjectMediaLocator.h"
#include "core/CaptionProjectStore.h"
#include "core/VideoFileDrop.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <span>

// Subtitle files, project files and the ways files come in from outside.

namespace cuewright {

namespace {

    std::filesystem::path localPath(const QUrl& url)
    {
        return std::filesystem::path(url.toLocalFile().toStdString());
    }

    // A location as the project rules read it: a path for local files, else the URL's text.
    std::string location(const QUrl& url)
    {
        return url.isLocalFile() ? url.toLocalFile().toStdString() : url.toString(QUrl::FullyEncoded).toStdString();
    }

    const ContentTypeLookup& contentTypes()
    {
        static const MimeContentTypes types;
        return types;
    }

    QString message(const std::exception& error)
    {
        return QString::fromUtf8(error.what());
    }

} // namespace

void AppModel::importCaptions()
{
    const auto url = m_dialogs->openFile({ FileType::plainText }, {});
    if (!url || url->isEmpty())
        return;
    CaptionDocument decoded;
    try {
        const auto bytes = readWholeFile(localPath(*url));
        decoded = CaptionCodec::decode(
            std::span<const std::uint8_t>(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()));
    } catch (const std::exception& error) {
        setStatusMessage(message(error));
        return;
    }
    const auto limit = normalizeLimit();
    mutate("import", QStringLiteral("Imported %1 captions.").arg(decoded.cues.size()), [&](EditorSnapshot& s) {
        s.document = decoded;
        s.document.normalize(limit);
        s.selectedCueID = s.document.cues.empty() ? std::nullopt : std::optional<Uuid>(s.document.cues.front().id);
    });
}

void AppModel::exportSidecar()
{
    if (m_document.cues.empty())
        return;
    const QString base
        = m_videoURL.isEmpty() ? QStringLiteral("Captions") : QFileInfo(m_videoURL.fileName()).completeBaseName();
    const QString name = base + QStringLiteral(".") + QString::fromUtf8(fileExtension(m_exportFormat));
    const auto url = m_dialogs->saveFile({ FileType::plainText }, name);
    if (!url || url->isEmpty())
        return;
    try {
        writeFileAtomically(localPath(*url), CaptionCodec::encode(m_document, m_exportFormat));
    } catch (const std::exception& error) {
        setStatusMessage(message(error));
        return;
    }
    setStatusMessage(QStringLiteral("Exported ") + url->fileName() + QStringLiteral("."));
}

void AppModel::saveOpenProject()
{
    if (m_projectURL.isEmpty() || m_videoURL.isEmpty())
        return;
    try {
        CaptionProjectStore::write(
            { m_videoURL.toLocalFile().toStdString(), m_document, m_style }, localPath(m_projectURL));
    } catch (const std::exception&) {
        // The next change tries again; the status line keeps the edit's message.
    }
}

void AppModel::saveProject()
{
    if (m_videoURL.isEmpty())
        return;
    const auto base = QFileInfo(m_videoURL.fileName()).completeBaseName().toStdString();
    const auto proposed = QString::fromStdString(CaptionProjectFile::normalizedFilename(base));
    const auto url = m_dialogs->saveFile({ FileType::project }, proposed);
    if (!url || url->isEmpty())
        return;
    const QFileInfo chosen(url->toLocalFile());
    const auto name = CaptionProjectFile::normalizedFilename(chosen.fileName().toStdString());
    const auto target = QUrl::fromLocalFile(chosen.dir().filePath(QString::fromStdString(name)));
    try {
        CaptionProjectStore::write({ m_videoURL.toLocalFile().toStdString(), m_document, m_style }, localPath(target));
    } catch (const std::exception& error) {
        setStatusMessage(message(error));
        return;
    }
    setProjectURL(target);
    setStatusMessage(QStringLiteral("Project saved."));
}

void AppModel::openProject()
{
    const auto url = m_dialogs->openFile({ FileType::project }, {});
    if (!url || url->isEmpty())
        return;
    openProject(*url);
}

void AppModel::openProject(const QUrl& url)
{
    CaptionProject project;
    try {
        project = CaptionProjectStore::read(localPath(url));
    } catch (const std::exception& error) {
        setStatusMessage(message(error));
        return;
    }
    ++m_workGeneration;
    setDocument(project.document);
    setStyle(project.style);
    setProjectURL(url);
    setSelectedCueID(
        project.document.cues.empty() ? std::nullopt : std::optional<Uuid>(project.document.cues.front().id));
    clearHistory();

    if (const auto found = CaptionProjectMediaLocator::existingMediaURL(project, location(url))) {
        const auto path = CaptionProjectFile::localPath(*found).value_or(*found);
        attachVideo(QUrl::fromLocalFile(QString::fromStdString(path)), [this] {
            setMissingVideoPath(std::nullopt);
            setStatusMessage(QStringLiteral("Project opened."));
        });
        return;
    }
    ++m_attachGeneration; // a load still in flight must not bring a video back
    setVideoURL({});
    m_player->detach();
    double greatestEnd = 0;
    for (const auto& cue : project.document.cues)
        greatestEnd = std::max(greatestEnd, cue.end);
    setDuration(greatestEnd);
    setMissingVideoPath(QString::fromStdString(project.videoPath));
    setStatusMessage(QStringLiteral("Video missing. Choose Relink Video in the Project menu."));
}

void AppModel::relinkVideo()
{
    const QString proposed = m_missingVideoPath
        ? QString::fromStdString(std::string(CaptionProjectFile::lastPathComponent(m_missingVideoPath->toStdString())))
        : QString();
    const auto url = m_dialogs->openFile({ FileType::movie, FileType::mpeg4Movie, FileType::quickTimeMovie }, proposed);
    if (!url || url->isEmpty())
        return;
    attachVideo(*url, [this] {
        setMissingVideoPath(std::nullopt);
        changed(QStringLiteral("Video relinked."));
    });
}

bool AppModel::loadDroppedVideo(const QList<QUrl>& urls)
{
    std::vector<std::string> locations;
    for (const auto& url : urls)
        locations.push_back(location(url));
    if (const auto accepted = VideoFileDrop::firstAccepted(locations, contentTypes())) {
        const auto index = std::find(locations.begin(), locations.end(), *accepted) - locations.begin();
        loadVideo(urls[index]);
        return true;
    }
    setStatusMessage(QStringLiteral("Drop a video file such as MOV, MP4 or M4V."));
    return false;
}

void AppModel::openExternalURL(const QUrl& url)
{
    switch (CaptionOpenItem::classify(location(url), contentTypes())) {
    case CaptionOpenItem::project:
        openProject(url);
        break;
    case CaptionOpenItem::video:
        loadVideo(url);
        break;
    case CaptionOpenItem::unsupported:
        setStatusMessage(QStringLiteral("This file is not a Vantrel Cuewright project or supported video."));
        break;
    }
}

} // namespace cuewright
