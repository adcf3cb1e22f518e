#include "cli/json_values.h"

#include <algorithm>
#include <charconv>
#include <cmath>

Json ToNumber(float value) {
    if (!std::isfinite(value)) return nullptr;
    char text[32];
    const auto end = std::to_chars(text, text + sizeof text, value).ptr;
    double number = 0;
    std::from_chars(text, end, number);
    return number;
}

namespace {

/// `count` fields of `bits` bits each, the highest first.
Json fields(std::uint64_t word, int bits, int count) {
    Json result = Json::array();
    for (int i = count - 1; i >= 0; --i) result.push_back(word >> i * bits & ((std::uint64_t{1} << bits) - 1));
    return result;
}

Json floats(const float* values) { return {ToNumber(values[0]), ToNumber(values[1]), ToNumber(values[2])}; }

}  // namespace

Json ToJson(const CTivData& value) {
    const std::uint64_t payload = value.GetPayload();
    switch (value.GetFormat()) {
        case CTivData::FormatRgb:
        case CTivData::FormatHsv:
        case CTivData::FormatYuv:
        case CTivData::FormatLab:
        case CTivData::FormatColorUByte:
            return fields(payload, 8, 3);
        case CTivData::FormatRgb10:
            return fields(payload, 10, 3);
        case CTivData::FormatRgb16:
            return fields(payload, 16, 3);
        case CTivData::FormatColorFloat:
            return floats(value.AsColorFloat());
        case CTivData::FormatFPoint:
        case CTivData::FormatComplex:
            return {ToNumber(value.AsFPoint().x), ToNumber(value.AsFPoint().y)};
        case CTivData::FormatPoint:
            return {value.AsPoint().x, value.AsPoint().y};
        case CTivData::FormatRect:
            return {value.AsRect()->x, value.AsRect()->y, value.AsRect()->width, value.AsRect()->height};
        case CTivData::FormatFloat:
            return ToNumber(value.AsFloat());
        case CTivData::FormatDouble:
            return std::isfinite(value.AsDouble()) ? Json(value.AsDouble()) : Json();
        case CTivData::FormatByte:
        case CTivData::FormatShort:
        case CTivData::FormatInt:
            return value.AsInt();
        case CTivData::FormatUByte:
        case CTivData::FormatUShort:
        case CTivData::FormatUInt:
        case CTivData::FormatBinary:
            return value.AsUInt();
        default:
            return nullptr;
    }
}

Json ToJson(const CTivVector& vector) {
    Json values = Json::array();
    for (int i = 0; i < vector.GetSize(); ++i) values.push_back(ToJson(vector.GetData(i)));
    return {{"format", FormatName(vector.GetFormat())}, {"size", vector.GetSize()}, {"values", values}};
}

Json FormatName(CTivData::Format format) {
    const char* name = CTivData::GetFormatName(format);
    return name ? Json(name) : Json();
}

namespace {

void append(std::string& text, const Json& value, const std::string& indent) {
    const auto isNested = [](const Json& element) { return element.is_structured() && !element.empty(); };
    if (!isNested(value)) {
        text += value.dump(-1, ' ', false, Json::error_handler_t::replace);
        return;
    }
    const bool isShort = value.is_array() && std::none_of(value.begin(), value.end(), isNested);
    const std::string deeper = indent + "  ";
    const char* separator = "";
    text += value.is_object() ? '{' : '[';
    for (const auto& [key, element] : value.items()) {
        text += separator;
        if (!isShort) text.append("\n").append(deeper);
        if (value.is_object()) text += Json(key).dump(-1, ' ', false, Json::error_handler_t::replace) + ": ";
        append(text, element, deeper);
        separator = isShort ? ", " : ",";
    }
    if (!isShort) text.append("\n").append(indent);
    text += value.is_object() ? '}' : ']';
}

}  // namespace

std::string ToText(const Json& document) {
    std::string text;
    append(text, document, "");
    return text;
}
