#include <QCoreApplication>

#include <gtest/gtest.h>

namespace {

// The model needs an application object for its timers and continuations.
class QtEnvironment : public ::testing::Environment {
public:
    void SetUp() override
    {
        static int argc = 1;
        static char name[] = "test_model";
        static char* argv[] = { name, nullptr };
        m_app = std::make_unique<QCoreApplication>(argc, argv);
    }
    void TearDown() override { m_app.reset(); }

private:
    std::unique_ptr<QCoreApplication> m_app;
};

const auto* const environment = ::testing::AddGlobalTestEnvironment(new QtEnvironment);

} // namespace
