#include <CLI/CLI.hpp>
#include <memory>

#include "cli/chart_finding.h"
#include "cli/chart_reading.h"
#include "cli/command.h"
#include "cli/quality_json.h"

using namespace tonewright;

namespace {

Outcome detect(const ChartOptions& options) {
    try {
        const ChartReading reading = ReadChart(options.image, options.roi, options);
        const std::vector<Finding> findings = FindInPicture(reading.measured);
        TellFindings(findings);
        return {DescribeReading(options, reading, findings),
                options.isStrict && HasWarning(findings) ? kWorkFailed : kDone};
    } catch (const ChartNotFound& failure) {
        Tell(failure.what());
        return {DescribeNotFound(options.image, failure), kWorkFailed};
    }
}

}  // namespace

void AddDetectCommand(CLI::App& tool, Work& work) {
    CLI::App* command = AddCommand(tool, "detect", "Finds the patches of a chart in a picture and measures them.");
    const auto options = std::make_shared<ChartOptions>();
    command->add_option("IMAGE", options->image, "The picture of the chart")->required();
    AddChartOptions(*command, *options);
    command->callback([options, &work] {
        CheckChartOptions(*options);
        work = [options] { return detect(*options); };
    });
}
