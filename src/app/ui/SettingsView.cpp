#include "app/ui/SettingsView.h"

#include "app/model/AppModel.h"
#include "app/ui/ViewStyle.h"

#include <QDesktopServices>
#include <QGroupBox>
#include <QLabel>
#include <QUrl>
#include <QVBoxLayout>

namespace cuewright {

SettingsView::SettingsView(AppModel& model, std::function<void(const QUrl&)> openLink, QWidget* parent)
    : QWidget(parent)
    , m_openLink(openLink ? std::move(openLink) : [](const QUrl& url) { QDesktopServices::openUrl(url); })
{
    setObjectName(QStringLiteral("settingsView"));
    setFixedWidth(500);
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(20, 20, 20, 20);

    auto* about = new QGroupBox(tr("About"), this);
    auto* section = new QVBoxLayout(about);
    section->setSpacing(12);

    auto* identity = new QVBoxLayout;
    identity->setSpacing(2);
    m_version = new QLabel(tr("Vantrel Cuewright ") + model.version(), about);
    m_version->setObjectName(QStringLiteral("versionLabel"));
    m_version->setTextInteractionFlags(Qt::TextSelectableByMouse);
    const QUrl homePage = model.websiteURL().adjusted(QUrl::RemovePath | QUrl::RemoveQuery | QUrl::RemoveFragment);
    m_homePage = makeLink(homePage.host(), homePage);
    m_homePage->setFont(ViewStyle::captionFont());
    identity->addWidget(m_version);
    identity->addWidget(m_homePage);
    section->addLayout(identity);

    m_feedback = makeLink(tr("Send feedback"), model.feedbackURL());
    m_website = makeLink(tr("Website"), model.websiteURL());
    section->addWidget(m_feedback);
    section->addWidget(m_website);

    outer->addWidget(about);
    outer->addStretch(1);
}

QLabel* SettingsView::makeLink(const QString& text, const QUrl& url)
{
    auto* label = new QLabel(this);
    label->setTextFormat(Qt::RichText);
    label->setText(QStringLiteral("<a href=\"%1\">%2</a>")
                       .arg(url.toString(QUrl::FullyEncoded).toHtmlEscaped(), text.toHtmlEscaped()));
    label->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    label->setToolTip(url.toString());
    label->setAccessibleName(text);
    connect(label, &QLabel::linkActivated, this, [this](const QString& link) { m_openLink(QUrl(link)); });
    return label;
}

} // namespace cuewright
