#pragma once

#include <string>

/// Puts a text that was formatted once through the second formatting, which has no arguments: "%%" becomes "%", any
/// other conversion nothing, and none is carried out. The double pass is deliberate (C41).
std::string FormatWithoutArguments(const char* text);

/// nur_report for ReportError: the finished text goes through the second pass into the thread's record.
int nur_report_second_pass(const char* text);

/// The calling thread's message buffer, null without a record.
const char* nur_thread_message();
