#include "app/ui/QtFileDialogs.h"

#include <QFileDialog>
#include <QMimeDatabase>
#include <QSet>

#include <algorithm>

namespace cuewright {

namespace {

    QStringList patternsOf(FileType type)
    {
        QMimeDatabase database;
        QStringList patterns;
        switch (type) {
        case FileType::plainText:
            for (const QMimeType& mime : database.allMimeTypes()) {
                if (mime.inherits(QStringLiteral("text/plain")))
                    patterns += mime.globPatterns();
            }
            break;
        case FileType::movie:
            for (const QMimeType& mime : database.allMimeTypes()) {
                if (mime.name().startsWith(QLatin1String("video/")))
                    patterns += mime.globPatterns();
            }
            break;
        case FileType::mpeg4Movie:
            patterns = database.mimeTypeForName(QStringLiteral("video/mp4")).globPatterns();
            break;
        case FileType::quickTimeMovie:
            patterns = database.mimeTypeForName(QStringLiteral("video/quicktime")).globPatterns();
            break;
        case FileType::project:
            patterns = { QStringLiteral("*.vantrelcaption") };
            break;
        }
        return patterns;
    }

    QString describe(const std::vector<FileType>& types)
    {
        if (std::ranges::find(types, FileType::project) != types.end())
            return QObject::tr("Vantrel Cuewright Projects");
        if (std::ranges::find(types, FileType::plainText) != types.end())
            return QObject::tr("Subtitle Files");
        if (std::ranges::find(types, FileType::movie) != types.end())
            return QObject::tr("Videos");
        return QObject::tr("MPEG-4 Videos");
    }

} // namespace

QtFileDialogs::QtFileDialogs(QWidget* parent)
    : m_parent(parent)
{
}

QString QtFileDialogs::nameFilter(const std::vector<FileType>& allowedTypes)
{
    QStringList patterns;
    QSet<QString> seen;
    for (FileType type : allowedTypes) {
        for (const QString& pattern : patternsOf(type)) {
            if (!seen.contains(pattern)) {
                seen.insert(pattern);
                patterns += pattern;
            }
        }
    }
    return describe(allowedTypes) + QStringLiteral(" (") + patterns.join(QLatin1Char(' ')) + QLatin1Char(')');
}

std::optional<QUrl> QtFileDialogs::openFile(const std::vector<FileType>& allowedTypes, const QString& proposedName)
{
    return run(QFileDialog::AcceptOpen, allowedTypes, proposedName);
}

std::optional<QUrl> QtFileDialogs::saveFile(const std::vector<FileType>& allowedTypes, const QString& proposedName)
{
    return run(QFileDialog::AcceptSave, allowedTypes, proposedName);
}

std::optional<QUrl> QtFileDialogs::run(
    QFileDialog::AcceptMode mode, const std::vector<FileType>& allowedTypes, const QString& proposedName)
{
    QFileDialog dialog(m_parent);
    dialog.setAcceptMode(mode);
    dialog.setFileMode(mode == QFileDialog::AcceptOpen ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
    dialog.setNameFilters({ nameFilter(allowedTypes), QObject::tr("All Files (*)") });
    if (!proposedName.isEmpty())
        dialog.selectFile(proposedName);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedUrls().isEmpty())
        return std::nullopt;
    return dialog.selectedUrls().constFirst();
}

} // namespace cuewright
