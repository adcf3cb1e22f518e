#pragma once

#include "cli/chart_reading.h"

/// The chart was looked for and is not in the picture, or not certain. The text says why.
class ChartNotFound : public WorkFailure {
public:
    ChartNotFound(const std::string& path, const FoundChart& chart, Json document);

    /// The document of `detect`.
    const Json& GetDocument() const { return document_; }

private:
    Json document_;
};

/// Finds the chart wherever it lies in the reading's image, and measures it.
/// @param reading holds the image; receives the rest
/// @throw ChartNotFound
void FindChart(ChartReading& reading, const std::string& path, const std::optional<ChartRoi>& roi,
               const ChartOptions& options);

/// The document of `detect` for a chart that was found so.
Json DescribeFound(const std::string& path, const ChartReading& reading, const std::vector<Finding>& findings);
