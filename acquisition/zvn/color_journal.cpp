#include "acquisition/zvn/color_journal.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>
#include <system_error>

#include "acquisition/zvn/ini_impl.h"
#include "calibration/usable_transform.h"
#include "foundation/SafeFile.h"

using namespace tonewright;

namespace {

constexpr const char* kFolder = "/Brennick Korva/Tonewright/cameras";
constexpr const char* kExtension = ".journal";
constexpr std::size_t kLongestKey = 150;  // fits a file's name, and a line of an INI file
constexpr off_t kMostBytes = 4096;

/// The numbers of a record, whatever the locale.
std::string toText(double value) {
    char text[32];
    return {text, std::to_chars(text, text + sizeof text, value).ptr};
}

std::optional<double> toNumber(const std::string& text) {
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool isWhole = error == std::errc() && end == text.data() + text.size();
    return isWhole && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

/// @return whether every value is there
bool takeValues(const std::map<std::string, std::string>& lines, const std::string& prefix, ZvnColorValues& values) {
    for (std::size_t i = 0; i < values.size(); ++i) {
        const auto line = lines.find(prefix + kZvnColorValueNames[i]);
        const auto number = line == lines.end() ? std::nullopt : toNumber(line->second);
        if (!number) return false;
        values[i] = *number;
    }
    return true;
}

/// What would be put in force is held to what may reach any device.
std::string whyUnusable(const ZvnColorValues& values) {
    CTivVector transform(static_cast<std::int32_t>(values.size()), CTivData::FormatFloat, nullptr, true);
    auto* entries = static_cast<float*>(transform.GetDataPointer());
    std::ranges::transform(values, entries, [](double value) { return static_cast<float>(value); });
    return WhyUnusableTransform(transform, 4);
}

std::string homeFolder() {
    const char* home = std::getenv("HOME");
    if (home && *home == '/') return home;
    passwd entry{}, *found = nullptr;
    char text[4096];
    return getpwuid_r(getuid(), &entry, text, sizeof text, &found) == 0 && found ? found->pw_dir : "";
}

}  // namespace

std::string FindZvnJournalFolder() {
    const char* data = std::getenv("XDG_DATA_HOME");
    if (data && *data == '/') return std::string(data) + kFolder;
    const std::string home = homeFolder();
    return home.starts_with('/') ? home + "/.local/share" + kFolder : "";
}

std::string GetZvnCameraKey(const std::string& vendor, const std::string& model, const std::string& serial) {
    if (serial.empty()) return {};
    constexpr char kDigits[] = "0123456789abcdef";
    std::string key;
    for (const std::string* word : {&vendor, &model, &serial}) {
        if (!key.empty()) key += '_';
        for (const char c : *word) {
            const auto byte = static_cast<unsigned char>(c);
            const bool isPlain = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '-';
            if (isPlain) {
                key += c;
            } else {
                key.append({'%', kDigits[byte >> 4], kDigits[byte & 15]});
            }
        }
    }
    return key.size() <= kLongestKey ? key : key.substr(key.size() - kLongestKey);  // the serial number stays
}

ZvnColorJournal::ZvnColorJournal(const std::string& folder, const std::string& camera)
    : camera_(camera), folder_(folder) {
    if (!folder.empty() && !camera.empty()) path_ = folder + "/" + camera + kExtension;
}

ZvnColorJournal::~ZvnColorJournal() {
    if (lock_ >= 0) ::close(lock_);
}

bool ZvnColorJournal::IsPending() const {
    struct stat about {};
    return !path_.empty() && ::lstat(path_.c_str(), &about) == 0;
}

bool ZvnColorJournal::Lock() {
    if (path_.empty() || lock_ >= 0) return true;
    std::error_code error;
    std::filesystem::create_directories(folder_, error);
    // The lock's file stays: whoever removed it would pull it from under the next one.
    lock_ = ::open((folder_ + "/" + camera_ + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK,
                   0600);
    if (lock_ < 0 || ::flock(lock_, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK) return true;
    ::close(lock_);
    lock_ = -1;
    return false;
}

std::optional<ZvnColorRecord> ZvnColorJournal::Read(std::string& wrong) const {
    struct stat about {};
    if (::lstat(path_.c_str(), &about) != 0) return std::nullopt;
    wrong = path_ + " is no record of a transfer to it";
    if (!S_ISREG(about.st_mode) || about.st_uid != ::geteuid() || about.st_size > kMostBytes) return std::nullopt;
    std::map<std::string, std::string> lines;
    const std::string unread =
        ReadIni(path_, [&](const std::string& section, const std::string& name, const std::string& value) {
            lines[section + '.' + name] = value;
            return std::string();
        });
    ZvnColorRecord record;
    const std::string& on = lines["earlier.on"];
    if (!unread.empty() || lines["camera.key"] != camera_ || (on != "0" && on != "1") ||
        !takeValues(lines, "earlier.", record.earlier) || !takeValues(lines, "next.", record.next)) {
        return std::nullopt;
    }
    record.wasOn = on == "1";
    const std::string unusable = record.wasOn ? whyUnusable(record.earlier) : "";
    if (!unusable.empty()) {
        wrong = path_ + ": " + unusable;
        return std::nullopt;
    }
    wrong.clear();
    return record;
}

std::string ZvnColorJournal::Keep(const ZvnColorRecord& record) {
    if (path_.empty()) return camera_.empty() ? "the camera has no serial number" : "there is no home folder";
    std::error_code error;
    std::filesystem::create_directories(folder_, error);
    SafeOutputFile file(path_);
    std::ostream& text = file.Stream();
    text << "; What was in a camera before coefficients were written into it, until that has ended "
            "well.\n[camera]\nkey = "
         << camera_ << "\n[earlier]\non = " << (record.wasOn ? 1 : 0) << '\n';
    for (std::size_t i = 0; i < kZvnColorValueNames.size(); ++i) {
        text << kZvnColorValueNames[i] << " = " << toText(record.earlier[i]) << '\n';
    }
    text << "[next]\n";
    for (std::size_t i = 0; i < kZvnColorValueNames.size(); ++i) {
        text << kZvnColorValueNames[i] << " = " << toText(record.next[i]) << '\n';
    }
    if (file.Commit()) return {};
    return path_ + " cannot be written";
}

void ZvnColorJournal::Drop() {
    if (!path_.empty()) ::unlink(path_.c_str());
}
