#include "app/ui/CaptionRowDelegate.h"

#include "app/ui/CaptionListModel.h"
#include "app/ui/SymbolIcons.h"
#include "app/ui/ViewStyle.h"

#include <QAbstractItemView>
#include <QFontMetrics>
#include <QPainter>
#include <QPainterPath>
#include <QTextLayout>

namespace cuewright {

namespace {

    // At most `maxLines` lines of `text` wrapped to `width`, the last one elided.
    int drawWrappedText(QPainter* painter, const QString& source, const QFont& font, const QRect& rect, int maxLines)
    {
        QString text = source;
        text.replace(QLatin1Char('\n'), QChar::LineSeparator);
        const QFontMetrics metrics(font);
        QTextLayout layout(text, font);
        QTextOption option;
        option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
        layout.setTextOption(option);
        layout.beginLayout();
        int y = rect.top();
        int drawn = 0;
        for (int lineNumber = 0; lineNumber < maxLines; ++lineNumber) {
            QTextLine line = layout.createLine();
            if (!line.isValid())
                break;
            line.setLineWidth(rect.width());
            const bool last = lineNumber == maxLines - 1;
            const QString lineText = text.mid(line.textStart(), line.textLength());
            if (last && line.textStart() + line.textLength() < text.size()) {
                QString rest = text.mid(line.textStart());
                rest.replace(QChar::LineSeparator, QLatin1Char(' '));
                painter->drawText(
                    QPoint(rect.left(), y + metrics.ascent()), metrics.elidedText(rest, Qt::ElideRight, rect.width()));
            } else {
                QString plain = lineText;
                plain.remove(QChar::LineSeparator);
                painter->drawText(QPoint(rect.left(), y + metrics.ascent()), plain);
            }
            y += metrics.lineSpacing();
            ++drawn;
        }
        layout.endLayout();
        return qMax(drawn, 1);
    }

} // namespace

CaptionRowDelegate::CaptionRowDelegate(QObject* parent)
    : QStyledItemDelegate(parent)
    , m_issueIcon(
          tintedSymbolIcon(QStringLiteral("exclamationmark.triangle.fill"), ViewStyle::warningOrange(), issueIconSize))
{
}

QSize CaptionRowDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const
{
    const QFontMetrics text(option.font);
    const QFontMetrics caption(ViewStyle::captionFont());
    const int height = verticalPadding + 2 * text.lineSpacing() + lineSpacing + caption.height() + verticalPadding;
    return { option.rect.width() > 0 ? option.rect.width() : 200, height };
}

void CaptionRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const QWidget* widget = option.widget;
    const bool selected = index.data(CaptionListModel::SelectedRole).toBool();
    const bool active = index.data(CaptionListModel::ActiveRole).toBool();
    const bool hasIssue = index.data(CaptionListModel::HasIssueRole).toBool();

    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const QRectF rowRect = QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5);
    if (selected) {
        QPainterPath shape;
        shape.addRoundedRect(rowRect, 9, 9);
        QColor fill = ViewStyle::accentColor(widget);
        fill.setAlphaF(0.16f);
        painter->fillPath(shape, fill);
        QColor stroke = ViewStyle::accentColor(widget);
        stroke.setAlphaF(0.55f);
        painter->setPen(QPen(stroke, 1.0));
        painter->drawPath(shape);
    } else if (option.state & QStyle::State_MouseOver) {
        QPainterPath shape;
        shape.addRoundedRect(rowRect, 9, 9);
        QColor hover = ViewStyle::secondaryTextColor(widget);
        hover.setAlphaF(0.06f);
        painter->fillPath(shape, hover);
    }

    const QRect content
        = option.rect.adjusted(horizontalPadding, verticalPadding, -horizontalPadding, -verticalPadding);

    QColor dot = active ? ViewStyle::activeGreen() : ViewStyle::secondaryTextColor(widget);
    if (!active)
        dot.setAlphaF(0.25f);
    painter->setPen(Qt::NoPen);
    painter->setBrush(dot);
    painter->drawEllipse(QRectF(content.left(), content.top() + dotTopPadding, dotDiameter, dotDiameter));

    int textLeft = content.left() + dotDiameter + contentSpacing;
    int textRight = content.right();
    if (hasIssue) {
        const QRect iconRect(content.right() - issueIconSize + 1, content.top() + 1, issueIconSize, issueIconSize);
        m_issueIcon.paint(painter, iconRect);
        textRight = iconRect.left() - contentSpacing;
    }
    const int textWidth = qMax(10, textRight - textLeft);

    const QFontMetrics textMetrics(option.font);
    painter->setPen(option.palette.color(QPalette::Text));
    const int lines = drawWrappedText(painter, index.data(Qt::DisplayRole).toString(), option.font,
        QRect(textLeft, content.top(), textWidth, 2 * textMetrics.lineSpacing()), 2);

    const QFont timesFont = ViewStyle::monospacedDigitsFont(ViewStyle::captionFont());
    const QFontMetrics timesMetrics(timesFont);
    painter->setFont(timesFont);
    painter->setPen(ViewStyle::secondaryTextColor(widget));
    const int timesTop = content.top() + lines * textMetrics.lineSpacing() + lineSpacing;
    painter->drawText(
        QPoint(textLeft, timesTop + timesMetrics.ascent()), index.data(CaptionListModel::TimesRole).toString());
    painter->restore();
}

} // namespace cuewright
