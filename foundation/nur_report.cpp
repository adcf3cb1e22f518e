#include "foundation/nur_report.h"

#include <unistd.h>

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <list>
#include <memory>
#include <mutex>

#include "foundation/nur_report_impl.h"

namespace {

constexpr std::size_t kMessageBytes = 1024;
constexpr std::size_t kExitHooks = 64;

struct CTivOpStatus {
    std::uint32_t threadId;
    std::unique_ptr<char[]> message;
    std::uint32_t status = 0;
};

struct CodeText {
    int code;
    const char* text;
};
constexpr CodeText kCodeTexts[] = {
    {NUR_REPORT_MEMORY, "%s: memory allocation failed (%d bytes)\n"},
    {NUR_REPORT_TYPE, "%s: cannot process object type \"%s\"\n"},
    {NUR_REPORT_CAST, "%s: cannot cast type \"%s\" to \"%s\"\n"},
    {NUR_REPORT_SYNTAX, "%s: syntax error in \"%s\" at position %d\n"},
    {NUR_REPORT_NO_THREAD, "Thread not registered with CTivOpStatus\n"},
};

using ReportCallback = void (*)(const char*);
std::atomic<ReportCallback> reportCallback{nullptr};  // a thread that was left behind may report while the library ends
std::list<CTivOpStatus> threads;                      // whose records stay where they are while others come and go
std::mutex threadsGate;                               // ready before any static initialiser runs
void (*exitHooks[kExitHooks])() = {};

std::uint32_t currentThread() { return static_cast<std::uint32_t>(::gettid()); }

CTivOpStatus* findThread() {
    const std::lock_guard guard(threadsGate);
    const std::uint32_t id = currentThread();
    for (CTivOpStatus& record : threads) {
        if (record.threadId == id) return &record;
    }
    return nullptr;
}

const char* codeText(int code) {
    for (const CodeText& row : kCodeTexts) {
        if (row.code == code) return row.text;
    }
    return "";
}

void addThread() {
    const std::lock_guard guard(threadsGate);
    threads.push_back({currentThread(), std::make_unique<char[]>(kMessageBytes)});
}

// Finds the record to write to and tells the callback where there is none.
CTivOpStatus* recordForReport(ReportCallback callback) {
    CTivOpStatus* record = findThread();
    if (!record) {
        callback(codeText(NUR_REPORT_NO_THREAD));
        return nullptr;
    }
    record->status = 0;
    return record;
}

// Writes into the thread's record and tells the callback. Without a channel nothing happens.
void report(const char* format, std::va_list arguments) {
    const ReportCallback callback = reportCallback;
    if (!callback) return;
    CTivOpStatus* record = recordForReport(callback);
    if (!record) return;
    std::vsnprintf(record->message.get(), kMessageBytes, format, arguments);
    callback(record->message.get());
}

}  // namespace

int nur_report(int level, int code, ...) {
    std::va_list arguments;
    va_start(arguments, code);
    const char* format = code == NUR_REPORT_NO_THREAD ? ""
                         : code == NUR_REPORT_FORMAT  ? va_arg(arguments, const char*)
                                                      : codeText(code);
    report(format, arguments);
    va_end(arguments);
    return level;
}

int nur_refuse(const char* text) { return nur_refuse_format("%s", text); }

int nur_refuse_format(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    report(format, arguments);
    va_end(arguments);
    return 1;
}

int nur_report_second_pass(const char* text) {
    const ReportCallback callback = reportCallback;
    if (!callback) return 1;
    CTivOpStatus* record = recordForReport(callback);
    if (!record) return 1;
    const std::string passed = FormatWithoutArguments(text);
    std::snprintf(record->message.get(), kMessageBytes, "%s", passed.c_str());
    callback(record->message.get());
    return 1;
}

std::string FormatWithoutArguments(const char* text) {
    std::string result;
    for (const char* at = text; *at;) {
        if (*at != '%') {
            result += *at++;
            continue;
        }
        ++at;
        if (*at == '%') {
            result += *at++;
            continue;
        }
        at += std::strspn(at, "-+ #0'");
        at += std::strspn(at, "0123456789*");
        if (*at == '.') at += 1 + std::strspn(at + 1, "0123456789*");
        at += std::strspn(at, "hlLqjzt");
        if (*at && std::strchr("diouxXeEfFgGaAcspnmCS", *at)) ++at;
    }
    return result;
}

const char* nur_thread_message() {
    const CTivOpStatus* record = findThread();
    return record ? record->message.get() : nullptr;
}

void nur_init(void (*callback)(const char*)) {
    reportCallback = callback;
    addThread();
}

NurReportingThread::NurReportingThread() { addThread(); }

NurReportingThread::~NurReportingThread() {
    const std::lock_guard guard(threadsGate);
    threads.remove_if([id = currentThread()](const CTivOpStatus& record) { return record.threadId == id; });
}

void nur_close() {
    for (auto& hook : exitHooks) {
        if (hook) hook();
        hook = nullptr;
    }
    reportCallback = nullptr;
    const std::lock_guard guard(threadsGate);
    threads.clear();
}
