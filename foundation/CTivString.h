#pragma once

#include <cstdint>
#include <memory>
#include <string>

/// A text that crosses the class layer: a file name or an operator's name. Owns a narrow copy (UTF-8) and a wide one.
/// An empty CTivString holds null in both.
class CTivString {
public:
    CTivString() = default;
    CTivString(const char* narrow);
    CTivString(const std::string& narrow) : CTivString(narrow.c_str()) {}
    CTivString(const CTivString& other);
    CTivString(CTivString&&) noexcept = default;
    CTivString& operator=(const CTivString& other);
    CTivString& operator=(CTivString&&) noexcept = default;

    const char* GetNarrow() const { return narrow_.get(); }
    const wchar_t* GetWide() const { return wide_.get(); }
    /// In bytes of the narrow text.
    std::size_t GetLength() const { return length_; }
    /// The narrow text, empty for null.
    std::string ToString() const { return narrow_ ? std::string(narrow_.get(), length_) : std::string(); }

private:
    std::unique_ptr<wchar_t[]> wide_;
    std::unique_ptr<char[]> narrow_;
    std::size_t length_ = 0;
};
