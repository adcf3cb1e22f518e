#include "foundation/SafeFile.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

using namespace tonewright;

namespace fs = std::filesystem;

namespace {

class SafeFile : public testing::Test {
protected:
    void SetUp() override {
        std::string name = (fs::temp_directory_path() / "safefileXXXXXX").native();
        ASSERT_NE(::mkdtemp(name.data()), nullptr);
        folder_ = name;
    }
    void TearDown() override { fs::remove_all(folder_); }

    std::string Put(const std::string& name, const std::string& text) const {
        std::ofstream(folder_ / name, std::ios::binary) << text;
        return (folder_ / name).native();
    }
    static std::string Read(const fs::path& path) {
        std::ifstream stream(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    std::ptrdiff_t FileCount() const {
        return std::distance(fs::directory_iterator(folder_), fs::directory_iterator());
    }

    fs::path folder_;
};

}  // namespace

TEST_F(SafeFile, TargetKeepsEarlierContentUntilCommit) {
    const std::string path = Put("Wei\xc3\x9f \xe8\x89\xb2.ccor", "earlier");
    {
        SafeOutputFile dropped(path);
        ASSERT_TRUE(dropped.IsOpen());
        dropped.Stream() << "half";
        dropped.Stream().flush();
        EXPECT_EQ(Read(path), "earlier");
    }
    EXPECT_EQ(Read(path), "earlier");
    SafeOutputFile kept(path);
    kept.Stream() << "0000 later";
    kept.Stream().seekp(0);
    kept.Stream() << "much";
    EXPECT_TRUE(kept.Commit());
    EXPECT_EQ(Read(path), "much later");
    EXPECT_EQ(FileCount(), 1);
    EXPECT_FALSE(kept.Commit());
}

TEST_F(SafeFile, PermissionsAreTheEarlierFilesOrTheMasks) {
    const std::string path = Put("a", "earlier");
    ASSERT_EQ(::chmod(path.c_str(), 0640), 0);
    EXPECT_TRUE(SafeOutputFile(path).Commit());
    struct stat status {};
    ::stat(path.c_str(), &status);
    EXPECT_EQ(status.st_mode & 0777u, 0640u);

    const mode_t mask = ::umask(027);
    const std::string fresh = (folder_ / "b").native();
    EXPECT_TRUE(SafeOutputFile(fresh).Commit());
    ::umask(mask);
    ::stat(fresh.c_str(), &status);
    EXPECT_EQ(status.st_mode & 0777u, 0640u);
}

TEST_F(SafeFile, WritesThroughSymbolicLinksAndIntoPipesAndDevices) {
    const std::string path = Put("target", "earlier");
    fs::create_symlink("target", folder_ / "link");
    fs::create_symlink(folder_ / "link", folder_ / "second");
    fs::create_symlink("not yet", folder_ / "dangling");
    for (const auto& [name, landing] : {std::pair{"second", "target"}, std::pair{"dangling", "not yet"}}) {
        SafeOutputFile file((folder_ / name).native());
        file.Stream() << name;
        EXPECT_TRUE(file.Commit()) << name;
        EXPECT_TRUE(fs::is_symlink(folder_ / name)) << name;
        EXPECT_EQ(Read(folder_ / landing), name);
    }

    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    SafeOutputFile pipe("/dev/fd/" + std::to_string(ends[1]));
    pipe.Stream() << "piped";
    EXPECT_TRUE(pipe.Commit());
    char text[8] = {};
    EXPECT_EQ(::read(ends[0], text, sizeof text), 5);
    EXPECT_STREQ(text, "piped");
    ::close(ends[0]);
    ::close(ends[1]);

    SafeOutputFile full("/dev/full");
    ASSERT_TRUE(full.IsOpen());
    full.Stream() << "x";
    EXPECT_FALSE(full.Commit());
}

TEST_F(SafeFile, OpensExactlyWhatCouldBeWritten) {
    Put("file", "");
    fs::create_symlink("loop", folder_ / "loop");
    const std::string root = folder_.native();
    for (const std::string& path : {std::string(), root, root + "/", root + "/none/x", root + "/file/x", root + "/x/",
                                    root + "/loop", root + "/" + std::string(300, 'n')}) {
        SafeOutputFile file(path);
        EXPECT_FALSE(file.IsOpen()) << path;
        EXPECT_FALSE(file.Commit()) << path;
    }
    EXPECT_EQ(FileCount(), 2);
    EXPECT_TRUE(SafeOutputFile(root + "/" + std::string(255, 'n')).IsOpen());
}

TEST_F(SafeFile, FullDiskOrDeathHalfwayLeavesTheEarlierFile) {
    const std::string path = Put("a", "earlier");
    const auto inChild = [&](auto&& body) {
        const pid_t child = ::fork();
        if (child == 0) {
            body();
            ::_exit(1);
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        EXPECT_EQ(Read(path), "earlier");
        return status;
    };
    const int full = inChild([&] {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{5000, 5000};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        bool committed = false;
        {
            SafeOutputFile file(path);
            file.Stream() << std::string(20000, 'x');
            committed = file.Commit();
        }
        ::_exit(committed ? 1 : 0);
    });
    EXPECT_EQ(full, 0);
    EXPECT_EQ(FileCount(), 1);
    const int killed = inChild([&] {
        SafeOutputFile file(path);
        file.Stream() << std::string(20000, 'x') << std::flush;
        ::raise(SIGKILL);
    });
    EXPECT_TRUE(WIFSIGNALED(killed));
}

TEST_F(SafeFile, StagedNameIsNewEachTimeAndAPlantedLinkIsNotWrittenThrough) {
    const std::string victim = Put("victim", "keep");
    StagedFile first((folder_ / "a.bmp").native());
    const StagedFile second((folder_ / "a.bmp").native());
    EXPECT_NE(first.GetName(), second.GetName());
    EXPECT_EQ(fs::path(first.GetName()).extension(), ".bmp");
    EXPECT_EQ(first.GetName().find(std::to_string(::getpid())), std::string::npos);
    fs::remove(first.GetName());
    fs::create_symlink(victim, first.GetName());
    ASSERT_EQ(::chmod(victim.c_str(), 0600), 0);
    EXPECT_EQ(first.Commit(), std::errc::too_many_symbolic_link_levels);
    EXPECT_EQ(Read(victim), "keep");
    EXPECT_FALSE(fs::exists(folder_ / "a.bmp"));
}

TEST_F(SafeFile, StrangersLinkInAnOpenFolderIsRefused) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can make a stranger's link";
    constexpr uid_t kStranger = 12345;
    const std::string victim = Put("victim", "keep");
    fs::create_directory(folder_ / "open");
    const fs::path link = folder_ / "open" / "link";
    fs::create_symlink(victim, link);
    struct Case {
        mode_t folder;
        uid_t linkOwner;
        bool isFollowed;
    };
    for (const Case& c : {Case{01777, kStranger, false}, Case{0777, kStranger, false}, Case{01777, 0, true},
                          Case{0755, kStranger, true}}) {
        ASSERT_EQ(::chmod((folder_ / "open").c_str(), c.folder), 0);
        ASSERT_EQ(::lchown(link.c_str(), c.linkOwner, c.linkOwner), 0);
        Put("victim", "keep");
        SafeOutputFile file(link.native());
        file.Stream() << "lost";
        EXPECT_EQ(file.Commit(), c.isFollowed) << c.folder << ' ' << c.linkOwner;
        EXPECT_EQ(Read(victim), c.isFollowed ? "lost" : "keep") << c.folder << ' ' << c.linkOwner;
        EXPECT_EQ(StagedFile(link.native()).GetError() == std::errc::permission_denied, !c.isFollowed);
    }
}

TEST_F(SafeFile, SetOfFilesTakesItsPlacesWholeOrNotAtAll) {
    const std::string first = Put("first", "earlier");
    ASSERT_EQ(::chmod(first.c_str(), 0604), 0);
    if (::geteuid() == 0) {
        ASSERT_EQ(::chown(first.c_str(), 12345, 12345), 0);
    }
    struct stat before {};
    ::stat(first.c_str(), &before);
    std::vector<StagedFile> files;
    for (const char* name : {"first", "fresh", "blocked"}) {
        files.emplace_back((folder_ / name).native());
        SafeOutputFile writer(files.back().GetName());  // as a writer does that knows only names
        writer.Stream() << "new " << name;
        ASSERT_TRUE(writer.Commit());
    }
    fs::create_directories(folder_ / "blocked" / "full");
    const auto failure = StagedFile::CommitAll(files);
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->index, 2u);
    EXPECT_EQ(Read(first), "earlier");
    EXPECT_FALSE(fs::exists(folder_ / "fresh"));
    EXPECT_EQ(FileCount(), 2 + 3);

    fs::remove_all(folder_ / "blocked");
    const auto refuse = [&] {
        EXPECT_EQ(Read(first) + Read(folder_ / "fresh"), "new firstnew fresh");
        return std::make_error_code(std::errc::no_space_on_device);
    };
    const auto unconfirmed = StagedFile::CommitAll(files, refuse);
    ASSERT_TRUE(unconfirmed);
    EXPECT_EQ(unconfirmed->error, std::errc::no_space_on_device);
    EXPECT_EQ(Read(first), "earlier");
    EXPECT_EQ(FileCount(), 1 + 3);
    EXPECT_FALSE(StagedFile::CommitAll(files));
    EXPECT_EQ(Read(first), "new first");
    EXPECT_EQ(Read(folder_ / "blocked"), "new blocked");
    EXPECT_EQ(FileCount(), 3);
    struct stat after {};
    ::stat(first.c_str(), &after);
    EXPECT_EQ(after.st_mode, before.st_mode);
    EXPECT_EQ(after.st_uid, before.st_uid);
}

TEST_F(SafeFile, EndingProcessLeavesNothingStaged) {
    const std::string path = Put("a", "earlier");
    const pid_t child = ::fork();
    if (child == 0) {
        StagedFile staged(path);
        SafeOutputFile writer(staged.GetName());
        StagedFile::DropAll();
        const bool refused = writer.Stream() << "x" && !writer.Commit() && staged.Commit() &&
                             !SafeOutputFile(path).IsOpen() && FileCount() == 1;
        ::_exit(refused ? 0 : 1);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(Read(path), "earlier");
    EXPECT_EQ(FileCount(), 1);
}
