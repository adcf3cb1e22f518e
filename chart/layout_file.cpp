#include "chart/layout_file.h"

#include <charconv>
#include <cmath>
#include <fstream>

#include "calibration/illuminants.h"

namespace tonewright {

namespace {

constexpr std::string_view kFirstLine = "tonewright-chart-layout 1";
constexpr int kMaxSide = 64;  // patches
constexpr std::size_t kMaxBytes = 1 << 20;

/// White of the illuminants by index, for observers of 2 and 10 degrees (ASTM E308).
constexpr XyzColor kWhites[][2] = {
    {{1.09850, 1, 0.35585}, {1.11144, 1, 0.35200}},  // A
    {{0.96422, 1, 0.82521}, {0.96720, 1, 0.81427}},  // D50
    {{0.95682, 1, 0.92149}, {0.95799, 1, 0.90926}},  // D55
    {{0.95047, 1, 1.08883}, {0.94811, 1, 1.07304}},  // D65
    {{0.94972, 1, 1.22638}, {0.94416, 1, 1.20641}},  // D75
    {{1, 1, 1}, {1, 1, 1}},                          // E
    {{0.99186, 1, 0.67393}, {1.03279, 1, 0.69027}},  // F2
    {{0.95041, 1, 1.08747}, {0.95792, 1, 1.07686}},  // F7
    {{1.00962, 1, 0.64350}, {1.03863, 1, 0.65607}},  // F11
};

XyzColor labToXyz(const XyzColor& lab, const XyzColor& white) {
    const double y = (lab[0] + 16) / 116;
    const std::array<double, 3> roots = {y + lab[1] / 500, y, y - lab[2] / 200};
    XyzColor color;
    for (std::size_t i = 0; i < 3; ++i) {
        const double root = roots[i];
        // The inverse of CIE 1976: cubes above 6/29, a straight line below.
        color[i] = white[i] * (root > 6.0 / 29 ? root * root * root : (116 * root - 16) * 27 / 24389);
    }
    return color;
}

/// Takes the next word from a line, and the blanks behind it.
std::string_view takeWord(std::string_view& line) {
    const std::string_view word = line.substr(0, line.find_first_of(" \t"));
    line.remove_prefix(word.size());
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    return word;
}

template <class Number>
bool parse(std::string_view word, Number& number) {
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    return error == std::errc() && end == word.data() + word.size();
}

class LayoutParser {
public:
    bool Take(std::string_view line) {
        const std::string_view key = takeWord(line);
        if (key == "patch") return TakePatch(line);
        const std::string_view value = takeWord(line);
        if (!line.empty()) return Fail("more than one value");
        if (key == "columns" || key == "rows") {
            int& side = key == "rows" ? layout_.rows : layout_.columns;
            return (parse(value, side) && side >= 1 && side <= kMaxSide) ||
                   Fail("not a number from 1 to " + std::to_string(kMaxSide));
        }
        if (!layout_.names.empty()) return Fail("behind the first patch");
        if (key == "values") {
            isLab_ = value == "Lab";
            hasValues_ = isLab_ || value == "XYZ";
            return hasValues_ || Fail("neither XYZ nor Lab");
        }
        if (key == "illuminant") {
            const CalibrationIlluminant* const illuminant = FindIlluminant(value);
            if (!illuminant || illuminant->index == kUserIlluminant) return Fail("an unknown illuminant");
            illuminant_ = static_cast<std::size_t>(illuminant->index);
            return true;
        }
        if (key == "observer") {
            isWide_ = value == "10";
            return isWide_ || value == "2" || Fail("neither 2 nor 10");
        }
        return Fail("an unknown word");
    }

    bool End() {
        if (layout_.columns < 1 || layout_.rows < 1) return Fail("columns or rows are missing");
        return layout_.names.size() == layout_.Count() ||
               Fail(std::to_string(layout_.names.size()) + " patches instead of " + std::to_string(layout_.Count()));
    }

    const std::string& GetReason() const { return reason_; }
    ChartLayout& GetLayout() { return layout_; }

private:
    bool TakePatch(std::string_view line) {
        if (layout_.names.size() >= static_cast<std::size_t>(kMaxSide * kMaxSide)) return Fail("too many patches");
        if (hasValues_) {
            XyzColor color;
            for (double& value : color) {
                if (!parse(takeWord(line), value) || !(std::abs(value) < 1e6)) return Fail("not three numbers");
            }
            layout_.references.push_back(isLab_ ? labToXyz(color, kWhites[illuminant_][isWide_ ? 1 : 0]) : color);
        }
        layout_.names.emplace_back(line);
        return true;
    }

    bool Fail(std::string reason) {
        reason_ = std::move(reason);
        return false;
    }

    ChartLayout layout_;
    bool hasValues_ = false, isLab_ = false, isWide_ = false;
    std::size_t illuminant_ = 1;  // D50
    std::string reason_;
};

}  // namespace

std::optional<ChartLayout> ParseChartLayout(std::string_view text, std::string& reason) {
    LayoutParser parser;
    int number = 0;
    while (!text.empty()) {
        std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(text.size(), line.size() + 1));
        ++number;
        const std::size_t last = line.find_last_not_of(" \t\r");
        line = line.substr(0, last == std::string_view::npos ? 0 : last + 1);
        if (number == 1) {
            if (line == kFirstLine) continue;
            reason = "not a chart layout: its first line is not \"" + std::string(kFirstLine) + "\"";
            return std::nullopt;
        }
        if (line.empty() || line.front() == '#' || parser.Take(line)) continue;
        reason = "line " + std::to_string(number) + ": " + parser.GetReason();
        return std::nullopt;
    }
    if (number == 0) {
        reason = "the file is empty";
        return std::nullopt;
    }
    if (!parser.End()) {
        reason = parser.GetReason();
        return std::nullopt;
    }
    return std::move(parser.GetLayout());
}

std::optional<ChartLayout> ReadChartLayout(const std::string& path, std::string& reason) {
    std::ifstream file(path, std::ios::binary);
    std::string text(kMaxBytes + 1, '\0');
    if (file) file.read(text.data(), static_cast<std::streamsize>(text.size()));
    if (!file.is_open() || file.bad()) {
        reason = "cannot be opened";
        return std::nullopt;
    }
    text.resize(static_cast<std::size_t>(file.gcount()));
    if (text.size() > kMaxBytes) {
        reason = "too long for a chart layout";
        return std::nullopt;
    }
    return ParseChartLayout(text, reason);
}

}  // namespace tonewright
