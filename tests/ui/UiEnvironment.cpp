#include "app/ui/SymbolIcons.h"

#include <QApplication>
#include <QStandardPaths>

#include <gtest/gtest.h>

#include <memory>

namespace {

// Widgets need a QApplication; tests keep their hands off the user's real folders.
class UiEnvironment : public ::testing::Environment {
public:
    void SetUp() override
    {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        static int argc = 1;
        static char name[] = "test_ui";
        static char* argv[] = { name, nullptr };
        m_app = std::make_unique<QApplication>(argc, argv);
        QStandardPaths::setTestModeEnabled(true);
        cuewright::installIconTheme();
    }
    void TearDown() override { m_app.reset(); }

private:
    std::unique_ptr<QApplication> m_app;
};

const auto* const environment = ::testing::AddGlobalTestEnvironment(new UiEnvironment);

} // namespace
