#pragma once

#include <cstdint>
#include <memory>

#include "acquisition/zvn/ZvnBackend.h"

class ZvnBufferMemory;

/// A set of equal buffers for frames. Their addresses stay the same from Create to Destroy.
/// GetIndex, Empty and Copy may be called by several threads at once; Copy not twice into one buffer.
class ZvnBuffer {
public:
    /// @param format a code of zvn_formats.h @param type -1
    ZvnBuffer(int count, int width, int height, std::uint32_t format, int type, const ZvnLocation& location);
    ZvnBuffer(const ZvnBuffer&) = delete;
    ZvnBuffer& operator=(const ZvnBuffer&) = delete;
    virtual ~ZvnBuffer();

    /// Takes the memory, zeroed. @return false for a size below 1, a refusal of the server or without memory
    virtual bool Create();
    /// Gives the memory back; a transfer that still writes to it keeps it until it ends.
    void Destroy();
    bool IsCreated() const { return memory_ != nullptr; }

    int GetCount() const { return count_; }
    int GetWidth() const { return frame_.width; }    ///< pixels
    int GetHeight() const { return frame_.height; }  ///< pixels
    std::uint32_t GetFormat() const { return frame_.format; }

    /// @return the buffer of the last frame, 0 before the first
    int GetIndex() const;
    /// @return false for an index outside, or before Create
    bool GetAddress(int index, void** address) const;
    /// Copies a buffer of `source`, converting 24-bit colors to 32 bits with a reserved byte of 0.
    /// @return false for other sizes, an index outside, or formats that differ otherwise
    bool Copy(const ZvnBuffer& source, int sourceIndex, int index);
    /// Gives a buffer back to the transfer. @return false for an index outside
    bool Empty(int index);
    /// Reads a coefficient file of four terms into a buffer, which must be 4 wide, 3 high, of floats.
    /// @param options "-format auto": the kind of file is found by its content
    /// @return false for any other file, one that is too short, or a buffer of another kind
    bool Load(const char* path, int index, int reserved, int alsoReserved, const char* options);

protected:
    bool Allocate();

    int count_;
    ZvnFrameFormat frame_;

private:
    friend class ZvnTransfer;

    ZvnLocation location_;
    std::shared_ptr<ZvnBufferMemory> memory_;
};
