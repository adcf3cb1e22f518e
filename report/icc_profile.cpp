#include "report/icc_profile.h"

#include <lcms2.h>

#include <algorithm>
#include <cmath>
#include <memory>

#include "report/adaptation.h"

namespace tonewright {

namespace {

constexpr double kVersion = 4.3;
constexpr int kPoints = 33;
constexpr double kShaperGamma = 0.45;            // spreads the dark end over the table, on both its sides
constexpr double kXyzScale = 32768.0 / 65535.0;  // how XYZ of 1 is encoded in the connection space

using Color = std::array<double, 3>;

struct Closer {
    void operator()(void* profile) const { cmsCloseProfile(profile); }
    void operator()(cmsPipeline* pipeline) const { cmsPipelineFree(pipeline); }
    void operator()(cmsToneCurve* curve) const { cmsFreeToneCurve(curve); }
    void operator()(cmsMLU* text) const { cmsMLUfree(text); }
};
using Profile = std::unique_ptr<void, Closer>;
using Pipeline = std::unique_ptr<cmsPipeline, Closer>;
using ToneCurve = std::unique_ptr<cmsToneCurve, Closer>;

bool append(cmsPipeline* pipeline, cmsStage* stage) {
    if (!stage) return false;
    if (cmsPipelineInsertStage(pipeline, cmsAT_END, stage)) return true;
    cmsStageFree(stage);
    return false;
}

bool appendCurves(cmsPipeline* pipeline, double gamma) {
    const ToneCurve curve(cmsBuildGamma(nullptr, gamma));
    if (!curve) return false;
    cmsToneCurve* const three[] = {curve.get(), curve.get(), curve.get()};
    return append(pipeline, cmsStageAllocToneCurves(nullptr, 3, three));
}

/// The matrix with its offsets, read off the correction's values at black and at each primary.
bool appendMatrix(cmsPipeline* pipeline, const ColorFunction& toXyz) {
    const auto encoded = [&](const Color& raw) {
        const Xyz xyz = ToD50(toXyz(raw));
        return Color{xyz[0] * kXyzScale, xyz[1] * kXyzScale, xyz[2] * kXyzScale};
    };
    const Color offset = encoded({0, 0, 0});
    double matrix[9];
    for (std::size_t channel = 0; channel < 3; ++channel) {
        Color primary{};
        primary[channel] = 1;
        const Color value = encoded(primary);
        for (std::size_t row = 0; row < 3; ++row) matrix[3 * row + channel] = value[row] - offset[row];
    }
    return appendCurves(pipeline, 1) && append(pipeline, cmsStageAllocMatrix(nullptr, 3, 3, matrix, offset.data())) &&
           appendCurves(pipeline, 1);
}

struct Sampled {
    const ColorFunction& toXyz;
};

cmsInt32Number sample(const cmsUInt16Number in[], cmsUInt16Number out[], void* context) {
    Color raw;
    for (std::size_t k = 0; k < 3; ++k) raw[k] = std::pow(in[k] / 65535.0, 1 / kShaperGamma);
    const Xyz color = ToD50(static_cast<const Sampled*>(context)->toXyz(raw));
    for (std::size_t k = 0; k < 3; ++k) {
        const double coded = std::pow(std::clamp(color[k] * kXyzScale, 0.0, 1.0), kShaperGamma);
        out[k] = static_cast<cmsUInt16Number>(std::lround(coded * 65535));
    }
    return TRUE;
}

bool appendTable(cmsPipeline* pipeline, const ColorFunction& toXyz) {
    cmsStage* const table = cmsStageAllocCLut16bit(nullptr, kPoints, 3, 3, nullptr);
    Sampled sampled{toXyz};
    if (table && !cmsStageSampleCLut16bit(table, sample, &sampled, 0)) {
        cmsStageFree(table);
        return false;
    }
    return appendCurves(pipeline, kShaperGamma) && append(pipeline, table) && appendCurves(pipeline, 1 / kShaperGamma);
}

bool writeText(cmsHPROFILE profile, cmsTagSignature tag, const std::string& words) {
    const std::unique_ptr<cmsMLU, Closer> text(cmsMLUalloc(nullptr, 1));
    return text && cmsMLUsetASCII(text.get(), "en", "US", words.c_str()) && cmsWriteTag(profile, tag, text.get());
}

}  // namespace

std::vector<std::uint8_t> IccProfile(const ColorFunction& toXyz, bool isLinear, const std::string& name) {
    const Profile profile(cmsCreateProfilePlaceholder(nullptr));
    const Pipeline pipeline(cmsPipelineAlloc(nullptr, 3, 3));
    if (!profile || !pipeline) return {};
    cmsSetProfileVersion(profile.get(), kVersion);
    cmsSetDeviceClass(profile.get(), cmsSigInputClass);
    cmsSetColorSpace(profile.get(), cmsSigRgbData);
    cmsSetPCS(profile.get(), cmsSigXYZData);  // unlike L*a*b* it holds what is brighter than white
    cmsSetHeaderRenderingIntent(profile.get(), INTENT_RELATIVE_COLORIMETRIC);
    const bool isFilled = isLinear ? appendMatrix(pipeline.get(), toXyz) : appendTable(pipeline.get(), toXyz);
    if (!isFilled || !cmsWriteTag(profile.get(), cmsSigAToB0Tag, pipeline.get()) ||
        !cmsWriteTag(profile.get(), cmsSigMediaWhitePointTag, cmsD50_XYZ()) ||
        !writeText(profile.get(), cmsSigProfileDescriptionTag, name) ||
        !writeText(profile.get(), cmsSigCopyrightTag, "No copyright, use freely")) {
        return {};
    }
    cmsUInt32Number size = 0;
    if (!cmsSaveProfileToMem(profile.get(), nullptr, &size)) return {};
    std::vector<std::uint8_t> bytes(size);
    if (!cmsSaveProfileToMem(profile.get(), bytes.data(), &size)) return {};
    return bytes;
}

}  // namespace tonewright
