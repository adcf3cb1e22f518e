#pragma once

#include <array>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "calibration/DoubleMatrix.h"
#include "calibration/color_fit.h"
#include "calibration/gamma_tables.h"
#include "calibration/parameter_file.h"
#include "foundation/CTivAlgo.h"
#include "foundation/CTivData.h"
#include "foundation/CTivImage.h"
#include "foundation/CTivVector.h"
#include "primitives/polynomial.h"

/// The state of a calibration and what is done with it; CTivTonewrightDC tells what each operation means.
class ImplTonewrightDC : public CTivAlgo {
public:
    ImplTonewrightDC();

    void Reset();
    void SetXformSize(std::int32_t terms);
    void SetGamma(float gamma);
    bool SetSaturation(const CTivData& value);
    bool Calibrate();
    bool Execute(const CTivImage& source, CTivImage& destination) {
        return Execute(source, destination, {transform_, parameters_.terms, colorTwist_}, untouched_);
    }
    /// What the pixel loops run with.
    struct Coefficients {
        const CTivVector& transform;
        std::int32_t terms;
        std::array<float, 12> colorTwist;
    };
    /// @param untouched scratch memory of a correction in place
    bool Execute(const CTivImage& source, CTivImage& destination, const Coefficients& coefficients,
                 std::vector<std::uint8_t>& untouched) const;
    bool Save(const std::string& path) const;
    bool Load(const std::string& path);
    bool SaveXForm(const std::string& path, bool withSaturation) const {
        return SaveXForm(path, transform_, parameters_.terms, withSaturation);
    }
    bool SaveXForm(const std::string& path, const CTivVector& coefficients, std::int32_t terms,
                   bool withSaturation) const;
    bool LoadXForm(const std::string& path);

    bool valid_ = true;
    bool calibrated_ = false;
    CTivData::Format calibratedFormat_ = CTivData::FormatRgb;
    tonewright::CalibrationParameters parameters_;
    CTivVector transform_;
    DoubleMatrix fitMatrix_;
    DoubleMatrix adaptationMatrix_;

private:
    // calibrate.cpp
    void UpdateSaturation();
    void ComputeSaturation();
    bool CalibrateAbsolute();
    bool CalibrateRelative();
    bool FitAbsolute(std::span<const tonewright::NormalisedColor> targets, const DoubleMatrix& adaptation);
    bool KeepTransform();
    bool StoreTransform(const DoubleMatrix& matrix);
    // execute.cpp
    template <class Pixel>
    bool RunPolynomial(const NurImage& source, NurImage& destination, const Coefficients& coefficients,
                       const tonewright::GammaTable<Pixel>& table) const;
    bool RunTwist(const NurImage& source, NurImage& destination, const std::array<float, 12>& colorTwist,
                  std::vector<std::uint8_t>& untouched) const;
    // persistence.cpp
    std::array<float, 3> GetSaturationFractions() const;
    void SetSaturationFractions(const std::array<float, 3>& fractions);

    std::shared_ptr<const tonewright::GammaTables> gammaTables_;
    std::array<float, 12> colorTwist_{};  ///< the transform reversed: blue, green, red rows of blue, green, red, offset
    std::vector<std::uint8_t> untouched_;  ///< source pixels of a correction in place, kept from image to image
};
