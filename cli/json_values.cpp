#include "cli/json_values.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <ostream>

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
    const auto* data = static_cast<const std::uint8_t*>(vector.GetDataPointer());
    const std::uint64_t bytes =
        data ? CTivData::GetByteCount(vector.GetFormat(), static_cast<std::uint64_t>(vector.GetSize())) : 0;
    const auto format = static_cast<std::uint64_t>(vector.GetFormat());
    return {{"format", FormatName(vector.GetFormat())},
            {"size", vector.GetSize()},
            {"values", Json::binary(std::vector<std::uint8_t>(data, data + bytes), format)}};
}

Json FormatName(CTivData::Format format) {
    const char* name = CTivData::GetFormatName(format);
    return name ? Json(name) : Json();
}

namespace {

class Printer {
public:
    explicit Printer(std::ostream& stream) : stream_(stream) {}
    ~Printer() { stream_ << text_; }

    void Append(const Json& value, const std::string& indent) {
        if (value.is_binary()) return AppendVector(value.get_binary(), indent);
        if (!IsNested(value)) return AppendPlain(value);
        const bool isShort = value.is_array() && std::none_of(value.begin(), value.end(), IsNested);
        AppendList(value.is_object() ? "{}" : "[]", isShort, indent, [&](auto beginElement) {
            for (const auto& [key, element] : value.items()) {
                beginElement();
                if (value.is_object()) {
                    AppendPlain(key);
                    text_ += ": ";
                }
                Append(element, indent + "  ");
            }
        });
    }

private:
    static bool IsNested(const Json& value) { return value.is_structured() && !value.empty(); }

    void AppendPlain(const Json& value) { text_ += value.dump(-1, ' ', false, Json::error_handler_t::replace); }

    void AppendVector(const Json::binary_t& bytes, const std::string& indent) {
        const auto format = static_cast<CTivData::Format>(bytes.subtype());
        const auto bits = static_cast<std::uint64_t>(CTivData::GetFormatBits(format));
        const std::uint64_t count = bits == 0 ? 0 : bytes.size() * 8 / bits;
        if (count == 0) return AppendPlain(Json::array());
        const bool isShort = !ToJson(CTivData::ReadElement(format, bytes.data(), 0)).is_structured();
        AppendList("[]", isShort, indent, [&](auto beginElement) {
            for (std::uint64_t i = 0; i < count; ++i) {
                beginElement();
                AppendPlain(ToJson(CTivData::ReadElement(format, bytes.data(), i)));
            }
        });
    }

    /// @param appendElements appends them all, and calls its argument before each
    template <class AppendElements>
    void AppendList(const char* brackets, bool isShort, const std::string& indent, AppendElements appendElements) {
        constexpr std::size_t block = 1 << 16;
        const std::string line = isShort ? "" : "\n" + indent + "  ";
        const char* separator = "";
        text_ += brackets[0];
        appendElements([&] {
            if (text_.size() >= block) {
                stream_ << text_;
                text_.clear();
            }
            text_.append(separator).append(line);
            separator = isShort ? ", " : ",";
        });
        if (!isShort) text_.append("\n").append(indent);
        text_ += brackets[1];
    }

    std::ostream& stream_;
    std::string text_;
};

}  // namespace

void Print(std::ostream& stream, const Json& document) { Printer(stream).Append(document, ""); }
