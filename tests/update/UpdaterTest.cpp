#include "UpdateTestSupport.h"

#include "update/Updater.h"

#include <gtest/gtest.h>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace cuewright;
using namespace cuewright::test;

TEST(Updater, isNewerComparesDottedNumbersPositionByPosition)
{
    struct Case {
        const char* candidate;
        const char* current;
        bool newer;
    };
    const Case cases[] = {
        { "1.2.4", "1.2.3", true },
        { "1.2.3", "1.2.3", false },
        { "1.2.2", "1.2.3", false },
        { "1.2.3", "1.2.3.0", false },
        { "1.2.3.0", "1.2.3", false },
        { "1.2.3.1", "1.2.3", true },
        { "1.10", "1.9", true },
        { "2", "1.9.9", true },
        { "1.02", "1.1", true },
        { "0010", "9", true },
        { "18446744073709551615", "1", false }, // beyond Int64: left out, so it reads as nothing
        { "1.99999999999999999999.2", "1.3", false }, // the 2 moves up into the second place
        { "1.99999999999999999999.4", "1.3", true },
    };
    for (const auto& c : cases)
        EXPECT_EQ(Updater::isNewer(c.candidate, c.current), c.newer) << c.candidate << " vs " << c.current;
}

TEST(Updater, isNewerRefusesAnythingButDottedNumbersOnEitherSide)
{
    for (const char* bad : { "", "v2.0", "1.2.x", "1..2", "1.2-beta", ".1", "1.", "+2", "-1", "2 ", "1.2.3a" }) {
        EXPECT_FALSE(Updater::isNewer(bad, "0.1")) << bad;
        EXPECT_FALSE(Updater::isNewer("99", bad)) << bad;
    }
    // Numbers that aren't ASCII digits pass the form test but are left out of the comparison.
    EXPECT_FALSE(Updater::isNewer("1.\u0663", "1")); // Arabic-Indic three
    EXPECT_TRUE(Updater::isNewer("1.\u0663.1", "1")); // the 1 moves up
}

TEST(Updater, updateInfoReadsTheManifestByHand)
{
    const auto info = Updater::updateInfo(
        R"({"version":"2.0","url":"https://example.com/a.zip","notes":"Faster.","sha256":"AB","extra":1})", "1.0");
    ASSERT_TRUE(info);
    EXPECT_EQ(*info, (UpdateInfo { "2.0", "https://example.com/a.zip", "Faster.", "AB" }));

    const auto bare = Updater::updateInfo(R"({"version":"2.0","url":"https://example.com/a.zip"})", "1.0");
    ASSERT_TRUE(bare);
    EXPECT_EQ(bare->notes, "");
    EXPECT_FALSE(bare->sha256);

    // Keys of the wrong type count as missing.
    const auto typed
        = Updater::updateInfo(R"({"version":"2.0","url":"https://example.com/a.zip","notes":5,"sha256":null})", "1.0");
    ASSERT_TRUE(typed);
    EXPECT_EQ(typed->notes, "");
    EXPECT_FALSE(typed->sha256);
}

TEST(Updater, updateInfoGivesNothingForBadManifests)
{
    for (const char* body : {
             "",
             "not json",
             R"([{"version":"2.0","url":"https://example.com/a.zip"}])",
             R"("2.0")",
             R"({"version":2,"url":"https://example.com/a.zip"})",
             R"({"url":"https://example.com/a.zip"})",
             R"({"version":"2.0"})",
             R"({"version":"2.0","url":"http://example.com/a.zip"})",
             R"({"version":"2.0","url":"HTTPS://example.com/a.zip"})",
             R"({"version":"2.0","url":"Https://example.com/a.zip"})",
             R"({"version":"2.0","url":"https:///a.zip"})",
             R"({"version":"2.0","url":"https://exa mple.com/a.zip"})",
             R"({"version":"2.0","url":"/caption/a.zip"})",
             R"({"version":"1.0","url":"https://example.com/a.zip"})",
             R"({"version":"0.9","url":"https://example.com/a.zip"})",
             R"({"version":"v2.0","url":"https://example.com/a.zip"})",
         })
        EXPECT_FALSE(Updater::updateInfo(body, "1.0")) << body;
}

class UpdaterCheck : public ::testing::Test {
protected:
    std::optional<UpdateInfo> check(int status, const std::string& body, const std::string& current = "1.2.3")
    {
        server.route("/caption/latest.json", { status, body });
        return Updater::check(server.url("/caption/latest.json"), current, session);
    }

    HttpsServer server;
    UpdateSession session { Pki::shared().caCertificate };
};

TEST_F(UpdaterCheck, offersANewerVersionAndBypassesCaches)
{
    const auto info = check(200, R"({"version":"1.3","url":"https://127.0.0.1/u.zip","notes":"New."})");
    ASSERT_TRUE(info);
    EXPECT_EQ(info->version, "1.3");
    EXPECT_EQ(info->notes, "New.");
    ASSERT_EQ(server.requests().size(), 1u);
    EXPECT_NE(server.requests().front().find("Cache-Control: no-cache"), std::string::npos);
}

TEST_F(UpdaterCheck, everyFailureLooksLikeNoUpdate)
{
    const std::string newer = R"({"version":"9.0","url":"https://127.0.0.1/u.zip"})";
    EXPECT_FALSE(check(200, R"({"version":"1.2.3","url":"https://127.0.0.1/u.zip"})"));
    EXPECT_FALSE(check(200, R"({"version":"1.2.2","url":"https://127.0.0.1/u.zip"})"));
    EXPECT_FALSE(check(200, R"({"version":"9.0","url":"http://127.0.0.1/u.zip"})"));
    EXPECT_FALSE(check(200, R"({"version":"9.0","url":"HTTPS://127.0.0.1/u.zip"})"));
    EXPECT_FALSE(check(404, newer));
    EXPECT_FALSE(check(304, newer));
    EXPECT_FALSE(check(201, newer));
    EXPECT_FALSE(check(200, "<html>not json</html>"));
    EXPECT_FALSE(check(200, "[" + newer + "]"));
    EXPECT_TRUE(check(200, newer));
}

TEST_F(UpdaterCheck, refusesServersItCannotTrustAndPlainHttp)
{
    server.route("/caption/latest.json", { 200, R"({"version":"9.0","url":"https://127.0.0.1/u.zip"})" });
    // The system's authorities don't know the test's CA.
    EXPECT_FALSE(Updater::check(server.url("/caption/latest.json"), "1.0", UpdateSession {}));
    std::string plain = server.url("/caption/latest.json");
    plain.replace(0, 5, "http");
    EXPECT_FALSE(Updater::check(plain, "1.0", session));
    EXPECT_TRUE(Updater::check(server.url("/caption/latest.json"), "1.0", session));
}

TEST_F(UpdaterCheck, noServerGivesNothing)
{
    // A port that was just free: nothing listens there.
    const int probe = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    ASSERT_EQ(bind(probe, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    getsockname(probe, reinterpret_cast<sockaddr*>(&address), &length);
    close(probe);
    const std::string url = "https://127.0.0.1:" + std::to_string(ntohs(address.sin_port)) + "/caption/latest.json";
    EXPECT_FALSE(Updater::check(url, "1.0", session));
}
