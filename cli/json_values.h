#pragma once

#include <iosfwd>

#include "cli/command.h"
#include "foundation/CTivVector.h"

/// The number with the fewest digits that reads back as the same float; null for what is no number.
Json ToNumber(float value);

/// The numbers of a value: [first, second, third] of a color of any depth (red, green, blue or X, Y, Z), pairs of
/// points, single numbers; null for a format without numbers and for what is no number.
Json ToJson(const CTivData& value);

/// {"format", "size", "values"} of a vector. The values stay the bytes that they are in the vector, in a binary value
/// with the format as its subtype, until Print makes a list of them: as numbers they would take hundreds of times as
/// much.
Json ToJson(const CTivVector& vector);

/// Writes a document as text for people and programs: a line a field, but lists of plain values on one line. Bytes of
/// file names that are no UTF-8 become replacement characters. Memory does not grow with the vectors in it.
void Print(std::ostream& stream, const Json& document);

/// A format's name, null for FormatNone.
Json FormatName(CTivData::Format format);
