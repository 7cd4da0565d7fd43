#include "app/ui/EditorWindow.h"

#include "app/model/AppModel.h"
#include "app/ui/ContentView.h"
#include "app/ui/ModelObserver.h"

#include <QFileInfo>

namespace cuewright {

EditorWindow::EditorWindow(AppModel& model, std::function<void(EditorWindow&)> installMenus, QWidget* parent)
    : QMainWindow(parent)
    , m_content(new ContentView(model, this))
{
    setObjectName(QStringLiteral("editorWindow"));
    setCentralWidget(m_content);
    if (installMenus)
        installMenus(*this);
    observe(
        model, this,
        [this, &model] {
            const QUrl video = model.videoURL();
            setWindowTitle(video.isEmpty()
                    ? tr("Vantrel Cuewright")
                    : QFileInfo(video.toLocalFile()).fileName() + QStringLiteral(" \u2014 Cuewright"));
        },
        &AppModel::videoURLChanged);
}

} // namespace cuewright
