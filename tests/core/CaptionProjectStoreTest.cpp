#include "TemporaryFolder.h"

#include "core/AtomicFile.h"
#include "core/CaptionJson.h"
#include "core/CaptionProjectStore.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace cuewright;
using cuewright::testing::readText;
using cuewright::testing::TemporaryFolder;
using cuewright::testing::writeText;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

namespace {

CaptionProject sampleProject()
{
    return CaptionProject { "/Movies/talk \u00E9.mov",
        CaptionDocument({ CaptionCue(Uuid::generate(), 1.5, 3.25, "Hello", 0.5, 0.5),
            CaptionCue(Uuid::generate(), 4, 6, "World") }),
        defaultCaptionStyle() };
}

template <typename F> FileError fileError(F&& f)
{
    try {
        f();
    } catch (const FileError& error) {
        return error;
    }
    ADD_FAILURE() << "no FileError";
    return FileError(FileError::Kind::readFailed, {}, "");
}

// Lowers the file size limit for the life of the object, so a write stops part of the way.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        getrlimit(RLIMIT_FSIZE, &m_old);
        m_handler = std::signal(SIGXFSZ, SIG_IGN);
        rlimit limit = m_old;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &m_old);
        std::signal(SIGXFSZ, m_handler);
    }

private:
    rlimit m_old {};
    void (*m_handler)(int) = nullptr;
};

} // namespace

TEST(CaptionProjectStore, writesTheEncodingAndReadsItBack)
{
    TemporaryFolder folder;
    const auto target = folder / "talk.vantrelcaption";
    const CaptionProject project = sampleProject();
    CaptionProjectStore::write(project, target);
    EXPECT_EQ(readText(target), CaptionProjectStore::encode(project));
    EXPECT_EQ(CaptionProjectStore::read(target), project);

    CaptionProject changed = project;
    changed.document.cues.erase(0);
    CaptionProjectStore::write(changed, target);
    EXPECT_EQ(CaptionProjectStore::read(target), changed);
    EXPECT_THAT(folder.names(), ElementsAre("talk.vantrelcaption"));
}

TEST(CaptionProjectStore, readDropsUnknownKeysOnTheNextWrite)
{
    TemporaryFolder folder;
    const auto target = folder / "a.vantrelcaption";
    std::string json = CaptionProjectStore::encode(sampleProject());
    json.insert(1, R"("comment":"from a newer version",)");
    writeText(target, json);
    const CaptionProject project = CaptionProjectStore::read(target);
    CaptionProjectStore::write(project, target);
    EXPECT_THAT(readText(target), ::testing::Not(HasSubstr("comment")));
}

TEST(CaptionProjectStore, failedWritesLeaveTheOldFileAndNoTemporaryFile)
{
    TemporaryFolder folder;
    const auto target = folder / "talk.vantrelcaption";
    const std::string old = CaptionProjectStore::encode(sampleProject());
    writeText(target, old);

    // Encoding fails before anything is written.
    CaptionProject broken = sampleProject();
    broken.document.cues.mutableAt(1).start = NAN;
    EXPECT_THROW(CaptionProjectStore::write(broken, target), CaptionJsonError);
    EXPECT_EQ(readText(target), old);

    // The disk refuses part of the way through the bytes.
    CaptionProject large = sampleProject();
    for (int i = 0; i < 2000; ++i)
        large.document.cues.push_back(CaptionCue(Uuid::generate(), i, i + 1, "text"));
    {
        FileSizeLimit limit(4096);
        const auto error = fileError([&] { CaptionProjectStore::write(large, target); });
        EXPECT_EQ(error.kind, FileError::Kind::writeFailed);
        EXPECT_STREQ(error.what(),
            "The file \u201Ctalk.vantrelcaption\u201D couldn\u2019t be saved because there isn\u2019t enough space.");
    }
    EXPECT_EQ(readText(target), old);

    // A folder stands where the file would go.
    std::filesystem::create_directory(folder / "taken.vantrelcaption");
    EXPECT_THROW(CaptionProjectStore::write(sampleProject(), folder / "taken.vantrelcaption"), FileError);

    EXPECT_THAT(folder.names(), ElementsAre("taken.vantrelcaption", "talk.vantrelcaption"));
}

TEST(CaptionProjectStore, writeIntoAReadOnlyFolderFailsWithAClearMessage)
{
    if (geteuid() == 0)
        GTEST_SKIP() << "permissions do not bind the super-user";
    TemporaryFolder folder;
    const auto target = folder / "talk.vantrelcaption";
    writeText(target, "old bytes");
    std::filesystem::permissions(
        folder.path(), std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
    const auto error = fileError([&] { CaptionProjectStore::write(sampleProject(), target); });
    std::filesystem::permissions(folder.path(), std::filesystem::perms::owner_all);
    EXPECT_EQ(error.what(),
        "You don\u2019t have permission to save the file \u201Ctalk.vantrelcaption\u201D in the folder \u201C"
            + folder.path().filename().string() + "\u201D.");
    EXPECT_EQ(readText(target), "old bytes");
    EXPECT_THAT(folder.names(), ElementsAre("talk.vantrelcaption"));
}

TEST(AtomicFile, namesTheMissingFolder)
{
    TemporaryFolder folder;
    writeText(folder / "plain", "x");
    const auto error = fileError([&] { writeFileAtomically(folder / "plain" / "a.vantrelcaption", "{}"); });
    EXPECT_STREQ(error.what(),
        "The file \u201Ca.vantrelcaption\u201D couldn\u2019t be saved because the folder \u201Cplain\u201D "
        "doesn\u2019t exist.");
    EXPECT_EQ(error.code, std::errc::not_a_directory);
}

TEST(AtomicFile, keepsPermissionsAndSymbolicLinks)
{
    TemporaryFolder folder;
    const auto real = folder / "real.vantrelcaption";
    writeText(real, "old");
    ::chmod(real.c_str(), 0640);
    std::filesystem::create_symlink("real.vantrelcaption", folder / "link.vantrelcaption");

    writeFileAtomically(folder / "link.vantrelcaption", "new");
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "link.vantrelcaption"));
    EXPECT_EQ(readText(real), "new");
    struct stat info { };
    ASSERT_EQ(::stat(real.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0640u);
}

TEST(AtomicFile, readFailuresSayWhy)
{
    TemporaryFolder folder;
    auto error = fileError([&] { readWholeFile(folder / "gone.vantrelcaption"); });
    EXPECT_EQ(error.kind, FileError::Kind::readFailed);
    EXPECT_STREQ(error.what(),
        "The file \u201Cgone.vantrelcaption\u201D couldn\u2019t be opened because there is no such file.");
    error = fileError([&] { CaptionProjectStore::read(folder.path()); });
    EXPECT_THAT(error.what(), HasSubstr("because it is a folder."));

    writeText(folder / "empty.vantrelcaption", "");
    EXPECT_THROW(CaptionProjectStore::read(folder / "empty.vantrelcaption"), CaptionJsonError);
}
