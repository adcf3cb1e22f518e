#include "cli/arguments.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <cmath>

using namespace tonewright;

namespace {

template <class T>
std::optional<T> parseWhole(std::string_view text) {
    T value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

template <class T, class Parse>
std::optional<std::vector<T>> parseList(std::string_view text, std::size_t count, Parse parse) {
    std::vector<T> values;
    for (std::size_t i = 0; i < count; ++i) {
        const bool isLast = i + 1 == count;
        const std::size_t end = isLast ? text.size() : text.find(',');
        if (end == std::string_view::npos) return std::nullopt;
        const auto value = parse(text.substr(0, end));
        if (!value) return std::nullopt;
        values.push_back(*value);
        if (!isLast) text.remove_prefix(end + 1);
    }
    return values;
}

}  // namespace

std::optional<int> ParseInteger(std::string_view text) { return parseWhole<int>(text); }

std::optional<float> ParseDecimal(std::string_view text) {
    const auto value = parseWhole<float>(text);
    return value && std::isfinite(*value) ? value : std::nullopt;
}

std::optional<std::vector<int>> ParseIntegers(std::string_view text, std::size_t count) {
    return parseList<int>(text, count, ParseInteger);
}

std::optional<std::vector<float>> ParseDecimals(std::string_view text, std::size_t count) {
    return parseList<float>(text, count, ParseDecimal);
}

std::optional<ChartRoi> ParseRoi(std::string_view text) {
    const auto edges = ParseIntegers(text, 4);
    if (!edges) return std::nullopt;
    return ChartRoi{(*edges)[0], (*edges)[1], (*edges)[2], (*edges)[3]};
}

std::optional<ChartSize> ParseChartSize(std::string_view text) {
    const std::size_t middle = text.find('x');
    if (middle == std::string_view::npos) return std::nullopt;
    const auto width = ParseInteger(text.substr(0, middle));
    const auto height = ParseInteger(text.substr(middle + 1));
    if (!width || !height || *width < 1 || *height < 1) return std::nullopt;
    return ChartSize{*width, *height};
}

CLI::Option* AddTextOption(CLI::App& command, const std::string& name, std::function<bool(const std::string&)> take,
                           const std::string& wanted, const std::string& description) {
    const std::function<void(const std::string&)> check = [name, take, wanted](const std::string& text) {
        if (!take(text)) throw CLI::ValidationError(name, "'" + text + "' is not " + wanted);
    };
    return command.add_option_function<std::string>(name, check, description);
}
