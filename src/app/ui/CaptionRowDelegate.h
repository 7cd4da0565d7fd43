#pragma once

#include <QIcon>
#include <QStyledItemDelegate>

namespace cuewright {

// Paints one caption row: the playhead dot, two lines of text, the times, the issue mark,
// and the tint and outline of the selection. Every row has the same height, so a list of
// thousands lays out without measuring each row.
class CaptionRowDelegate final : public QStyledItemDelegate {
    Q_OBJECT
public:
    explicit CaptionRowDelegate(QObject* parent = nullptr);

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

    static constexpr int horizontalPadding = 10;
    static constexpr int verticalPadding = 8;
    static constexpr int dotDiameter = 7;
    static constexpr int dotTopPadding = 6;
    static constexpr int contentSpacing = 10;
    static constexpr int lineSpacing = 4;
    static constexpr int issueIconSize = 14;

private:
    QIcon m_issueIcon;
};

} // namespace cuewright
