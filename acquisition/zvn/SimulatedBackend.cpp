#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <mutex>
#include <thread>

#include "acquisition/zvn/ZvnClock.h"
#include "acquisition/zvn/backend_impl.h"
#include "acquisition/zvn/simulated_frame_impl.h"
#include "acquisition/zvn/simulation_impl.h"
#include "foundation/SafeFile.h"

using namespace tonewright;

namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;

constexpr milliseconds kLateTime{1100};

/// Waits, unless a stop is asked for. @return whether the time went by
bool pause(milliseconds time, const std::stop_token& stop) {
    std::mutex lock;
    std::condition_variable_any never;
    std::unique_lock held(lock);
    never.wait_for(held, stop, time, [] { return false; });
    return !stop.stop_requested();
}

/// The files of a folder in alphabetical order; of a file, itself. @param extension in lower case with its dot; empty
/// for all
std::vector<fs::path> listFiles(const fs::path& folder, const std::string& extension) {
    std::vector<fs::path> files;
    std::error_code error;
    if (fs::is_regular_file(folder, error)) return {folder};
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        std::string itsExtension = entry->path().extension().string();
        std::ranges::transform(itsExtension, itsExtension.begin(), [](unsigned char c) { return std::tolower(c); });
        if (entry->is_regular_file(error) && (extension.empty() || itsExtension == extension)) {
            files.push_back(entry->path());
        }
    }
    std::ranges::sort(files);
    return files;
}

class SimulatedSource : public ZvnSource {
public:
    explicit SimulatedSource(SimulatedServer server)
        : server_(std::move(server)), pictures_(listFiles(server_.pictures, ".bmp")) {}

    /// Finds the frame's size. @return false where the pictures are missing
    bool Open() {
        if (server_.pictures.empty()) {
            if (server_.frame.width == 0) server_.frame.width = 640;
            if (server_.frame.height == 0) server_.frame.height = 480;
            return true;
        }
        if (pictures_.empty()) {
            TellZvnStatus(server_.pictures.string() + ": holds no .bmp");
            return false;
        }
        if (!ShowPicture(pictures_.front())) return false;
        if (server_.frame.width == 0) server_.frame.width = picture_.GetWidth();
        if (server_.frame.height == 0) server_.frame.height = picture_.GetHeight();
        return true;
    }

    ZvnFrameFormat GetFrameFormat() const override { return server_.frame; }
    bool PrepareBuffers(int) override { return !server_.Has(SimulatedFault::Buffer); }
    bool PrepareTransfer() override { return !server_.Has(SimulatedFault::Transfer); }

    ZvnGrab Grab(std::span<std::byte> destination, std::stop_token stop) override {
        if (server_.Has(SimulatedFault::Hang)) {
            ZvnClock::Get().Sleep(milliseconds(server_.hangMs));
            return ZvnGrab::None;
        }
        if (server_.Has(SimulatedFault::NoFrame)) {
            while (pause(milliseconds(60'000), stop)) continue;
            return ZvnGrab::None;
        }
        if (server_.Has(SimulatedFault::LateFrame)) ZvnClock::Get().Sleep(kLateTime);
        if (server_.delayMs > 0 && !pause(milliseconds(server_.delayMs), stop)) return ZvnGrab::None;
        if (!pictures_.empty() && !ShowPicture(pictures_[frames_ % pictures_.size()])) return ZvnGrab::None;
        ++frames_;
        if (server_.Has(SimulatedFault::Trash) && frames_ % 2 == 0) return ZvnGrab::Trash;
        DrawSimulatedFrame(server_.frame, picture_, frames_, server_.noise, random_, destination);
        return ZvnGrab::Frame;
    }

    std::optional<int> FindFile(const std::string& name) override {
        const auto files = server_.files.empty() ? std::vector<fs::path>() : listFiles(server_.files, "");
        const auto found =
            std::ranges::find(files, name, [](const fs::path& file) { return file.filename().string(); });
        return found == files.end() ? std::nullopt : std::optional(static_cast<int>(found - files.begin()));
    }

    std::optional<std::vector<char>> ReadFile(const std::string& name) override {
        if (server_.Has(SimulatedFault::Read) || !FindFile(name)) return std::nullopt;
        std::ifstream file(server_.files / name, std::ios::binary);
        if (!file) return std::nullopt;
        return std::vector<char>(std::istreambuf_iterator<char>(file), {});
    }

    bool WriteFile(const std::string& name, std::span<const char> content) override {
        return !server_.Has(SimulatedFault::Write) && FindFile(name) && Keep(name, content);
    }

    /// The matrix becomes the file "ImageFilter" and its index, 12 floats, in the folder of device files.
    bool SetImageFilter(int index, std::span<const float, 12> matrix) override {
        if (server_.Has(SimulatedFault::Filter)) return false;
        const auto bytes = std::span(reinterpret_cast<const char*>(matrix.data()), matrix.size_bytes());
        return server_.files.empty() || Keep("ImageFilter" + std::to_string(index), bytes);
    }

private:
    bool Keep(const std::string& name, std::span<const char> content) {
        SafeOutputFile file((server_.files / name).string());
        if (file.IsOpen()) file.Stream().write(content.data(), static_cast<std::streamsize>(content.size()));
        return file.Commit();
    }

    bool ShowPicture(const fs::path& path) {
        if (path == shown_) return true;
        CTivImage loaded;
        const bool isShown = loaded.Load(path.string(), true) && loaded.SetRoi({}) &&
                             picture_.Set(loaded.GetWidth(), loaded.GetHeight(), CTivData::FormatRgb, nullptr, true) &&
                             picture_.ConvertFormat(loaded, 0);
        shown_ = isShown ? path : fs::path();
        if (!isShown) TellZvnStatus(path.string() + ": cannot be loaded as a color picture");
        return isShown;
    }

    SimulatedServer server_;
    std::vector<fs::path> pictures_;
    fs::path shown_;
    CTivImage picture_;  // the one shown, FormatRgb
    std::uint32_t frames_ = 0;
    std::minstd_rand random_;
};

/// Servers from the INI file that ZVN_SIMULATION names, read anew at each question.
class SimulatedBackend : public ZvnBackend {
public:
    std::vector<ZvnServer> ListServers() override {
        std::vector<ZvnServer> list;
        for (const auto& server : ReadServers()) {
            const bool isCamera = server.type == kZvnAcqDevice;
            list.push_back({server.name, isCamera ? 0 : 1, isCamera ? 1 : 0});
        }
        return list;
    }

    std::shared_ptr<ZvnSource> Open(const ZvnLocation& location, ZvnResourceType type,
                                    const std::string& configFile) override {
        auto servers = ReadServers();
        const auto server = std::ranges::find(servers, location.GetServerName(), &SimulatedServer::name);
        if (server == servers.end() || server->type != type || location.GetResourceIndex() != 0) return nullptr;
        const std::string wrong = configFile.empty() ? "" : ApplyConfiguration(configFile, *server);
        if (!wrong.empty()) TellZvnStatus(wrong);
        if (!wrong.empty() || server->Has(SimulatedFault::Create)) return nullptr;
        auto source = std::make_shared<SimulatedSource>(std::move(*server));
        return source->Open() ? source : nullptr;
    }

    bool AllowBuffers(const ZvnLocation& location) override {
        const std::string& name = location.GetServerName();
        return std::ranges::none_of(ReadServers(), [&](const SimulatedServer& server) {
            return name.empty() ? server.Has(SimulatedFault::Matrix)
                                : name == server.name && server.Has(SimulatedFault::Conversion);
        });
    }

private:
    static std::vector<SimulatedServer> ReadServers() {
        std::vector<SimulatedServer> servers;
        const char* path = std::getenv("ZVN_SIMULATION");
        const std::string wrong = path ? ReadSimulation(path, servers) : "";
        if (wrong.empty()) return servers;
        TellZvnStatus(wrong);
        return {};
    }
};

}  // namespace

ZvnBackend& GetSimulatedBackend() {
    static SimulatedBackend backend;
    return backend;
}
