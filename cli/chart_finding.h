#pragma once

#include "cli/chart_reading.h"

/// A list of {"center", "corners", "mean", "deviation", "clipped"}. The sampling area is the inner half of a patch.
Json DescribePatches(const tonewright::ChartReading& reading);

/// The document of `detect` for a chart that was found so.
Json DescribeFound(const std::string& path, const tonewright::ChartReading& reading,
                   const std::vector<tonewright::Finding>& findings);

/// The document of `detect` for a chart that is not in the picture, or not certain.
Json DescribeNotFound(const std::string& path, const tonewright::ChartNotFound& failure);
