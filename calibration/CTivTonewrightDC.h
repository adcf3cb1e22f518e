#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include "calibration/CalibrationTables.h"
#include "calibration/DoubleMatrix.h"
#include "calibration/illuminants.h"
#include "foundation/CTivData.h"
#include "foundation/CTivImage.h"
#include "foundation/CTivOperator.h"
#include "foundation/CTivString.h"
#include "foundation/CTivVector.h"

class CTivTonewrightDC;
class ImplTonewrightDC;

namespace tonewright {
bool ExecuteTransform(const CTivTonewrightDC& settings, const CTivVector& transform, const CTivImage& source,
                      CTivImage& destination);
bool SaveTransform(const CTivTonewrightDC& settings, const CTivVector& transform, const CTivString& path,
                   bool withSaturation);
}  // namespace tonewright

/// The color calibration of a camera: takes the colors that a chart measured, fits the polynomial that brings them to
/// what they should have been, applies it to images, and keeps both in files.
///
/// Operations answer true for done. A failure is reported through CTivManager::ReportError and answered with false. An
/// object that was moved from answers false, null or zero silently. One made invalid refuses with
/// "CTivTonewrightDC::Validate => CTivTonewrightDC object is invalid"; its getters answer as documented, silently.
/// For one thread. A decomposition that does not converge, with colors that are not finite, leaves Calibrate and Load
/// as an exception of type const char*.
class CTivTonewrightDC : public CTivOperator {
public:
    CTivTonewrightDC();  ///< in the state that Reset leaves
    CTivTonewrightDC(CTivTonewrightDC&&) noexcept;
    CTivTonewrightDC& operator=(CTivTonewrightDC&&) noexcept;
    ~CTivTonewrightDC() override;

    /// Absolute mode, illuminant D65, 10 terms, automatic saturation, gamma 0.45, nothing calibrated, no colors, all
    /// saturation values 0. The illuminant value stays.
    bool Reset();

    // Inputs of a calibration. Numbers are stored without a range test; Calibrate tells what does not fit.
    bool SetCalibrationMode(std::int32_t mode);  ///< 0 absolute: against XYZ; 1 relative: against the reference colors
    std::int32_t GetCalibrationMode() const;     ///< 0 without a valid object
    /// @param illuminant an index of kCalibrationIlluminants; kUserIlluminant for the user's own light
    bool SetIlluminant(std::int32_t illuminant);
    std::int32_t GetIlluminant() const;  ///< 3 without a valid object
    /// @param value X, Y, Z of the white reference under the user's illuminant, on the scale on which the chart's white
    ///              patch has a Y near 0.885; the fourth value travels along
    bool SetIlluminantValue(const std::array<float, 4>& value);
    std::array<float, 4> GetIlluminantValue() const;  ///< zeros without a valid object
    bool SetXformSize(std::int32_t terms);            ///< 4, 7 or 10 terms per output channel
    std::int32_t GetXformSize() const;                ///< 0 without a valid object
    bool SetGamma(float gamma);                       ///< exponent of the output; rebuilds the tables
    float GetGamma() const;                           ///< -1 without an object, 0 with an invalid one
    bool SetSaturationMode(std::int32_t mode);        ///< 0 from the brightest raw color, 1 as set, 2 full scale
    std::int32_t GetSaturationMode() const;           ///< 0 without a valid object
    /// @param rgb red in bits 16 to 23, green in 8 to 15, blue in 0 to 7
    bool SetSaturationValue(std::uint32_t rgb);
    /// Sets the saturation of the value's own format.
    /// @return false, reported, for any but FormatRgb, FormatRgb10, FormatRgb16
    bool SetSaturationValueEx(const CTivData& value);
    // The saturation values in force; empty values without a valid object.
    CTivData GetSaturationRgb() const;
    CTivData GetSaturationRgb10() const;
    CTivData GetSaturationRgb16() const;

    /// Copies the measured colors. @return false, reported, for any but FormatRgb, FormatRgb10, FormatRgb16
    bool SetRawColors(const CTivVector& colors);
    /// Copies the targets of the relative mode; formats as for SetRawColors.
    bool SetReferenceColors(const CTivVector& colors);
    /// Copies the X, Y, Z that the patches have under the user's illuminant. @return false, reported, for any but
    /// FormatColorFloat
    bool SetSpectrumValues(const CTivVector& values);
    // Null without a valid object.
    const CTivVector* GetRawColors() const;
    const CTivVector* GetReferenceColors() const;
    const CTivVector* GetSpectrumValues() const;

    /// Fits the transform. In saturation mode 0 it also takes the raw colors' format as the one that Execute serves and
    /// computes that format's saturation; in mode 2 it sets all three to full scale.
    ///
    /// Absolute mode: fits against the XYZ of the illuminant (exactly 24 raw colors) or against the spectrum values (as
    /// many as raw colors), adapts to D65 (Bradford) and converts to linear RGB. Relative mode: fits against the
    /// reference colors, in number and format those of the raw colors. Gamma takes no part. With a term count other
    /// than 4, 7, 10 nothing is fitted and the transform stays.
    /// @return false, reported, where colors are missing or don't match, or for another mode; earlier results stay
    bool Calibrate();

    /// Applies the transform to the source's ROI, from the destination's ROI origin.
    /// @param source an image of GetCalibratedFormat() (FormatRgb where that is none of the three)
    /// @param destination may be the source itself; an empty one is created with the size of the source's ROI; else of
    ///                    the same format with a ROI at least as large
    /// @return false, reported, where formats, sizes or the transform don't fit, or for 4 terms of FormatRgb at
    ///         acceleration level 0; the pixels are then as they were
    bool Execute(const CTivImage& source, CTivImage& destination);

    // Files. A save that fails leaves an earlier file whole.
    /// Writes every input of the calibration (.twkp). @return false, reported, where the file can't be written
    bool Save(const CTivString& path) const;
    /// Reads them and calibrates. @return what Calibrate says; false, reported, where the file can't be opened or read
    /// (a file of another kind changes nothing, one that goes wrong later has replaced what came before)
    bool Load(const CTivString& path);
    /// Writes the transform (.ccor). @param withSaturation also the saturation of the raw colors' format
    /// @return false, reported, before the first successful Calibrate or where the file can't be written
    bool SaveXForm(const CTivString& path, bool withSaturation) const;
    /// Reads transform and term count, and saturation where the file has it. Neither marks the operator as calibrated
    /// nor makes the color twist that Execute applies with 4 terms to FormatRgb: deliberate (C26).
    /// @return false, reported, where the file can't be opened or read
    bool LoadXForm(const CTivString& path);

    // Results.
    bool IsCalibrated() const;                     ///< a Calibrate has succeeded since the last Reset
    CTivData::Format GetCalibratedFormat() const;  ///< FormatNone without a valid object
    const CTivVector* GetTransform() const;        ///< 3 x terms FormatFloat: red, green, blue row; null as above
    const DoubleMatrix* GetFitMatrix() const;      ///< 3 x terms, the fit against XYZ of the last absolute calibration
    const DoubleMatrix* GetAdaptationMatrix() const;  ///< 3 x 3, XYZ to XYZ under D65; 0 x 0 before the first

protected:
    /// Marks the object as unusable for good.
    void Invalidate();

private:
    bool IsValid() const;   ///< silently
    bool Validate() const;  ///< reports what is invalid

    // calibration/execute_transform.h
    friend bool tonewright::ExecuteTransform(const CTivTonewrightDC& settings, const CTivVector& transform,
                                             const CTivImage& source, CTivImage& destination);
    friend bool tonewright::SaveTransform(const CTivTonewrightDC& settings, const CTivVector& transform,
                                          const CTivString& path, bool withSaturation);

    std::unique_ptr<ImplTonewrightDC> impl_;
};
