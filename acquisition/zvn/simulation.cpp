#include "acquisition/zvn/simulation_impl.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>

#include "acquisition/zvn/ini_impl.h"
#include "acquisition/zvn/zvn_formats.h"

namespace {

constexpr std::size_t kLongestName = 29;

template <class T>
struct Word {
    const char* text;
    T value;
};

struct Kind {
    ZvnResourceType type;
    bool isCameraLink;
};

constexpr Word<Kind> kKinds[] = {
    {"frame grabber", {kZvnAcquisition, false}},
    {"Camera Link camera", {kZvnAcqDevice, true}},
    {"other", {kZvnAcqDevice, false}},
};

constexpr Word<std::uint32_t> kFormats[] = {
    {"mono 8", kZvnMono8}, {"mono 16", kZvnMono16}, {"mono 1", kZvnMono1},   {"RGB 32", kZvnRgb32},
    {"RGB 10", kZvnRgb10}, {"RGB 24", kZvnRgb24},   {"RGBR 24", kZvnRgbr24},
};

constexpr Word<SimulatedFault> kFaults[] = {
    {"create", SimulatedFault::Create},
    {"buffer", SimulatedFault::Buffer},
    {"transfer", SimulatedFault::Transfer},
    {"conversion", SimulatedFault::Conversion},
    {"matrix", SimulatedFault::Matrix},
    {"no frame", SimulatedFault::NoFrame},
    {"late frame", SimulatedFault::LateFrame},
    {"trash", SimulatedFault::Trash},
    {"hang", SimulatedFault::Hang},
    {"read", SimulatedFault::Read},
    {"write", SimulatedFault::Write},
    {"filter", SimulatedFault::Filter},
};

template <class T, std::size_t kCount>
std::optional<T> findWord(const Word<T> (&words)[kCount], const std::string& text) {
    const auto found = std::ranges::find_if(words, [&](const Word<T>& word) { return text == word.text; });
    return found == std::end(words) ? std::nullopt : std::optional(found->value);
}

template <class T>
std::optional<T> parseWhole(const std::string& text, int base) {
    T value{};
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value, base);
    return error == std::errc() && stop == end ? std::optional(value) : std::nullopt;
}

std::optional<std::uint32_t> parseFormat(const std::string& text) {
    return text.starts_with("0x") ? parseWhole<std::uint32_t>(text.substr(2), 16) : findWord(kFormats, text);
}

std::string setFaults(const std::string& list, std::set<SimulatedFault>& faults) {
    faults.clear();
    for (std::size_t begin = 0; begin < list.size();) {
        const std::size_t end = std::min(list.find(',', begin), list.size());
        const std::size_t first = std::min(list.find_first_not_of(' ', begin), end);
        const std::string word = list.substr(first, list.find_last_not_of(' ', end - 1) + 1 - first);
        const auto fault = findWord(kFaults, word);
        if (!fault) return "unknown fault \"" + word + "\"";
        faults.insert(*fault);
        begin = end + 1;
    }
    return {};
}

/// @param folder what relative paths start from
std::string setValue(SimulatedServer& server, const std::filesystem::path& folder, const std::string& name,
                     const std::string& value) {
    constexpr int anyInt = std::numeric_limits<int>::max();
    const struct {
        const char* name;
        int* target;
        int least, most;
    } numbers[] = {
        {"width", &server.frame.width, 1, anyInt}, {"height", &server.frame.height, 1, anyInt},
        {"noise", &server.noise, 0, 255},          {"delay ms", &server.delayMs, 0, 60'000},
        {"hang ms", &server.hangMs, 0, 60'000},
    };
    for (const auto& number : numbers) {
        if (name != number.name) continue;
        const auto parsed = parseWhole<int>(value, 10);
        if (!parsed || *parsed < number.least || *parsed > number.most) {
            return name + " is not a number from " + std::to_string(number.least) + " to " +
                   std::to_string(number.most);
        }
        *number.target = *parsed;
        return {};
    }
    if (name == "format") {
        const auto format = parseFormat(value);
        if (!format || ZvnBitsPerPixel(*format) == 0) return "unknown format \"" + value + "\"";
        server.frame.format = *format;
        return {};
    }
    if (name == "faults") return setFaults(value, server.faults);
    if (name != "pictures" && name != "files") return "unknown setting \"" + name + "\"";
    (name == "files" ? server.files : server.pictures) = value.empty() ? std::filesystem::path() : folder / value;
    return {};
}

std::string setKind(SimulatedServer& server, const std::string& value) {
    const auto kind = findWord(kKinds, value);
    if (!kind) return "unknown kind \"" + value + "\"";
    server.type = kind->type;
    server.isCameraLink = kind->isCameraLink;
    return {};
}

/// The session knows a Camera Link camera by its server's name.
std::string checkName(const SimulatedServer& server) {
    const bool namesCameraLink = server.name.find("Camera_Link") != std::string::npos;
    if (server.type == kZvnAcqDevice && namesCameraLink != server.isCameraLink) {
        return ": [" + server.name + "] the name of a Camera Link camera holds \"Camera_Link\", and no other's does";
    }
    return {};
}

}  // namespace

std::string ReadSimulation(const std::string& path, std::vector<SimulatedServer>& servers) {
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    std::string wrong = ReadIni(
        path, [&](const std::string& section, const std::string& name, const std::string& value) -> std::string {
            if (section.empty()) return "a setting before the first section";
            if (section.size() > kLongestName) return "the section's name is longer than 29 bytes";
            auto server = std::ranges::find(servers, section, &SimulatedServer::name);
            if (server == servers.end()) {
                server = servers.insert(servers.end(), SimulatedServer{});
                server->name = section;
                server->frame.format = kZvnRgb32;
            }
            return name == "kind" ? setKind(*server, value) : setValue(*server, folder, name, value);
        });
    for (const auto& server : servers) {
        if (wrong.empty() && !checkName(server).empty()) wrong = path + checkName(server);
    }
    return wrong;
}

std::string ApplyConfiguration(const std::string& path, SimulatedServer& server) {
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    return ReadIni(path, [&](const std::string&, const std::string& name, const std::string& value) {
        return setValue(server, folder, name, value);
    });
}
