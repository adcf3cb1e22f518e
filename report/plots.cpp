#include "report/plots.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "report/markup_impl.h"

namespace tonewright {

namespace {

using markup::Escaped;
using markup::Fixed;

// The area of every plot, in units of its view box.
constexpr double kLeft = 34;
constexpr double kRight = 348;
constexpr double kTop = 14;
constexpr double kBottom = 212;
constexpr double kAxisText = 226;   // base line of the numbers below the axis
constexpr double kAxisTitle = 243;  // base line of what the axis shows

std::string at(double value) { return Fixed(value, 1); }

/// From values to places along an axis.
struct Scale {
    double from, to;    ///< values
    double begin, end;  ///< places
    double operator()(double value) const { return begin + (value - from) / (to - from) * (end - begin); }
};

/// 1, 2 or 5 times a power of ten, so that `range` has about `count` steps.
double roundStep(double range, int count) {
    const double raw = std::max(range, 1e-6) / count;
    const double power = std::pow(10.0, std::floor(std::log10(raw)));
    for (const double factor : {1.0, 2.0, 5.0}) {
        if (raw <= factor * power) return factor * power;
    }
    return 10 * power;
}

std::string text(double x, double y, const std::string& words, const char* anchor = "middle",
                 const char* style = "tick") {
    return "<text class=\"" + std::string(style) + "\" x=\"" + at(x) + "\" y=\"" + at(y) + "\" text-anchor=\"" +
           anchor + "\">" + Escaped(words) + "</text>";
}

std::string line(double x1, double y1, double x2, double y2, const char* style) {
    return "<line class=\"" + std::string(style) + "\" x1=\"" + at(x1) + "\" y1=\"" + at(y1) + "\" x2=\"" + at(x2) +
           "\" y2=\"" + at(y2) + "\"/>";
}

std::string rectangle(double x, double y, double width, double height, const std::string& attributes) {
    return "<rect x=\"" + at(x) + "\" y=\"" + at(y) + "\" width=\"" + at(std::max(0.0, width)) + "\" height=\"" +
           at(std::max(0.0, height)) + "\" " + attributes + "/>";
}

std::string plot(const std::string& title, const std::string& description, const std::string& content) {
    return "<svg class=\"plot\" viewBox=\"0 0 " + std::to_string(kPlotWidth) + " " + std::to_string(kPlotHeight) +
           "\" role=\"img\"><title>" + Escaped(title) + "</title><desc>" + Escaped(description) + "</desc>" + content +
           "</svg>\n";
}

/// Lines across with their numbers, from the bottom of a scale to its top.
std::string levels(const Scale& y, double step, int decimals) {
    std::string drawn;
    for (double value = y.from; value <= y.to + step * 1e-6; value += step) {
        drawn += line(kLeft, y(value), kRight, y(value), "grid");
        drawn += text(kLeft - 4, y(value) + 3.5, Fixed(value, decimals), "end");
    }
    return drawn;
}

Scale heightFor(double greatest, double& step) {
    const double top = std::isfinite(greatest) && greatest > 0 ? greatest : 1;
    step = roundStep(top, 4);
    return {0, std::ceil(top / step - 1e-9) * step, kBottom, kTop};
}

/// Every number below its place where there is room, else every second, third ...
std::string numbersBelow(std::span<const int> numbers, const Scale& x) {
    const std::size_t every = std::max<std::size_t>(1, (numbers.size() + 23) / 24);
    std::string drawn;
    for (std::size_t i = 0; i < numbers.size(); i += every) {
        drawn += text(x(static_cast<double>(i) + 0.5), kAxisText, std::to_string(numbers[i]), "middle", "tiny");
    }
    return drawn;
}

}  // namespace

std::string PlotRules(const PlotColors& colors) {
    return ".plot text { fill: " + colors.soft + "; font-size: 10.5px; font-family: 'DejaVu Sans', sans-serif; }\n" +
           ".plot .tiny { font-size: 8px; }\n.plot .grid { stroke: " + colors.line + "; stroke-width: 1; }\n" +
           ".plot .axis { stroke: " + colors.edge + "; stroke-width: 1; }\n.plot .bar { stroke: " + colors.edge +
           "; stroke-width: 0.8; }\n.plot .worst { stroke: " + colors.bad + "; stroke-width: 2; }\n" +
           ".plot .before { stroke: " + colors.text + "; stroke-width: 1.4; stroke-dasharray: 3 2; }\n" +
           ".plot .target { stroke: " + colors.edge + "; stroke-width: 1; }\n.plot .arrow { stroke: " + colors.text +
           "; stroke-width: 1.3; }\n.plot .head { fill: " + colors.text +
           "; }\n.plot .curve { fill: none; stroke: " + colors.accent +
           "; stroke-width: 2; }\n.plot .mark { fill: " + colors.accent + "; }\n" +
           ".plot .noise-before { fill: " + colors.edge +
           "; opacity: 0.55; }\n.plot .noise-after { fill: " + colors.accent + "; }\n";
}

std::string StandalonePlot(const std::string& plot, const PlotColors& colors) {
    std::string rules = PlotRules(colors);
    // Alone there is no page around it, and simple readers know no descent in selectors.
    for (std::size_t at; (at = rules.find(".plot ")) != std::string::npos;) rules.erase(at, 6);
    const std::size_t inside = plot.find('>') + 1;
    std::string head = plot.substr(0, inside);
    head.insert(4, " xmlns=\"http://www.w3.org/2000/svg\"");
    return head + "<style>" + rules + "</style>" + plot.substr(inside);
}

std::string DifferenceBars(std::span<const PatchBar> patches) {
    double greatest = 0;
    std::vector<int> numbers;
    for (const PatchBar& patch : patches) {
        numbers.push_back(patch.number);
        if (std::isfinite(patch.value)) greatest = std::max(greatest, patch.value);
        if (std::isfinite(patch.before)) greatest = std::max(greatest, patch.before);
    }
    double step = 1;
    const Scale y = heightFor(greatest, step);
    const Scale x{0, std::max(1.0, static_cast<double>(patches.size())), kLeft, kRight};
    const double room = (x.end - x.begin) / x.to;
    std::string drawn = levels(y, step, step < 1 ? 1 : 0);
    const auto worst = std::max_element(patches.begin(), patches.end(),
                                        [](const PatchBar& a, const PatchBar& b) { return a.value < b.value; });
    std::size_t i = 0;
    for (const PatchBar& patch : patches) {
        const double left = x(static_cast<double>(i++)) + room * 0.14;
        const double value = std::isfinite(patch.value) ? patch.value : y.to;
        drawn += rectangle(
            left, y(value), room * 0.72, kBottom - y(value),
            "class=\"bar" + std::string(&patch == &*worst ? " worst" : "") + "\" fill=\"" + patch.color + "\"");
        if (patch.before >= 0 && std::isfinite(patch.before)) {
            drawn += line(left - room * 0.1, y(patch.before), left + room * 0.82, y(patch.before), "before");
        }
    }
    drawn += line(kLeft, kBottom, kRight, kBottom, "axis") + numbersBelow(numbers, x);
    drawn += text((kLeft + kRight) / 2, kAxisTitle, "patch (bar: delivered, line: before)");
    std::string description = "Difference by patch in CIEDE2000.";
    if (worst != patches.end()) {
        description += " Greatest: patch " + std::to_string(worst->number) + " " + worst->name + ", " +
                       Fixed(worst->value, 1) + ".";
    }
    return plot("Difference by patch", description, drawn);
}

std::string LabPlane(std::span<const LabArrow> patches) {
    double reach = 20;
    for (const LabArrow& patch : patches) {
        for (const Lab* color : {&patch.target, &patch.delivered}) {
            for (const double axis : {(*color)[1], (*color)[2]}) {
                if (std::isfinite(axis)) reach = std::max(reach, std::abs(axis));
            }
        }
    }
    reach = std::min(200.0, std::ceil(reach / 10) * 10);
    const double step = roundStep(reach, 3);
    // One scale for both axes: a distance in the plot is a distance in the plane.
    const double half = (kBottom - kTop) / 2;
    const double middleX = (kLeft + kRight) / 2;
    const Scale x{-reach, reach, middleX - half, middleX + half};
    const Scale y{-reach, reach, kBottom, kTop};
    std::string drawn;
    for (double value = -std::floor(reach / step) * step; value <= reach; value += step) {
        drawn += line(x(value), kTop, x(value), kBottom, "grid") + line(x.begin, y(value), x.end, y(value), "grid");
        drawn += text(x(value), kAxisText, Fixed(value, 0)) + text(x.begin - 4, y(value) + 3.5, Fixed(value, 0), "end");
    }
    drawn += line(x(0), kTop, x(0), kBottom, "axis") + line(x.begin, y(0), x.end, y(0), "axis");
    for (const LabArrow& patch : patches) {
        const double fromX = x(patch.target[1]), fromY = y(patch.target[2]);
        const double toX = x(std::clamp(patch.delivered[1], -reach, reach));
        const double toY = y(std::clamp(patch.delivered[2], -reach, reach));
        if (!std::isfinite(toX + toY + fromX + fromY)) continue;
        drawn += "<circle class=\"target\" cx=\"" + at(fromX) + "\" cy=\"" + at(fromY) + "\" r=\"4\" fill=\"" +
                 patch.color + "\"/>";
        const double length = std::hypot(toX - fromX, toY - fromY);
        if (length < 0.5) continue;
        const double dx = (toX - fromX) / length, dy = (toY - fromY) / length;
        const double head = std::min(5.0, length);
        drawn += line(fromX, fromY, toX - dx * head * 0.7, toY - dy * head * 0.7, "arrow");
        drawn += "<path class=\"head\" d=\"M" + at(toX) + " " + at(toY) + " L" + at(toX - dx * head + dy * head * 0.5) +
                 " " + at(toY - dy * head - dx * head * 0.5) + " L" + at(toX - dx * head - dy * head * 0.5) + " " +
                 at(toY - dy * head + dx * head * 0.5) + " Z\"/>";
    }
    drawn += text(middleX, kAxisTitle, "a* (green to red)");
    drawn += "<text class=\"tick\" transform=\"translate(" + at(x.begin - 30) + " " + at((kTop + kBottom) / 2) +
             ") rotate(-90)\" text-anchor=\"middle\">b* (blue to yellow)</text>";
    return plot("The a*b* plane", "An arrow from each patch's target to what is delivered, in CIE 1976 a* and b*.",
                drawn);
}

std::string ToneCurve(std::span<const ToneStep> steps) {
    const Scale x{0, 100, kLeft, kRight};
    const Scale y{0, 100, kBottom, kTop};
    std::string drawn = levels(y, 20, 0);
    for (int value = 0; value <= 100; value += 20) drawn += text(x(value), kAxisText, std::to_string(value));
    drawn += line(x(0), y(0), x(100), y(100), "before");
    std::string path;
    std::string marks;
    for (const ToneStep& step : steps) {
        if (!std::isfinite(step.target + step.delivered)) continue;
        const double px = x(std::clamp(step.target, 0.0, 100.0)), py = y(std::clamp(step.delivered, 0.0, 100.0));
        path += (path.empty() ? "M" : " L") + at(px) + " " + at(py);
        marks += "<circle class=\"mark\" cx=\"" + at(px) + "\" cy=\"" + at(py) + "\" r=\"3.5\"/>";
    }
    drawn += "<path class=\"curve\" d=\"" + path + "\"/>" + marks + line(kLeft, kBottom, kRight, kBottom, "axis");
    drawn += text((kLeft + kRight) / 2, kAxisTitle, "L* wanted; upward L* delivered; dashed: perfect");
    return plot("Tone of the neutral patches",
                "Lightness L* delivered over lightness wanted, beside the straight line of a perfect one.", drawn);
}

std::string NoiseBars(std::span<const NoisePair> patches) {
    double greatest = 0;
    std::vector<int> numbers;
    for (const NoisePair& patch : patches) {
        numbers.push_back(patch.number);
        for (const double value : {patch.before, patch.after}) {
            if (std::isfinite(value)) greatest = std::max(greatest, value);
        }
    }
    double step = 1;
    const Scale y = heightFor(greatest, step);
    const Scale x{0, std::max(1.0, static_cast<double>(patches.size())), kLeft, kRight};
    const double room = (x.end - x.begin) / x.to;
    std::string drawn = levels(y, step, step < 0.1 ? 2 : step < 1 ? 1 : 0);
    std::size_t i = 0;
    for (const NoisePair& patch : patches) {
        const double left = x(static_cast<double>(i++)) + room * 0.1;
        const auto bar = [&](double value, double place, const char* style) {
            const double shown = std::isfinite(value) ? value : 0;
            drawn += rectangle(left + room * place, y(shown), room * 0.38, kBottom - y(shown), style);
        };
        bar(patch.before, 0, "class=\"noise-before\"");
        bar(patch.after, 0.4, "class=\"noise-after\"");
    }
    drawn += line(kLeft, kBottom, kRight, kBottom, "axis") + numbersBelow(numbers, x);
    drawn += text((kLeft + kRight) / 2, kAxisTitle, "patch (light: before, dark: after; 8-bit steps)");
    return plot("Noise", "Standard deviation of each patch before and after the correction, in 8-bit steps.", drawn);
}

}  // namespace tonewright
