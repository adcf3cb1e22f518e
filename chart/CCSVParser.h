#pragma once

#include <string>

#include "foundation/CTivManager.h"
#include "foundation/CTivVector.h"

/// The comma-separated file of a chart's XYZ values: one patch a line, in chart order, three numbers separated by
/// commas, a line feed at the end of every line, the last one included. No header, no quoting, no comment. Numbers have
/// a decimal point whatever the locale; text behind a number, fields behind the third and CR before LF are ignored.
class CCSVParser : public CTivManager {
public:
    /// Reads as many lines as `values` has elements.
    /// @param values FormatColorFloat, its size already set; receives X, Y, Z and 0
    /// @return false, reported, for a file that cannot be opened, or that has fewer or more lines; a last line without
    ///         its line feed counts as missing
    /// @throw std::invalid_argument "invalid stof argument" for a field that is missing or does not begin with a number
    /// @throw std::out_of_range "stof argument out of range" for a number that a float cannot hold
    /// The elements set before a failure stay.
    bool Read(const std::string& fileName, CTivVector& values);

    /// Writes a line an element, with six significant digits. A failure is not told; the earlier file then stays.
    void Write(const std::string& fileName, const CTivVector& values);
};
