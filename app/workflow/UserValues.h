#pragma once

#include <QString>
#include <array>
#include <vector>

#include "chart/PatchDetector.h"
#include "foundation/CTivVector.h"

/// The cells of the user's values as they were typed.
struct UserValueTexts {
    std::vector<QString> white;    ///< X, Y, Z
    std::vector<QString> patches;  ///< three a patch

    bool operator==(const UserValueTexts&) const = default;
};

/// What the user measured of chart and light, and the chart's size, as the steps of the work see them.
class UserValues {
public:
    virtual ~UserValues() = default;

    virtual CTivVector GetSpectrumValues() const = 0;  ///< FormatColorFloat
    virtual std::array<float, 4> GetIlluminantValue() const = 0;
    virtual void ShowSpectrumValues(const CTivVector& values) = 0;
    virtual void ShowIlluminantValue(const std::array<float, 4>& value) = 0;
    virtual UserValueTexts GetTexts() const = 0;
    virtual void ShowTexts(const UserValueTexts& texts) = 0;  ///< as many patches as it has
    virtual bool Shows(const UserValueTexts& texts) const = 0;
    virtual void SetEnabled(bool enabled) = 0;  ///< values may be edited
    virtual void ResetValues() = 0;             ///< zeros, editing off
    virtual ChartSize* GetChartSize() = 0;
    virtual void SetMatrixSize(int width, int height) = 0;
    virtual void LoadValuesFrom(const QString& path) = 0;  ///< @throw what the file's reader throws
};
