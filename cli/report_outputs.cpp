#include "cli/report_outputs.h"

#include <CLI/CLI.hpp>
#include <fstream>

#include "cli/arguments.h"

using namespace tonewright;

namespace {

void writeText(OutputSet& outputs, const std::string& path, const std::string& text) {
    outputs.Add(path, [&](const std::string& name) {
        std::ofstream file(name, std::ios::binary);
        file.write(text.data(), static_cast<std::streamsize>(text.size()));
        file.close();
        if (!file) throw WorkFailure(name + ": cannot write the file");
    });
}

}  // namespace

void AddReportOption(CLI::App& command, ReportOptions& options) {
    command.add_option("--report", options.report, "Write a page that shows how good the calibration is")
        ->type_name("FILE.html");
}

void AddExportOption(CLI::App& command, ReportOptions& options) {
    command
        .add_option("--export", options.exports,
                    "Write a 3D table (.cube), an ICC input profile (.icc), CGATS data (.ti3) or the patches (.csv); "
                    "more than once")
        ->type_name("FILE")
        ->check([](const std::string& path) {
            return IsExportName(path) ? std::string()
                                      : "'" + path + "' is not a name that ends in .cube, .icc, .ti3 or .csv";
        })
        ->allow_extra_args(false);
}

void WriteReport(OutputSet& outputs, const ReportOptions& options, Report report, const CTivImage& picture) {
    if (options.report.empty()) return;
    if (report.patches.empty()) throw WorkFailure(options.report + ": there is nothing to report");
    writeText(outputs, options.report, MakeReportPage(std::move(report), picture));
}

void WriteExports(OutputSet& outputs, const ReportOptions& options, const std::string& name,
                  const CTivTonewrightDC& engine, const CTivVector& transform, const Report& report) {
    for (const std::string& path : options.exports) {
        const std::string content = MakeExport(path, engine, transform, report, name);
        if (content.empty()) throw WorkFailure(path + ": cannot be made of this calibration");
        writeText(outputs, path, content);
    }
}
