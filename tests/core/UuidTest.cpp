#include "core/Uuid.h"

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <set>

using namespace cuewright;

TEST(Uuid, generatedIdsAreDistinctVersionFour)
{
    std::set<Uuid> seen;
    for (int i = 0; i < 1000; ++i) { // several refills of the random pool
        const auto id = Uuid::generate();
        const auto text = id.toString();
        EXPECT_EQ(text[14], '4');
        EXPECT_NE(std::string("89AB").find(text[19]), std::string::npos) << text;
        EXPECT_EQ(Uuid::parse(text), id);
        seen.insert(id);
    }
    EXPECT_EQ(seen.size(), 1000u);
}

TEST(Uuid, forkedChildDoesNotRepeatItsParent)
{
    Uuid::generate(); // fill the parent's pool
    int fds[2];
    ASSERT_EQ(pipe(fds), 0);
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        const auto id = Uuid::generate();
        const bool ok = write(fds[1], id.bytes().data(), 16) == 16;
        _exit(ok ? 0 : 1);
    }
    close(fds[1]);
    const auto parentId = Uuid::generate();
    std::array<std::uint8_t, 16> childBytes {};
    ASSERT_EQ(read(fds[0], childBytes.data(), 16), 16);
    close(fds[0]);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_NE(childBytes, parentId.bytes());
}
