#pragma once

#include "core/CaptionDocument.h"
#include "core/Uuid.h"

#include <QAbstractListModel>

#include <optional>
#include <unordered_map>
#include <unordered_set>

namespace cuewright {

// The rows of the caption list: one per cue in document order, with whether the cue is at
// the playhead, selected, or has a quality issue. A new document costs one pass over the
// cues and the quality rules; a moving playhead or selection touches only the rows involved.
class CaptionListModel final : public QAbstractListModel {
    Q_OBJECT
public:
    enum Role {
        CueIDRole = Qt::UserRole + 1, // QString
        TimesRole, // "S  –  E"
        ActiveRole,
        SelectedRole,
        HasIssueRole,
        StartRole, // double seconds
    };

    explicit CaptionListModel(QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

    // Takes a new document and recomputes the issue marks.
    void setDocument(const CaptionDocument& document);
    void setActiveCueID(std::optional<Uuid> id);
    void setSelectedCueID(std::optional<Uuid> id);

    const CaptionDocument& document() const { return m_document; }
    std::optional<Uuid> cueIDAt(int row) const;
    std::optional<int> rowOf(const Uuid& id) const;
    bool hasIssue(const Uuid& id) const { return m_issueCueIDs.contains(id); }
    int issueCueCount() const { return static_cast<int>(m_issueCueIDs.size()); }

    // The ids of the cues that break at least one reading rule.
    static std::unordered_set<Uuid> issueCueIDs(const CaptionDocument& document);

private:
    void changeRowOf(const std::optional<Uuid>& id, int role);

    CaptionDocument m_document;
    std::unordered_map<Uuid, int> m_rowOfID;
    std::unordered_set<Uuid> m_issueCueIDs;
    std::optional<Uuid> m_activeCueID;
    std::optional<Uuid> m_selectedCueID;
};

} // namespace cuewright
