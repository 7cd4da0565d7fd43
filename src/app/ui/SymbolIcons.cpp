#include "app/ui/SymbolIcons.h"

#include <QApplication>
#include <QDir>
#include <QHash>
#include <QPainter>
#include <QPixmap>
#include <QStandardPaths>
#include <QStyle>

#include <initializer_list>

namespace cuewright {

namespace {

    struct SymbolMapping {
        QStringList themeNames; // nearest first
        QStyle::StandardPixmap fallback;
    };

    const QHash<QString, SymbolMapping>& mappings()
    {
        static const QHash<QString, SymbolMapping> table {
            { "film.badge.plus",
                { { "video-x-generic", "video-x-generic-symbolic" }, QStyle::SP_FileDialogNewFolder } },
            { "waveform.and.mic",
                { { "audio-input-microphone", "audio-input-microphone-symbolic" }, QStyle::SP_MediaVolume } },
            { "folder", { { "folder", "folder-symbolic" }, QStyle::SP_DirIcon } },
            { "square.and.arrow.up",
                { { "document-share", "document-export", "document-send" }, QStyle::SP_DialogSaveButton } },
            { "globe",
                { { "globe", "preferences-desktop-locale", "preferences-desktop-locale-symbolic" },
                    QStyle::SP_DriveNetIcon } },
            { "checkmark",
                { { "object-select", "object-select-symbolic", "checkmark" }, QStyle::SP_DialogApplyButton } },
            { "captions.bubble",
                { { "media-view-subtitles-symbolic", "add-subtitle", "insert-text" },
                    QStyle::SP_FileDialogDetailedView } },
            { "exclamationmark.triangle.fill",
                { { "dialog-warning", "dialog-warning-symbolic" }, QStyle::SP_MessageBoxWarning } },
            { "plus", { { "list-add", "list-add-symbolic" }, QStyle::SP_FileDialogNewFolder } },
            { "plus.bubble", { { "add-subtitle", "list-add" }, QStyle::SP_FileDialogNewFolder } },
            { "backward.end.fill",
                { { "media-skip-backward", "media-skip-backward-symbolic" }, QStyle::SP_MediaSkipBackward } },
            { "forward.end.fill",
                { { "media-skip-forward", "media-skip-forward-symbolic" }, QStyle::SP_MediaSkipForward } },
            { "play.fill", { { "media-playback-start", "media-playback-start-symbolic" }, QStyle::SP_MediaPlay } },
            { "pause.fill", { { "media-playback-pause", "media-playback-pause-symbolic" }, QStyle::SP_MediaPause } },
            { "gobackward.1",
                { { "media-seek-backward", "media-seek-backward-symbolic" }, QStyle::SP_MediaSeekBackward } },
            { "scissors", { { "edit-cut", "edit-cut-symbolic" }, QStyle::SP_DialogResetButton } },
            { "minus.magnifyingglass", { { "zoom-out", "zoom-out-symbolic" }, QStyle::SP_ArrowDown } },
            { "plus.magnifyingglass", { { "zoom-in", "zoom-in-symbolic" }, QStyle::SP_ArrowUp } },
            // The preview, timeline and inspector.
            { "captions.bubble.fill",
                { { "media-view-subtitles-symbolic", "insert-text" }, QStyle::SP_FileDialogDetailedView } },
            { "rectangle.2.swap", { { "object-flip-horizontal" }, QStyle::SP_MessageBoxWarning } },
            { "speedometer", { { "speedometer", "dialog-warning" }, QStyle::SP_MessageBoxWarning } },
            { "text.alignleft", { { "format-justify-left" }, QStyle::SP_MessageBoxWarning } },
            { "text.badge.exclamationmark", { { "dialog-warning" }, QStyle::SP_MessageBoxWarning } },
            { "inset.filled.leadingthird", { { "go-first" }, QStyle::SP_MediaSkipBackward } },
            { "inset.filled.trailingthird", { { "go-last" }, QStyle::SP_MediaSkipForward } },
            { "chevron.left", { { "go-previous" }, QStyle::SP_ArrowLeft } },
            { "chevron.right", { { "go-next" }, QStyle::SP_ArrowRight } },
            { "arrow.triangle.merge", { { "merge", "format-join-node" }, QStyle::SP_ArrowUp } },
            { "trash", { { "edit-delete", "user-trash" }, QStyle::SP_TrashIcon } },
            { "arrow.uturn.backward", { { "edit-undo" }, QStyle::SP_ArrowBack } },
            { "arrow.left.and.right", { { "object-flip-horizontal" }, QStyle::SP_ArrowRight } },
            { "arrow.right.to.line", { { "go-last" }, QStyle::SP_MediaSkipForward } },
            { "paintbrush", { { "format-stroke-color", "draw-brush" }, QStyle::SP_DesktopIcon } },
            { "questionmark.video", { { "video-x-generic" }, QStyle::SP_MessageBoxQuestion } },
            { "film", { { "video-x-generic" }, QStyle::SP_FileIcon } },
        };
        return table;
    }

} // namespace

QIcon symbolIcon(const QString& symbolName)
{
    static QHash<QString, QIcon> cache;
    if (auto found = cache.constFind(symbolName); found != cache.cend())
        return *found;

    QIcon icon;
    const auto mapping = mappings().constFind(symbolName);
    if (mapping != mappings().cend()) {
        for (const QString& name : mapping->themeNames) {
            if (QIcon::hasThemeIcon(name)) {
                icon = QIcon::fromTheme(name);
                break;
            }
        }
        if (icon.isNull() && qApp)
            icon = QApplication::style()->standardIcon(mapping->fallback);
    }
    cache.insert(symbolName, icon);
    return icon;
}

QIcon tintedSymbolIcon(const QString& symbolName, const QColor& color, int size)
{
    QPixmap pixmap = symbolIcon(symbolName).pixmap(size, size);
    if (pixmap.isNull())
        return {};
    QPainter painter(&pixmap);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(pixmap.rect(), color);
    painter.end();
    return QIcon(pixmap);
}

void installIconTheme()
{
    // Without a desktop's platform theme (offscreen, a bare X server) Qt looks only in its
    // resources; the freedesktop folders are where the installed themes live.
    QStringList searchPaths = QIcon::themeSearchPaths();
    for (const QString& dataDirectory : QStandardPaths::standardLocations(QStandardPaths::GenericDataLocation)) {
        const QString icons = QDir(dataDirectory).filePath(QStringLiteral("icons"));
        if (!searchPaths.contains(icons) && QDir(icons).exists())
            searchPaths.append(icons);
    }
    QIcon::setThemeSearchPaths(searchPaths);
    if (!QIcon::themeName().isEmpty() && QIcon::themeName() != QLatin1String("hicolor"))
        return;
    for (const char* theme : { "breeze", "Adwaita" }) {
        QIcon::setThemeName(QString::fromLatin1(theme));
        if (QIcon::hasThemeIcon(QStringLiteral("media-playback-start")))
            break;
    }
    QIcon::setFallbackThemeName(QStringLiteral("Adwaita"));
}

} // namespace cuewright
