#pragma once

#include <QWidget>

class QLabel;
class QListView;
class QPushButton;
class QStackedWidget;
class QToolButton;

namespace cuewright {

class AppModel;
class CaptionListModel;

// The left pane: the "Captions" header with the issue count and the add button, then either
// the empty state or one row per cue. A click on a row selects the cue and seeks to it; the
// list never scrolls by itself.
class CaptionListView final : public QWidget {
    Q_OBJECT
public:
    explicit CaptionListView(AppModel& model, QWidget* parent = nullptr);

    QToolButton* issueCountButton() const { return m_issueButton; }
    QToolButton* addButton() const { return m_addButton; }
    QListView* listView() const { return m_list; }
    CaptionListModel* listModel() const { return m_rows; }
    // The empty state's parts, for whoever needs to find them.
    QLabel* emptyMessageLabel() const { return m_emptyMessage; }
    QPushButton* emptyTranscribeButton() const { return m_emptyTranscribe; }

private:
    QWidget* makeHeader();
    QWidget* makeEmptyState();
    void refreshDocument();
    void refreshActiveCue();
    void refreshEmptyState();
    void activateRow(int row);

    AppModel& m_model;
    CaptionListModel* m_rows;
    QToolButton* m_issueButton = nullptr;
    QToolButton* m_addButton = nullptr;
    QStackedWidget* m_stack = nullptr;
    QListView* m_list = nullptr;
    QLabel* m_emptyMessage = nullptr;
    QPushButton* m_emptyTranscribe = nullptr;
};

} // namespace cuewright
