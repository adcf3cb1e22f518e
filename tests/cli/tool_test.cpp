#include "tests/cli/tool_test.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <fstream>
#include <sstream>
#include <thread>

namespace fs = std::filesystem;

namespace {

constexpr std::chrono::seconds kTimeLimit{30};

std::string uniqueName() {
    static int counter = 0;
    return "tonewright-tool-" + std::to_string(::getpid()) + "-" + std::to_string(counter++);
}

[[noreturn]] void becomeTool(const std::vector<std::string>& arguments, const std::string& out,
                             const std::string& err) {
    ::dup2(::open("/dev/null", O_RDONLY), STDIN_FILENO);
    ::dup2(::open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDOUT_FILENO);
    ::dup2(::open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDERR_FILENO);
    std::string program = TONEWRIGHT_BINARY;
    std::vector<std::string> copies = arguments;
    std::vector<char*> argv = {program.data()};
    for (std::string& argument : copies) argv.push_back(argument.data());
    argv.push_back(nullptr);
    ::execv(argv[0], argv.data());
    ::_exit(127);
}

std::string slurp(const std::string& path) {
    std::ostringstream bytes;
    bytes << std::ifstream(path, std::ios::binary).rdbuf();
    return bytes.str();
}

}  // namespace

ToolRun RunTool(const std::vector<std::string>& arguments) {
    const std::string base = testing::TempDir() + uniqueName();
    const std::string out = base + ".out", err = base + ".err";
    const pid_t child = ::fork();
    if (child == 0) becomeTool(arguments, out, err);
    const auto deadline = std::chrono::steady_clock::now() + kTimeLimit;
    int status = 0;
    rusage usage{};
    while (::wait4(child, &status, WNOHANG, &usage) == 0) {
        if (std::chrono::steady_clock::now() > deadline) {
            ::kill(child, SIGKILL);
            ::wait4(child, &status, 0, &usage);
            break;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    ToolRun run;
    if (WIFEXITED(status)) run.status = WEXITSTATUS(status);
    run.out = slurp(out);
    run.err = slurp(err);
    run.peakKilobytes = usage.ru_maxrss;
    fs::remove(out);
    fs::remove(err);
    return run;
}

ToolTest::ToolTest() : folder_(fs::path(testing::TempDir()) / uniqueName()) { fs::create_directories(folder_); }

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

std::string ToolTest::ReadBytes(const std::string& path) { return slurp(path); }

std::string WithU32(std::string bytes, std::size_t offset, std::uint32_t value) {
    for (std::size_t i = 0; i < 4; ++i) bytes.at(offset + i) = static_cast<char>(value >> 8 * i & 0xFF);
    return bytes;
}
