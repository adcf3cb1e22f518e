#include "tests/cli/tool_test.h"
#include "tests/support/places.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace fs = std::filesystem;

namespace {

std::string quoted(const std::string& text) { return "'" + text + "' "; }  // no test's text has a quote itself

fs::path newFolder() {
    static int counter = 0;
    const std::string name = "tonewright-tool-" + std::to_string(::getpid()) + "-" + std::to_string(counter++);
    fs::create_directories(fs::path(testing::TempDir()) / name);
    return fs::path(testing::TempDir()) / name;
}

}  // namespace

ToolRun RunTool(const std::vector<std::string>& arguments, const std::string& out, const std::string& before) {
    const fs::path folder = newFolder();
    std::string line = before + " timeout -s KILL 30 " + quoted(buildFile("cli/tonewright"));
    for (const std::string& argument : arguments) line += quoted(argument);
    line += "</dev/null >" + quoted(out.empty() ? (folder / "out").native() : out) + "2>" + quoted(folder / "err");
    const int status = std::system(line.c_str());
    rusage usage{};
    ::getrusage(RUSAGE_CHILDREN, &usage);
    const ToolRun run = {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ToolTest::ReadBytes(folder / "out"),
                         ToolTest::ReadBytes(folder / "err"), usage.ru_maxrss};
    fs::remove_all(folder);
    return run;
}

ToolRun InterruptTool(const std::vector<std::string>& arguments, int signal, const std::function<bool()>& isReady) {
    const fs::path folder = newFolder();
    const std::string tool = buildFile("cli/tonewright"), out = folder / "out", err = folder / "err";
    std::vector<char*> words = {const_cast<char*>(tool.c_str())};
    for (const std::string& argument : arguments) words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);
    posix_spawn_file_actions_t files;
    ::posix_spawn_file_actions_init(&files);
    ::posix_spawn_file_actions_addopen(&files, 1, out.c_str(), O_WRONLY | O_CREAT, 0600);
    ::posix_spawn_file_actions_addopen(&files, 2, err.c_str(), O_WRONLY | O_CREAT, 0600);
    pid_t child = 0;
    EXPECT_EQ(::posix_spawn(&child, tool.c_str(), &files, nullptr, words.data(), environ), 0);
    ::posix_spawn_file_actions_destroy(&files);
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    int status = 0;
    for (bool isSent = false; ::waitpid(child, &status, WNOHANG) == 0; ::usleep(2000)) {
        if (std::chrono::steady_clock::now() > end) ::kill(child, SIGKILL);
        if (!isSent && isReady()) isSent = ::kill(child, signal) == 0;
    }
    const ToolRun run = {WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status), ToolTest::ReadBytes(out),
                         ToolTest::ReadBytes(err)};
    fs::remove_all(folder);
    return run;
}

ToolTest::ToolTest() : folder_(newFolder()) {}

ToolTest::~ToolTest() { fs::remove_all(folder_); }

std::vector<std::string> ToolTest::Files() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder_)) names.push_back(entry.path().filename().native());
    std::sort(names.begin(), names.end());
    return names;
}

std::string ToolTest::Write(const std::string& name, const std::string& bytes) const {
    std::ofstream(Path(name), std::ios::binary) << bytes;
    return Path(name);
}

std::string ToolTest::WriteImage(const std::string& name, const CTivImage& image, int fileFormat) const {
    EXPECT_TRUE(image.Save(Path(name), fileFormat)) << LastError();
    return Path(name);
}

std::string ToolTest::ReadBytes(const std::string& path) {
    std::ostringstream bytes;
    bytes << std::ifstream(path, std::ios::binary).rdbuf();
    return bytes.str();
}

std::string WithU32(std::string bytes, std::size_t offset, std::uint32_t value) {
    for (std::size_t i = 0; i < 4; ++i) bytes.at(offset + i) = static_cast<char>(value >> 8 * i & 0xFF);
    return bytes;
}
