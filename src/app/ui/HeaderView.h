#pragma once

#include <QWidget>

class QLabel;
class QMenu;
class QPushButton;
class QToolButton;
class QAction;

namespace cuewright {

class AppModel;
class ElidedLabel;

// The window's top row: the title of the work, the video and transcription buttons, the
// language used for transcription, and the Project and Export menus.
class HeaderView final : public QWidget {
    Q_OBJECT
public:
    explicit HeaderView(AppModel& model, QWidget* parent = nullptr);

    ElidedLabel* titleLabel() const { return m_title; }
    QLabel* subtitleLabel() const { return m_subtitle; }
    QPushButton* addVideoButton() const { return m_addVideo; }
    QToolButton* languageButton() const { return m_language; }
    QPushButton* transcribeButton() const { return m_transcribe; }
    QToolButton* projectButton() const { return m_project; }
    QToolButton* exportButton() const { return m_export; }
    QAction* saveProjectAction() const { return m_saveProject; }
    QAction* relinkVideoAction() const { return m_relinkVideo; }

    // The current locale's name for a locale identifier, or the identifier itself.
    static QString languageDisplayName(const QString& identifier);

private:
    QWidget* makeTitleBlock();
    QToolButton* makeLanguageButton();
    QToolButton* makeProjectButton();
    QToolButton* makeExportButton();
    void rebuildLanguageMenu(QMenu* menu);

    AppModel& m_model;
    ElidedLabel* m_title = nullptr;
    QLabel* m_subtitle = nullptr;
    QPushButton* m_addVideo = nullptr;
    QToolButton* m_language = nullptr;
    QPushButton* m_transcribe = nullptr;
    QToolButton* m_project = nullptr;
    QToolButton* m_export = nullptr;
    QAction* m_saveProject = nullptr;
    QAction* m_relinkVideo = nullptr;
};

} // namespace cuewright
