#pragma once

#include <QWidget>

#include <functional>

class QLabel;
class QUrl;

namespace cuewright {

class AppModel;

// The settings window's content: no options, only what the program is and where its
// publisher is found.
class SettingsView final : public QWidget {
    Q_OBJECT
public:
    // `openLink` opens a URL in the system's default handler; tests pass their own.
    explicit SettingsView(AppModel& model, std::function<void(const QUrl&)> openLink = {}, QWidget* parent = nullptr);

    QLabel* versionLabel() const { return m_version; }
    QLabel* homePageLink() const { return m_homePage; }
    QLabel* feedbackLink() const { return m_feedback; }
    QLabel* websiteLink() const { return m_website; }

private:
    QLabel* makeLink(const QString& text, const QUrl& url);

    std::function<void(const QUrl&)> m_openLink;
    QLabel* m_version;
    QLabel* m_homePage;
    QLabel* m_feedback;
    QLabel* m_website;
};

} // namespace cuewright
