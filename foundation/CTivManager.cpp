#include "foundation/CTivManager.h"

#include <atomic>
#include <clocale>
#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <stdexcept>

#include "foundation/CTivConfig.h"
#include "foundation/nur_report.h"
#include "foundation/nur_report_impl.h"

namespace {

constexpr const char* kErrorTitle = "Zelvan Processing Error";

std::atomic<long> instanceCount{0};
int errorMode = ErrorModeMessageBox;
void (*userCallback)(const char*) = nullptr;
std::function<void(const std::string&, const std::string&)> messageBox;

void dispatch(const char* text) {
    switch (errorMode) {
        case ErrorModeMessageBox:
            nur_message_box(kErrorTitle, text);
            break;
        case ErrorModeException:
            throw std::runtime_error(text);
        case ErrorModeUser:
            if (userCallback) {
                userCallback(text);
            } else {
                nur_message_box(kErrorTitle,
                                "Error mode is set to \"User\" while no user callback function has been registered");
            }
            break;
        default:
            break;
    }
}

}  // namespace

CTivManager::CTivManager() { ++instanceCount; }
CTivManager::CTivManager(const CTivManager&) { ++instanceCount; }
CTivManager::~CTivManager() { --instanceCount; }

void CTivManager::Initialize() {
    static bool done = false;
    if (done) return;
    done = true;
    CTivConfig::EnsureRead();
    nur_init(dispatch);
    std::setlocale(LC_CTYPE, "");
}

void CTivManager::Shutdown() { nur_close(); }

void CTivManager::SetErrorMode(int mode) { errorMode = mode; }

void CTivManager::ReportError(const char* format, ...) {
    char text[1024];
    std::va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    nur_report_second_pass(text);
}

const char* CTivManager::GetLastErrorText() { return nur_thread_message(); }

std::string CTivManager::GetLastErrorString() {
    const char* text = nur_thread_message();
    return text ? text : "";
}

long CTivManager::GetInstanceCount() { return instanceCount; }

bool CTivManager::Refuse(const std::string& text) {
    ReportError("%s", text.c_str());
    return false;
}

void nur_set_message_box(std::function<void(const std::string&, const std::string&)> box) {
    messageBox = std::move(box);
}

void nur_set_user_callback(void (*callback)(const char*)) { userCallback = callback; }

void nur_message_box(const std::string& title, const std::string& text) {
    if (messageBox) {
        messageBox(title, text);
    } else {
        std::fprintf(stderr, "%s: %s\n", title.c_str(), text.c_str());
    }
}
