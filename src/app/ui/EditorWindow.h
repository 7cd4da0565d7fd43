#pragma once

#include <QMainWindow>

#include <functional>
#include <memory>

namespace cuewright {

class AppMenus;
class AppModel;
class ContentView;

// The one editor window: the content view under the menu bar.
class EditorWindow final : public QMainWindow {
    Q_OBJECT
public:
    EditorWindow(AppModel& model, std::function<void(EditorWindow&)> installMenus, QWidget* parent = nullptr);

    ContentView* content() const { return m_content; }

private:
    ContentView* m_content;
};

} // namespace cuewright
