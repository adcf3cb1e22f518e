#pragma once

#include <functional>
#include <string>

#include "report/html_report.h"

class QPaintDevice;

/// Draws the report on pages of the device's size, as many as it takes.
/// @param newPage begins the next one
/// @return false where the device can't be drawn on or there is nothing to report
bool DrawReport(QPaintDevice& device, const std::function<void()>& newPage, const tonewright::Report& report);

/// The report as a PDF file of A4 pages, black on white. @return its bytes; empty where it could not be made
std::string PdfReport(const tonewright::Report& report);
