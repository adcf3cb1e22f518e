#ifdef TONEWRIGHT_HAVE_ARAVIS

#include "acquisition/zvn/camera_features_impl.h"

#include <cfloat>

namespace {

void require(ArvErrors& errors, const std::string& feature) {
    if (!errors.HasNone()) throw ZvnFeatureFailure(feature + ": " + errors.Text());
}

}  // namespace

bool CameraFeatures::Has(const std::string& feature) {
    ArvErrors errors;
    return arv_device_is_feature_available(device_, feature.c_str(), errors.Next()) != FALSE && errors.HasNone();
}

std::vector<std::string> CameraFeatures::GetEntries(const std::string& feature) {
    ArvErrors errors;
    guint count = 0;
    const char** names =
        arv_device_dup_available_enumeration_feature_values_as_strings(device_, feature.c_str(), &count, errors.Next());
    std::vector<std::string> entries;
    if (names) entries.assign(names, names + count);
    g_free(names);
    return entries;
}

std::string CameraFeatures::GetChoice(const std::string& feature) {
    ArvErrors errors;
    const char* entry = arv_device_get_string_feature_value(device_, feature.c_str(), errors.Next());
    require(errors, feature);
    return entry ? entry : "";
}

void CameraFeatures::SetChoice(const std::string& feature, const std::string& entry) {
    ArvErrors errors;
    arv_device_set_string_feature_value(device_, feature.c_str(), entry.c_str(), errors.Next());
    require(errors, feature);
}

bool CameraFeatures::GetSwitch(const std::string& feature) {
    ArvErrors errors;
    const bool on = arv_device_get_boolean_feature_value(device_, feature.c_str(), errors.Next()) != FALSE;
    require(errors, feature);
    return on;
}

void CameraFeatures::SetSwitch(const std::string& feature, bool on) {
    ArvErrors errors;
    arv_device_set_boolean_feature_value(device_, feature.c_str(), on, errors.Next());
    require(errors, feature);
}

double CameraFeatures::GetNumber(const std::string& feature) {
    ArvErrors errors;
    ArvGcNode* node = arv_device_get_feature(device_, feature.c_str());
    const double value =
        node && ARV_IS_GC_FLOAT(node)
            ? arv_device_get_float_feature_value(device_, feature.c_str(), errors.Next())
            : static_cast<double>(arv_device_get_integer_feature_value(device_, feature.c_str(), errors.Next()));
    require(errors, feature);
    return value;
}

void CameraFeatures::SetNumber(const std::string& feature, double value) {
    ArvErrors errors;
    arv_device_set_float_feature_value(device_, feature.c_str(), value, errors.Next());
    require(errors, feature);
}

ZvnFeatures::Range CameraFeatures::GetRange(const std::string& feature) {
    ArvErrors errors;
    Range range{-DBL_MAX, DBL_MAX, 0};
    arv_device_get_float_feature_bounds(device_, feature.c_str(), &range.min, &range.max, errors.Next());
    require(errors, feature);
    // A camera without a step is told by the least number there is, or by an error.
    ArvErrors stepErrors;
    const double step = arv_device_get_float_feature_increment(device_, feature.c_str(), stepErrors.Next());
    if (stepErrors.HasNone() && step > DBL_MIN) range.step = step;
    return range;
}

std::string CameraFeatures::Apply(const std::string& feature, const std::string& value) {
    ArvGcNode* node = arv_device_get_feature(device_, feature.c_str());
    if (!node || !ARV_IS_GC_FEATURE_NODE(node)) return "the camera has no feature " + feature;
    ArvErrors errors;
    if (ARV_IS_GC_COMMAND(node)) {
        arv_device_execute_command(device_, feature.c_str(), errors.Next());
    } else {
        arv_gc_feature_node_set_value_from_string(ARV_GC_FEATURE_NODE(node), value.c_str(), errors.Next());
    }
    return errors.Text();
}

#endif
