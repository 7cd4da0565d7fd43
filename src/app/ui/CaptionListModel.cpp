#include "app/ui/CaptionListModel.h"

#include "app/ui/TimeText.h"
#include "core/CaptionQuality.h"

namespace cuewright {

CaptionListModel::CaptionListModel(QObject* parent)
    : QAbstractListModel(parent)
{
}

int CaptionListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_document.cues.size());
}

QVariant CaptionListModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const CaptionCue& cue = m_document.cues[static_cast<std::size_t>(index.row())];
    switch (role) {
    case Qt::DisplayRole:
        return QString::fromStdString(cue.text);
    case Qt::AccessibleTextRole:
        return QString::fromStdString(cue.text) + QStringLiteral(", ") + clock(cue.start) + QStringLiteral(" to ")
            + clock(cue.end);
    case CueIDRole:
        return QString::fromStdString(cue.id.toString());
    case TimesRole:
        return clock(cue.start) + QStringLiteral("  \u2013  ") + clock(cue.end);
    case ActiveRole:
        return m_activeCueID == cue.id;
    case SelectedRole:
        return m_selectedCueID == cue.id;
    case HasIssueRole:
        return m_issueCueIDs.contains(cue.id);
    case StartRole:
        return cue.start;
    default:
        return {};
    }
}

std::unordered_set<Uuid> CaptionListModel::issueCueIDs(const CaptionDocument& document)
{
    std::unordered_set<Uuid> ids;
    for (const CaptionQualityIssue& issue : CaptionQuality::issues(document))
        ids.insert(issue.cueID);
    return ids;
}

void CaptionListModel::setDocument(const CaptionDocument& document)
{
    auto issues = issueCueIDs(document);
    const bool sameCount = document.cues.size() == m_document.cues.size();
    if (!sameCount)
        beginResetModel();
    m_document = document;
    m_issueCueIDs = std::move(issues);
    m_rowOfID.clear();
    m_rowOfID.reserve(m_document.cues.size());
    int row = 0;
    for (const CaptionCue& cue : m_document.cues)
        m_rowOfID.try_emplace(cue.id, row++);
    if (!sameCount) {
        endResetModel();
    } else if (row > 0) {
        // Same length: repaint in place, so the view keeps its scroll position and focus.
        emit dataChanged(index(0), index(row - 1));
    }
}

void CaptionListModel::setActiveCueID(std::optional<Uuid> id)
{
    if (id == m_activeCueID)
        return;
    std::swap(id, m_activeCueID);
    changeRowOf(id, ActiveRole);
    changeRowOf(m_activeCueID, ActiveRole);
}

void CaptionListModel::setSelectedCueID(std::optional<Uuid> id)
{
    if (id == m_selectedCueID)
        return;
    std::swap(id, m_selectedCueID);
    changeRowOf(id, SelectedRole);
    changeRowOf(m_selectedCueID, SelectedRole);
}

void CaptionListModel::changeRowOf(const std::optional<Uuid>& id, int role)
{
    if (!id)
        return;
    if (auto row = rowOf(*id)) {
        const QModelIndex changed = index(*row);
        emit dataChanged(changed, changed, { role });
    }
}

std::optional<Uuid> CaptionListModel::cueIDAt(int row) const
{
    if (row < 0 || row >= rowCount())
        return std::nullopt;
    return m_document.cues[static_cast<std::size_t>(row)].id;
}

std::optional<int> CaptionListModel::rowOf(const Uuid& id) const
{
    auto found = m_rowOfID.find(id);
    if (found == m_rowOfID.end())
        return std::nullopt;
    return found->second;
}

} // namespace cuewright
