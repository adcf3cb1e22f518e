#pragma once

#include <string>
#include <vector>

#include "cli/chart_reading.h"
#include "cli/output_set.h"
#include "report/calibration_outputs.h"

/// What `calibrate` and `verify` are told to write for others.
struct ReportOptions {
    std::string report;                ///< an HTML page; empty: none
    std::vector<std::string> exports;  ///< by their extensions: .cube, .icc, .ti3, .csv
};

/// Adds --report.
void AddReportOption(CLI::App& command, ReportOptions& options);
/// Adds --export.
void AddExportOption(CLI::App& command, ReportOptions& options);

/// Writes the page where one is asked for, with the picture, date and version added.
/// @param report title, figures and settings filled in
void WriteReport(OutputSet& outputs, const ReportOptions& options, tonewright::Report report, const CTivImage& picture);

/// Writes what --export asks for.
/// @param name of the picture, for the files' own titles
/// @param report for the patches' colors
void WriteExports(OutputSet& outputs, const ReportOptions& options, const std::string& name,
                  const CTivTonewrightDC& engine, const CTivVector& transform, const tonewright::Report& report);
