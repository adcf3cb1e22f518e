#pragma once

#include <iosfwd>

/// A sink of bytes for image writers.
class CTivOutputStream {
public:
    virtual ~CTivOutputStream() = default;
    virtual void Write(const char* data, unsigned size) = 0;
    /// @param position absolute, in bytes from the start
    virtual void Seek(unsigned position) = 0;
};

namespace brennick::korva::zelvan_pix {

/// Writes to a std::ostream that stays the caller's; flushed, not closed, at the end.
/// A stream that fails throws std::ios_base::failure.
class OutputStreamStdOstream : public CTivOutputStream {
public:
    explicit OutputStreamStdOstream(std::ostream& stream) : stream_(stream) {}
    ~OutputStreamStdOstream() override;
    void Write(const char* data, unsigned size) override;
    void Seek(unsigned position) override;

private:
    std::ostream& stream_;
};

}  // namespace brennick::korva::zelvan_pix
