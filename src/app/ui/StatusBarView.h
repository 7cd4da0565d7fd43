#pragma once

#include <QWidget>

class QLabel;
class QProgressBar;

namespace cuewright {

class AppModel;
class ElidedLabel;

// The bottom row: progress of long work, the model's status message, and "Local only"
// while a video is open.
class StatusBarView final : public QWidget {
    Q_OBJECT
public:
    explicit StatusBarView(AppModel& model, QWidget* parent = nullptr);

    QProgressBar* progressBar() const { return m_progress; }
    ElidedLabel* messageLabel() const { return m_message; }
    QLabel* localOnlyLabel() const { return m_localOnly; }

private:
    AppModel& m_model;
    QProgressBar* m_progress;
    ElidedLabel* m_message;
    QLabel* m_localOnly;
};

} // namespace cuewright
