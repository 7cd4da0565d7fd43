#include "ui/UpdateCheck.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QElapsedTimer>
#include <QMessageBox>
#include <QPointer>
#include <QTimer>

#include <stdexcept>

using namespace cuewright;

namespace {

struct Seen {
    QString text;
    QString informativeText;
    QStringList buttons;
};

// Waits (bounded) for each modal message box in turn, records it and presses the named button.
class DialogDriver {
public:
    explicit DialogDriver(QStringList presses)
        : m_presses(std::move(presses))
    {
        // A repeating timer keeps firing inside the dialogs' own event loops.
        QObject::connect(&m_timer, &QTimer::timeout, [this] { pressIfShown(); });
        m_timer.start(10);
    }

    void runUntil(const std::function<bool()>& done)
    {
        QElapsedTimer clock;
        clock.start();
        while (!done() && clock.elapsed() < 5000)
            QApplication::processEvents(QEventLoop::AllEvents, 20);
    }

    std::vector<Seen> seen;

private:
    void pressIfShown()
    {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box || box == m_last)
            return;
        m_last = box;
        Seen record { box->text(), box->informativeText(), {} };
        for (auto* button : box->buttons())
            record.buttons << button->text();
        seen.push_back(record);
        const QString press = m_presses.isEmpty() ? QString() : m_presses.takeFirst();
        for (auto* button : box->buttons()) {
            if (press.isEmpty() || button->text() == press) {
                button->click();
                return;
            }
        }
    }

    QStringList m_presses;
    QPointer<QMessageBox> m_last;
    QTimer m_timer;
};

int argc = 1;
char name[] = "test";
char* argv[] = { name, nullptr };

struct Harness {
    Harness()
    {
        services.check = [this](const QString& current) {
            askedVersion = current;
            return offer;
        };
        services.install = [this](const UpdateInfo& info) {
            installed = info;
            if (installFails)
                throw std::runtime_error("no");
        };
        services.terminate = [this] { terminated = true; };
    }

    QApplication app { argc, argv };
    std::optional<UpdateInfo> offer;
    bool installFails = false;
    QString askedVersion;
    std::optional<UpdateInfo> installed;
    bool terminated = false;
    UpdateCheckServices services;
};

} // namespace

TEST(UpdateCheck, answersEachOutcomeInItsOwnDialog)
{
    Harness h;
    {
        DialogDriver driver({});
        checkForUpdates("1.2.3", nullptr, h.services);
        driver.runUntil([&] { return !driver.seen.empty(); });
        ASSERT_EQ(driver.seen.size(), 1u);
        EXPECT_EQ(h.askedVersion, "1.2.3");
        EXPECT_EQ(driver.seen[0].text, "Vantrel Cuewright is up to date");
        EXPECT_EQ(driver.seen[0].informativeText, "You already have the latest version.");
    }

    h.offer = UpdateInfo { "2.0", "https://127.0.0.1/u.zip", "Faster export.", std::nullopt };
    {
        DialogDriver driver({ "Later" });
        checkForUpdates("1.2.3", nullptr, h.services);
        driver.runUntil([&] { return !driver.seen.empty(); });
        ASSERT_EQ(driver.seen.size(), 1u);
        EXPECT_EQ(driver.seen[0].text, "Vantrel Cuewright 2.0 is available");
        EXPECT_EQ(driver.seen[0].informativeText, "Faster export.");
        EXPECT_TRUE(driver.seen[0].buttons.contains("Install Update"));
        EXPECT_TRUE(driver.seen[0].buttons.contains("Later"));
        QApplication::processEvents();
        EXPECT_FALSE(h.installed);
    }
    {
        DialogDriver driver({ "Install Update" });
        checkForUpdates("1.2.3", nullptr, h.services);
        driver.runUntil([&] { return h.terminated; });
        EXPECT_EQ(h.installed, h.offer);
        EXPECT_TRUE(h.terminated);
        EXPECT_EQ(driver.seen.size(), 1u);
    }

    h.terminated = false;
    h.installFails = true;
    {
        DialogDriver driver({ "Install Update" });
        checkForUpdates("1.2.3", nullptr, h.services);
        driver.runUntil([&] { return driver.seen.size() == 2; });
        ASSERT_EQ(driver.seen.size(), 2u);
        EXPECT_EQ(driver.seen[1].text, "The update could not be installed");
        EXPECT_EQ(driver.seen[1].informativeText, "Download it from the website instead.");
        EXPECT_FALSE(h.terminated);
    }
}
