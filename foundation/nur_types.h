#pragma once

#include "foundation/CTivData.h"

/// The lower layer's description of the element types. Codes 0 to 43 are those of CTivData::Format; the element sizes
/// are the lower layer's own and differ from the format table in some rows (QUAD, SEGMENT, BINARY, the composites).
enum NurObjectType : std::int32_t {
    NUR_OBJ_GENERIC = 0,
    NUR_OBJ_SYNC,
    NUR_OBJ_VECTOR,
    NUR_OBJ_IMAGE,
    NUR_OBJ_VOLUME,
    NUR_OBJ_BYTE = 6,
    NUR_OBJ_SHORT,
    NUR_OBJ_INT,
    NUR_OBJ_UBYTE = 10,
    NUR_OBJ_USHORT,
    NUR_OBJ_UINT,
    NUR_OBJ_HEX = 16,
    NUR_OBJ_FLOAT,
    NUR_OBJ_DOUBLE,
    NUR_OBJ_POINT = 24,
    NUR_OBJ_STRING,
    NUR_OBJ_FILE,
    NUR_OBJ_REF,
    NUR_OBJ_BINARY,
    NUR_OBJ_FPOINT,
    NUR_OBJ_LAB,
    NUR_OBJ_RECT,
    NUR_OBJ_COLOR_UBYTE,
    NUR_OBJ_COLOR_FLOAT,
    NUR_OBJ_INT64,
    NUR_OBJ_UINT64,
    NUR_OBJ_RGB10,
    NUR_OBJ_QUAD,
    NUR_OBJ_SEGMENT,
    NUR_OBJ_RGB16,
    NUR_OBJ_COORD3D_C16,
    NUR_OBJ_COORD3D_AC16,
    NUR_OBJ_COORD3D_CR16,
    NUR_OBJ_COORD3D_ACRW16,
    NUR_OBJ_PTVALUE,
    NUR_OBJ_PERIMETER,
    NUR_OBJ_BLOB,
    NUR_OBJ_FEATURE,
    NUR_OBJ_COLOR,
    NUR_OBJ_GEOMTEXT,
    NUR_OBJ_GEOM,
    NUR_OBJ_GRAPHIC,
    NUR_OBJ_EDGE,
    NUR_OBJ_LINE
};

struct NurTypeInfo {
    const char* constantName;  ///< null for the rows without one
    const char* displayName;
    const char* typeName;
    std::int32_t size;  ///< bytes of one element
    bool composite;     ///< holds pointers: copied element by element
};

/// @return the row of a type code, or null outside 0 to 53; at any time and from any thread
const NurTypeInfo* nur_type_info(std::int32_t type);

/// @return the display name of the error texts, "unknown" outside the table
const char* nur_display_name(std::int32_t type);
/// @return the type name, "unknown" outside the table
const char* nur_type_name(std::int32_t type);

/// @return bits of one element: size x 8, 1 for NUR_OBJ_BINARY, 0 outside the table
std::int32_t nur_element_bits(std::int32_t type);

/// Tells whether two formats are the signed and the unsigned form of one width (Byte, Short, Int with UByte, UShort,
/// UInt), so that a record may be relabelled from one to the other.
bool nur_same_but_sign(CTivData::Format one, CTivData::Format other);

/// Tells whether `format` is in a list. Format 0 in the list matches any, and FormatString and FormatFile match each
/// other.
bool nur_is_type(CTivData::Format format, std::initializer_list<CTivData::Format> list);
