#include "app/ui/HeaderView.h"

#include "app/model/AppModel.h"
#include "app/ui/ElidedLabel.h"
#include "app/ui/ModelObserver.h"
#include "app/ui/SymbolIcons.h"
#include "app/ui/ViewStyle.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QMenu>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

#include <unicode/locid.h>
#include <unicode/unistr.h>

namespace cuewright {

namespace {

    QPushButton* headerButton(const QString& text, const QString& symbol, const QString& identifier, QWidget* parent)
    {
        auto* button = new QPushButton(symbolIcon(symbol), text, parent);
        button->setObjectName(identifier);
        button->setAccessibleName(text);
        // Qt 6.4 has no accessibility identifier of its own; the object name serves as one.
        button->setProperty("accessibilityIdentifier", identifier);
        button->setFocusPolicy(Qt::TabFocus);
        return button;
    }

    QToolButton* menuButton(const QString& text, const QString& symbol, const QString& name, QWidget* parent)
    {
        auto* button = new QToolButton(parent);
        button->setObjectName(name);
        button->setText(text);
        button->setAccessibleName(text);
        button->setIcon(symbolIcon(symbol));
        button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
        button->setPopupMode(QToolButton::InstantPopup);
        button->setFocusPolicy(Qt::TabFocus);
        button->setMenu(new QMenu(button));
        return button;
    }

} // namespace

QString HeaderView::languageDisplayName(const QString& identifier)
{
    const QByteArray tag = identifier.toUtf8();
    UErrorCode status = U_ZERO_ERROR;
    const icu::Locale locale = icu::Locale::forLanguageTag(tag.constData(), status);
    if (U_FAILURE(status) || locale.isBogus() || std::string_view(locale.getLanguage()).empty())
        return identifier;
    const icu::Locale display = icu::Locale::forLanguageTag(QLocale().bcp47Name().toUtf8().constData(), status);
    icu::UnicodeString name;
    locale.getDisplayName(U_SUCCESS(status) ? display : icu::Locale::getDefault(), name);
    if (name.isEmpty())
        return identifier;
    return QString(reinterpret_cast<const QChar*>(name.getBuffer()), name.length());
}

HeaderView::HeaderView(AppModel& model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
{
    setObjectName(QStringLiteral("header"));
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(18, 12, 18, 12);
    row->setSpacing(10);

    row->addWidget(makeTitleBlock(), 1);

    m_addVideo
        = headerButton(tr("Add Video"), QStringLiteral("film.badge.plus"), QStringLiteral("addVideoButton"), this);
    connect(m_addVideo, &QPushButton::clicked, &m_model, [this] { m_model.addVideo(); });
    row->addWidget(m_addVideo);

    row->addWidget(makeLanguageButton());

    m_transcribe
        = headerButton(tr("Transcribe"), QStringLiteral("waveform.and.mic"), QStringLiteral("transcribeButton"), this);
    connect(m_transcribe, &QPushButton::clicked, &m_model, [this] { m_model.transcribe(); });
    row->addWidget(m_transcribe);

    row->addWidget(makeProjectButton());
    row->addWidget(makeExportButton());

    observe(
        m_model, this,
        [this] {
            const QUrl video = m_model.videoURL();
            m_title->setFullText(video.isEmpty() ? tr("Vantrel Cuewright") : QFileInfo(video.toLocalFile()).fileName());
        },
        &AppModel::videoURLChanged);
    observe(
        m_model, this,
        [this] {
            const auto count = m_model.document().cues.size();
            m_subtitle->setText(count > 0 ? tr("%1 captions").arg(QLocale().toString(static_cast<qulonglong>(count)))
                                          : tr("Create accurate captions locally on your Mac"));
        },
        &AppModel::documentChanged);
    observe(
        m_model, this, [this] { m_transcribe->setEnabled(!m_model.videoURL().isEmpty() && !m_model.isWorking()); },
        &AppModel::videoURLChanged, &AppModel::isWorkingChanged);
}

QWidget* HeaderView::makeTitleBlock()
{
    auto* block = new QWidget(this);
    auto* column = new QVBoxLayout(block);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(2);
    m_title = new ElidedLabel(block);
    m_title->setObjectName(QStringLiteral("windowTitleLabel"));
    m_title->setFont(ViewStyle::headlineFont());
    m_subtitle = new QLabel(block);
    m_subtitle->setObjectName(QStringLiteral("windowSubtitleLabel"));
    m_subtitle->setFont(ViewStyle::captionFont());
    m_subtitle->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    ViewStyle::setSecondary(m_subtitle);
    column->addWidget(m_title);
    column->addWidget(m_subtitle);
    block->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    return block;
}

QToolButton* HeaderView::makeLanguageButton()
{
    m_language = menuButton(QString(), QStringLiteral("globe"), QStringLiteral("languageMenuButton"), this);
    m_language->setToolTip(tr("Language used for local transcription"));
    m_language->setMaximumWidth(190);
    QMenu* menu = m_language->menu();
    connect(menu, &QMenu::aboutToShow, this, [this, menu] { rebuildLanguageMenu(menu); });
    observe(
        m_model, this,
        [this] {
            const QString name = m_model.selectedLanguageName();
            m_language->setAccessibleName(name);
            // One line within the frame: the name loses its end rather than the button growing.
            const int room = 190 - m_language->iconSize().width() - 36;
            m_language->setText(m_language->fontMetrics().elidedText(name, Qt::ElideRight, room));
        },
        &AppModel::languageIdentifierChanged);
    rebuildLanguageMenu(menu);
    return m_language;
}

void HeaderView::rebuildLanguageMenu(QMenu* menu)
{
    menu->clear();
    const QString current = m_model.languageIdentifier();
    for (const QString& identifier : m_model.supportedLanguageIdentifiers()) {
        QAction* entry = menu->addAction(languageDisplayName(identifier));
        entry->setData(identifier);
        if (identifier == current)
            entry->setIcon(symbolIcon(QStringLiteral("checkmark")));
        connect(
            entry, &QAction::triggered, &m_model, [this, identifier] { m_model.setLanguageIdentifier(identifier); });
    }
}

QToolButton* HeaderView::makeProjectButton()
{
    m_project = menuButton(tr("Project"), QStringLiteral("folder"), QStringLiteral("projectMenuButton"), this);
    QMenu* menu = m_project->menu();
    connect(menu->addAction(tr("Import SRT or WebVTT\u2026")), &QAction::triggered, &m_model,
        [this] { m_model.importCaptions(); });
    menu->addSeparator();
    connect(
        menu->addAction(tr("Open Project\u2026")), &QAction::triggered, &m_model, [this] { m_model.openProject(); });
    m_saveProject = menu->addAction(tr("Save Project\u2026"));
    connect(m_saveProject, &QAction::triggered, &m_model, [this] { m_model.saveProject(); });
    m_relinkVideo = menu->addAction(tr("Relink Video\u2026"));
    m_relinkVideo->setObjectName(QStringLiteral("relinkVideoButton"));
    connect(m_relinkVideo, &QAction::triggered, &m_model, [this] { m_model.relinkVideo(); });

    observe(
        m_model, this, [this] { m_saveProject->setEnabled(!m_model.videoURL().isEmpty()); },
        &AppModel::videoURLChanged);
    observe(
        m_model, this,
        [this] {
            m_relinkVideo->setVisible(!m_model.projectURL().isEmpty() || m_model.missingVideoPath().has_value());
        },
        &AppModel::projectURLChanged, &AppModel::missingVideoPathChanged);
    return m_project;
}

QToolButton* HeaderView::makeExportButton()
{
    m_export
        = menuButton(tr("Export"), QStringLiteral("square.and.arrow.up"), QStringLiteral("exportMenuButton"), this);
    m_export->setAutoRaise(true); // borderless
    QMenu* menu = m_export->menu();
    connect(
        menu->addAction(tr("Caption File\u2026")), &QAction::triggered, &m_model, [this] { m_model.exportSidecar(); });
    connect(menu->addAction(tr("Video with Captions\u2026")), &QAction::triggered, &m_model,
        [this] { m_model.exportBurnedVideo(); });
    observe(
        m_model, this, [this] { m_export->setEnabled(m_model.canExport()); }, &AppModel::videoURLChanged,
        &AppModel::documentChanged, &AppModel::isWorkingChanged);
    return m_export;
}

} // namespace cuewright
