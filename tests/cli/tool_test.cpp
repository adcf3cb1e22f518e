#include "tests/cli/tool_test.h"
#include "tests/support/places.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

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

ToolRun RunTool(const std::vector<std::string>& arguments) {
    const fs::path folder = newFolder();
    std::string line = "timeout -s KILL 30 " + quoted(buildFile("cli/tonewright"));
    for (const std::string& argument : arguments) line += quoted(argument);
    line += "</dev/null >" + quoted(folder / "out") + "2>" + quoted(folder / "err");
    const int status = std::system(line.c_str());
    rusage usage{};
    ::getrusage(RUSAGE_CHILDREN, &usage);
    const ToolRun run = {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ToolTest::ReadBytes(folder / "out"),
                         ToolTest::ReadBytes(folder / "err"), usage.ru_maxrss};
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
