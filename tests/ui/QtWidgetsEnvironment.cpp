#include <QApplication>
#include <QStandardPaths>

#include <gtest/gtest.h>

namespace {

// Widgets need a QApplication; the offscreen platform comes from the test's environment.
class QtWidgetsEnvironment : public ::testing::Environment {
public:
    void SetUp() override
    {
        static int argc = 1;
        static char name[] = "test_ui";
        static char* argv[] = { name, nullptr };
        QStandardPaths::setTestModeEnabled(true);
        m_app = std::make_unique<QApplication>(argc, argv);
    }
    void TearDown() override { m_app.reset(); }

private:
    std::unique_ptr<QApplication> m_app;
};

const auto* const environment = ::testing::AddGlobalTestEnvironment(new QtWidgetsEnvironment);

} // namespace
