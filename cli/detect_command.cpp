#include <CLI/CLI.hpp>
#include <memory>

#include "cli/chart_reading.h"
#include "cli/command.h"

void AddDetectCommand(CLI::App& tool, Work& work) {
    CLI::App* command = AddCommand(tool, "detect", "Finds the patches of a chart in a picture and measures them.");
    const auto options = std::make_shared<ChartOptions>();
    AddChartOptions(*command, *options);
    command->callback([options, &work] {
        work = [options]() -> Outcome {
            const ChartReading reading = ReadChart(options->image, options->roi, options->chart);
            return {DescribeReading(*options, reading)};
        };
    });
}
