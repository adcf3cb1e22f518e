#pragma once

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "chart/PatchDetector.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

// Numbers of the command line, taken whole or not at all: no blanks, no trailing characters, no sign "+", a decimal
// point whatever the locale, nothing beyond the type's range, no infinity.

std::optional<int> ParseInteger(std::string_view text);
std::optional<float> ParseDecimal(std::string_view text);
/// `count` numbers with commas between them.
std::optional<std::vector<int>> ParseIntegers(std::string_view text, std::size_t count);
std::optional<std::vector<float>> ParseDecimals(std::string_view text, std::size_t count);
/// "L,T,R,B".
std::optional<tonewright::ChartRoi> ParseRoi(std::string_view text);
/// "WxH", both at least 1.
std::optional<ChartSize> ParseChartSize(std::string_view text);

/// Adds an option whose text goes through `parse` into `target`; what does not parse is a wrong command line.
/// @param wanted completes "NAME: 'TEXT' is not ..."
template <class T, class Parse>
CLI::Option* AddParsed(CLI::App& command, const std::string& name, T& target, Parse parse, const std::string& wanted,
                       const std::string& description);

/// The untyped part of AddParsed. @param take answers false for a text that does not parse
CLI::Option* AddTextOption(CLI::App& command, const std::string& name, std::function<bool(const std::string&)> take,
                           const std::string& wanted, const std::string& description);

template <class T, class Parse>
CLI::Option* AddParsed(CLI::App& command, const std::string& name, T& target, Parse parse, const std::string& wanted,
                       const std::string& description) {
    const auto take = [&target, parse](const std::string& text) {
        auto value = parse(text);
        if (value) target = *value;
        return value.has_value();
    };
    return AddTextOption(command, name, take, wanted, description);
}
