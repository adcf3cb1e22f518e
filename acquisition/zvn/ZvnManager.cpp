#include "acquisition/zvn/ZvnManager.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <iostream>
#include <mutex>
#include <optional>
#include <utility>

#include "acquisition/zvn/backend_impl.h"

namespace {

std::atomic<int> displayStatusMode = 0;  // asked by the threads of transfers, too
ZvnBackend* ownBackend = nullptr;

std::mutex listenerLock;  // held while the listener runs
ZvnManager::StatusListener listenerInForce;

std::vector<ZvnServer> listServers() {
    ZvnBackend* backend = FindZvnBackend();
    return backend ? backend->ListServers() : std::vector<ZvnServer>();
}

std::optional<ZvnServer> findServer(int index) {
    const auto servers = listServers();
    if (index < 0 || static_cast<std::size_t>(index) >= servers.size()) return std::nullopt;
    return servers[static_cast<std::size_t>(index)];
}

std::optional<ZvnServer> findServer(const ZvnLocation& location) {
    const auto servers = listServers();
    const auto found = std::ranges::find(servers, location.GetServerName(), &ZvnServer::name);
    return found == servers.end() ? std::nullopt : std::optional(*found);
}

int countResources(const std::optional<ZvnServer>& server, int type) {
    if (!server) return 0;
    return type == kZvnAcquisition ? server->acquisitions : type == kZvnAcqDevice ? server->acqDevices : 0;
}

bool writeName(const std::optional<ZvnServer>& server, char* buffer, int size) {
    if (size < 1) return false;
    const std::string name = server ? server->name : std::string();
    const std::size_t length = std::min(name.size(), static_cast<std::size_t>(size) - 1);
    *std::copy_n(name.data(), length, buffer) = '\0';
    return server.has_value();
}

}  // namespace

ZvnBackend* FindZvnBackend() {
    const char* simulation = std::getenv("ZVN_SIMULATION");
    if (simulation && *simulation) return &GetSimulatedBackend();
    return ownBackend ? ownBackend : GetCameraBackend();
}

void SetZvnBackend(ZvnBackend* backend) { ownBackend = backend; }

void TellZvnStatus(const std::string& text, ZvnStatus kind) {
    if (displayStatusMode != 0) return;
    const std::scoped_lock held(listenerLock);
    if (listenerInForce) {
        listenerInForce(kind, text);
    } else {
        std::cerr << "acquisition: " + text + '\n';
    }
}

void ZvnManager::SetStatusListener(StatusListener listener) {
    const std::scoped_lock held(listenerLock);
    listenerInForce = std::move(listener);
}

const char* ZvnManager::GetVersion() { return ZVN_VERSION; }

const char* ZvnManager::GetCopyright() { return "Copyright \u00A9 Brennick Korva"; }

int ZvnManager::GetServerCount() { return static_cast<int>(listServers().size()); }

int ZvnManager::GetResourceCount(int server, int type) { return countResources(findServer(server), type); }
int ZvnManager::GetResourceCount(const ZvnLocation& location, int type) {
    return countResources(findServer(location), type);
}

bool ZvnManager::GetServerName(int server, char* buffer, int size) {
    return writeName(findServer(server), buffer, size);
}
bool ZvnManager::GetServerName(const ZvnLocation& location, char* buffer, int size) {
    return writeName(findServer(location), buffer, size);
}

int ZvnManager::GetDisplayStatusMode() { return displayStatusMode; }
void ZvnManager::SetDisplayStatusMode(int mode, int, int) { displayStatusMode = mode; }
