#include "imagefile/file_kind.h"

#include <array>
#include <fstream>
#include <string_view>

#include "foundation/whole_files.h"

namespace tonewright {

namespace {

struct Signature {
    FileKind kind;
    std::string_view bytes;
    bool isName;  ///< a zero-filled name of 32 bytes, of which what lies behind the first zero doesn't count
};

constexpr std::size_t kNameBytes = 32;
constexpr Signature kSignatures[] = {
    {FileKind::Crc, "CRC\x1a", false},
    {FileKind::Png, "\x89PNG\r\n\x1a\n", false},
    {FileKind::Bmp, "BM", false},
    {FileKind::Tiff, "II", false},
    {FileKind::Tiff, "MM", false},
    {FileKind::NativeImage, "CTivImage", true},
    {FileKind::NativeVector, "CTivVector", true},
    {FileKind::Parameters, "CTivTonewrightDC", true},
    {FileKind::Coefficients, "CTivTonewrightDC_XForm", true},
};

constexpr const char* kKindNames[] = {
    nullptr, "bmp", "tiff", "png", "crc", "native image", "native vector", "parameters", "coefficients",
};

}  // namespace

const char* GetKindName(FileKind kind) { return kKindNames[static_cast<int>(kind)]; }

FileKind FindKind(const std::string& path) {
    RequireFile(path);
    std::array<char, kNameBytes + 1> head{};
    std::ifstream file(path, std::ios::binary);
    file.read(head.data(), kNameBytes);
    const std::string_view bytes(head.data(), static_cast<std::size_t>(file.gcount()));
    for (const Signature& signature : kSignatures) {
        const bool matches = signature.isName ? signature.bytes == head.data() : bytes.starts_with(signature.bytes);
        if (matches) return signature.kind;
    }
    return FileKind::Unknown;
}

}  // namespace tonewright
