#pragma once

#include <iosfwd>
#include <memory>

#include "foundation/CTivData.h"
#include "foundation/CTivManager.h"

class ImplVector;
struct NurVector;

/// One-dimensional typed array: `size` elements of one format, stored without padding. Owns its memory or wraps the
/// caller's. Failures are reported through CTivManager::ReportError and answered with false or an empty value.
/// Concurrent reads are safe, nothing else is.
class CTivVector : public CTivManager {
public:
    CTivVector();
    CTivVector(const CTivVector& source);  ///< a deep copy that owns its memory, also of a vector that wraps
    CTivVector(int size, CTivData::Format format, void* data, bool copy);
    CTivVector& operator=(const CTivVector& source);
    ~CTivVector() override;

    /// @param data elements to copy (copy true) or to wrap (copy false: they stay the caller's and must outlive this),
    ///             or null: new memory, zeroed if copy is true
    /// @return false, reported, for a FormatBinary size that is no multiple of 8 (the vector is unchanged) or without
    ///         memory (the vector is empty)
    bool Set(int size, CTivData::Format format, void* data, bool copy);
    bool Free();  ///< empties the vector; wrapped memory is left alone
    CTivData GetData(int index) const;
    bool SetData(int index, const CTivData& value);  ///< converts to the vector's format
    CTivData::Format GetFormat() const;              ///< FormatNone when empty
    int GetSize() const;                             ///< elements
    bool IsAllocated() const;
    void* GetDataPointer() const;

    /// Reads one native record. @return false, reported, for another name or version, a size that cannot be had, or a
    /// format whose elements have no size; a stream that breaks off leaves zeros in the place of what never came and is
    /// no failure.
    bool ReadFile(std::istream& stream);
    /// As ReadFile, but into the memory that the vector has: the format must be the same, the size large enough.
    bool ReadFileInPlace(std::istream& stream);
    /// Writes one native record. @return false without an implementation object; the stream's state is the caller's
    bool WriteFile(std::ostream& stream) const;

    const NurVector* GetRecord() const;
    NurVector* GetRecord();

private:
    std::unique_ptr<ImplVector> impl_;
};
