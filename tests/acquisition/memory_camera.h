#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <string>
#include <vector>

#include "acquisition/zvn/color_features.h"

/// A camera's memory behind its features, which fails at a call of choice.
class MemoryCamera : public ZvnFeatures {
public:
    struct State {
        bool isOn = true;
        std::string selector = "RGBtoYUV";
        std::string valueSelector = "Gain12";
        std::map<std::string, double> values;  // of RGBtoRGB
        bool operator==(const State&) const = default;
    };

    MemoryCamera() {
        double value = 0.25;
        for (const char* row : {"0", "1", "2"}) {
            state.values[std::string("Offset") + row] = value * 8;
            for (const char* column : {"0", "1", "2"})
                state.values[std::string("Gain") + row + column] = value += 0.125;
        }
    }

    State state;
    double step = 0;
    bool saysStep = true;
    double most = 64;  ///< what is above becomes this
    double range = 64;
    bool takesNumbers = true;
    int calls = 0;       ///< so far
    int failAt = -1;     ///< number of the call that fails
    bool isEnd = false;  ///< and of all after it

    bool Has(const std::string& feature) override { return feature.starts_with("ColorTransformation"); }
    std::vector<std::string> GetEntries(const std::string& feature) override {
        std::vector<std::string> entries;
        if (feature == "ColorTransformationSelector") return {"RGBtoRGB", "RGBtoYUV"};
        for (const auto& [name, value] : state.values) entries.push_back(name);
        return entries;
    }
    std::string GetChoice(const std::string& feature) override { return Choice(feature); }
    void SetChoice(const std::string& feature, const std::string& entry) override { Choice(feature) = entry; }
    bool GetSwitch(const std::string&) override {
        Count();
        return state.isOn;
    }
    void SetSwitch(const std::string&, bool on) override {
        Count();
        state.isOn = on;
    }
    double GetNumber(const std::string&) override { return Number(); }
    void SetNumber(const std::string&, double value) override {
        double& number = Number();
        value = std::fmin(value, most);
        if (takesNumbers) number = step > 0 ? std::floor(value / step) * step : static_cast<float>(value);
    }
    Range GetRange(const std::string&) override { return {-range, range, saysStep ? step : 0}; }

private:
    void Count() {
        const bool fails = failAt >= 0 && (isEnd ? calls >= failAt : calls == failAt);
        ++calls;
        if (fails) throw ZvnFeatureFailure("the camera does not answer");
    }
    std::string& Choice(const std::string& feature) {
        Count();
        return feature == "ColorTransformationSelector" ? state.selector : state.valueSelector;
    }
    double& Number() {
        Count();
        EXPECT_EQ(state.selector, "RGBtoRGB");
        return state.values.at(state.valueSelector);
    }
};

inline constexpr ZvnColorMatrix kMatrix = {-0.0125f, 1.5f, -0.25f, -0.125f, 0.03f, 0.1f,
                                           1.2f,     0.3f, 0,      -0.7f,   0.07f, 1.63f};
