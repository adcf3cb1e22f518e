#include "foundation/nur_types.h"

#include <array>
#include <utility>

namespace {

// Indexed by code. The sizes of GENERIC, VECTOR, QUAD, SEGMENT, BINARY and others differ from the format table's on
// purpose: these are the lower layer's own.
constexpr std::array<NurTypeInfo, 54> kTypes{{
    {"NUR_OBJ_GENERIC", "NurObj", "NurObj", 48, true},
    {"NUR_OBJ_SYNC", "Sync", "NurSync", 0, false},
    {"NUR_OBJ_VECTOR", "NurVector", "NurVector", 12, true},
    {"NUR_OBJ_IMAGE", "Image", "NurImage", 32, true},
    {"NUR_OBJ_VOLUME", "Volume", "NurVolume", 20, true},
    {nullptr, "char", "NurChar", 1, false},
    {"NUR_OBJ_BYTE", "int8", "NurByte", 1, false},
    {"NUR_OBJ_SHORT", "int16", "short", 2, false},
    {"NUR_OBJ_INT", "int32", "int", 4, false},
    {nullptr, "long", "long", 4, false},
    {"NUR_OBJ_UBYTE", "uint8", "NurUByte", 1, false},
    {"NUR_OBJ_USHORT", "uint16", "ushort", 2, false},
    {"NUR_OBJ_UINT", "uint32", "uint", 4, false},
    {nullptr, "ulong", "ulong", 4, false},
    {nullptr, "hex8", "NurHex8", 1, false},
    {nullptr, "hex16", "NurHex16", 2, false},
    {"NUR_OBJ_HEX", "hex32", "NurHex", 4, false},
    {"NUR_OBJ_FLOAT", "float32", "float", 4, false},
    {"NUR_OBJ_DOUBLE", "float64", "double", 8, false},
    {nullptr, "RGB", "NurRGB", 4, false},
    {nullptr, "HSV", "NurHSV", 4, false},
    {nullptr, "YUV", "NurYUV", 4, false},
    {nullptr, "band3", "band3", 3, false},
    {nullptr, "Complex", "NurComplex", 8, false},
    {"NUR_OBJ_POINT", "NurPoint", "NurPoint", 8, false},
    {"NUR_OBJ_STRING", "NurString", "NurString", 4, true},
    {"NUR_OBJ_FILE", "File", "NurFile", 4, true},
    {"NUR_OBJ_REF", "Pointer", "NurRef", 4, true},
    {"NUR_OBJ_BINARY", "Binary", "NurBinary", 0, false},
    {"NUR_OBJ_FPOINT", "Real point", "NurFpoint", 8, false},
    {"NUR_OBJ_LAB", "LAB", "NurLAB", 4, false},
    {"NUR_OBJ_RECT", "Rectangle", "NurRect", 16, false},
    {"NUR_OBJ_COLOR_UBYTE", "ColorUbyte", "NurColorUByte", 4, false},
    {"NUR_OBJ_COLOR_FLOAT", "ColorFloat", "NurColorFloat", 16, false},
    {"NUR_OBJ_INT64", "int64", "int64", 8, false},
    {"NUR_OBJ_UINT64", "uint64", "uint64", 8, false},
    {"NUR_OBJ_RGB10", "RGB10", "NurRGB10", 4, false},
    {"NUR_OBJ_QUAD", "QUAD", "NurQuad", 32, false},
    {"NUR_OBJ_SEGMENT", "SEGMENT", "NurSegment", 16, false},
    {"NUR_OBJ_RGB16", "RGB16", "NurRGB16", 8, false},
    {"NUR_OBJ_COORD3D_C16", "COORD3D_C16", "NurCoord3dC16", 2, false},
    {"NUR_OBJ_COORD3D_AC16", "COORD3D_AC16", "NurCoord3dAC16", 4, false},
    {"NUR_OBJ_COORD3D_CR16", "COORD3D_CR16", "NurCoord3dCR16", 4, false},
    {"NUR_OBJ_COORD3D_ACRW16", "COORD3D_ACRW16", "NurCoord3dACRW16", 8, false},
    {"NUR_OBJ_PTVALUE", "NurPoint value", "NurPtValue", 12, false},
    {"NUR_OBJ_PERIMETER", "Perimeter", "NurPerimeter", 80, true},
    {"NUR_OBJ_BLOB", "Blob", "NurBlob", 20, false},
    {"NUR_OBJ_FEATURE", "Blob feature", "NurFeature", 172, true},
    {"NUR_OBJ_COLOR", "Color", "NurColor", 4, false},
    {"NUR_OBJ_GEOMTEXT", "Geometry text", "NurGeomText", 12, true},
    {"NUR_OBJ_GEOM", "Geometry", "NurGeom", 20, true},
    {"NUR_OBJ_GRAPHIC", "Graphic", "NurGraphic", 36, true},
    {"NUR_OBJ_EDGE", "Edge", "NurEdge", 40, true},
    {"NUR_OBJ_LINE", "Line", "NurLine", 28, true},
}};

}  // namespace

const NurTypeInfo* nur_type_info(std::int32_t type) {
    if (type < 0) return nullptr;
    const auto index = static_cast<std::size_t>(type);
    return index < kTypes.size() ? &kTypes[index] : nullptr;
}

const char* nur_display_name(std::int32_t type) {
    const NurTypeInfo* info = nur_type_info(type);
    return info ? info->displayName : "unknown";
}

const char* nur_type_name(std::int32_t type) {
    const NurTypeInfo* info = nur_type_info(type);
    return info ? info->typeName : "unknown";
}

std::int32_t nur_element_bits(std::int32_t type) {
    if (type == NUR_OBJ_BINARY) return 1;
    const NurTypeInfo* info = nur_type_info(type);
    return info ? info->size * 8 : 0;
}

bool nur_same_but_sign(CTivData::Format one, CTivData::Format other) {
    constexpr std::pair<CTivData::Format, CTivData::Format> kPairs[] = {{CTivData::FormatByte, CTivData::FormatUByte},
                                                                        {CTivData::FormatShort, CTivData::FormatUShort},
                                                                        {CTivData::FormatInt, CTivData::FormatUInt}};
    for (const auto& [plain, unsignedForm] : kPairs) {
        if ((one == plain && other == unsignedForm) || (one == unsignedForm && other == plain)) return true;
    }
    return false;
}

bool nur_is_type(CTivData::Format format, std::initializer_list<CTivData::Format> list) {
    for (const CTivData::Format wanted : list) {
        if (wanted == CTivData::FormatGeneric || wanted == format) return true;
        if (wanted == CTivData::FormatString && format == CTivData::FormatFile) return true;
        if (wanted == CTivData::FormatFile && format == CTivData::FormatString) return true;
    }
    return false;
}
