#pragma once

#include "app/model/FileDialogs.h"

#include <QFileDialog>
#include <QPointer>
#include <QWidget>

namespace cuewright {

// The model's open and save panels as QFileDialog, modal to the editor window. The types
// come from the shared MIME database, so every video the desktop knows is offered.
class QtFileDialogs final : public FileDialogs {
public:
    explicit QtFileDialogs(QWidget* parent = nullptr);

    std::optional<QUrl> openFile(const std::vector<FileType>& allowedTypes, const QString& proposedName) override;
    std::optional<QUrl> saveFile(const std::vector<FileType>& allowedTypes, const QString& proposedName) override;

    // "Videos (*.mp4 *.mov …)" and so on, one entry for all the types together.
    static QString nameFilter(const std::vector<FileType>& allowedTypes);

private:
    std::optional<QUrl> run(
        QFileDialog::AcceptMode mode, const std::vector<FileType>& allowedTypes, const QString& proposedName);

    QPointer<QWidget> m_parent;
};

} // namespace cuewright
