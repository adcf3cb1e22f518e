#include "cli/whole_files.h"

#include <array>
#include <bit>
#include <cerrno>
#include <fstream>
#include <system_error>

#include "calibration/illuminants.h"
#include "cli/command.h"
#include "cli/files.h"
#include "foundation/CTivImage.h"

namespace {

static_assert(std::endian::native == std::endian::little, "the files are little-endian");

constexpr std::uint64_t kImageHead = 64;
constexpr std::uint64_t kVectorHead = 44;

std::ifstream open(const std::string& path) {
    RequireFile(path);
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    if (file) return file;
    throw WorkFailure(path + ": cannot open file for reading: " + std::generic_category().message(errno));
}

void rewind(std::ifstream& file) {
    file.clear();
    file.seekg(0);
}

/// Reads the integers of a native record's head that follow its name and version.
template <std::size_t count>
std::array<std::int32_t, count> readHead(std::ifstream& file) {
    constexpr std::streamoff nameAndVersion = 36;
    std::array<std::int32_t, count> fields{};
    file.seekg(nameAndVersion);
    file.read(reinterpret_cast<char*>(fields.data()), sizeof fields);
    return fields;
}

void requireLength(std::ifstream& file, const std::string& path, std::uint64_t wanted) {
    file.clear();
    file.seekg(0, std::ios::end);
    const auto length = static_cast<std::uint64_t>(file.tellg());
    if (length >= wanted) return;
    throw WorkFailure(path + ": the file breaks off: it has " + std::to_string(length) + " bytes of at least " +
                      std::to_string(wanted));
}

void requireTerms(const std::string& path, std::int32_t terms) {
    if (terms == 4 || terms == 7 || terms == 10) return;
    throw WorkFailure(path + ": the term count is " + std::to_string(terms) + ", not 4, 7 or 10");
}

void requireNoReason(const std::string& path, const std::string& reason) {
    if (!reason.empty()) throw WorkFailure(path + ": " + reason);
}

}  // namespace

void RequireOpens(const std::string& path) { open(path); }

void RequireWholeImage(const std::string& path) {
    std::ifstream file = open(path);
    const auto [width, height, format] = readHead<3>(file);
    std::uint64_t pixels = 0;  // what has no size is the library's to refuse
    if (width > 0 && height > 0) {
        constexpr std::uint64_t beyondAnyFile = std::uint64_t{1} << 62;
        const auto rowBytes =
            static_cast<std::uint64_t>(CTivImage::GetRowBytes(width, static_cast<CTivData::Format>(format)));
        const auto rows = static_cast<std::uint64_t>(height);
        pixels = rowBytes > beyondAnyFile / rows ? beyondAnyFile : rowBytes * rows;
    }
    requireLength(file, path, kImageHead + pixels);
}

CTivVector ReadWholeVector(const std::string& path) {
    std::ifstream file = open(path);
    const auto [size, format] = readHead<2>(file);
    const auto count = static_cast<std::uint64_t>(std::max(size, 0));
    const std::uint64_t bytes = CTivData::GetByteCount(static_cast<CTivData::Format>(format), count);
    if (count > 0 && bytes == 0) throw WorkFailure(path + ": the vector's elements have no size");
    requireLength(file, path, kVectorHead + bytes);
    rewind(file);
    CTivVector vector;
    Require([&] { return vector.ReadFile(file); }, path, "cannot read the vector");
    return vector;
}

ParameterFile ReadWholeParameters(const std::string& path) {
    std::ifstream file = open(path);
    requireNoReason(path, CheckParameterLength(file));
    rewind(file);
    ParameterFile result;
    Require([&] { return ReadParameters(file, result.parameters, result.version); }, path,
            "cannot read the parameters");
    requireTerms(path, result.parameters.terms);
    const std::int32_t illuminant = result.parameters.illuminant;
    if (!FindIlluminant(illuminant)) {
        throw WorkFailure(path + ": the illuminant is " + std::to_string(illuminant) + ", not " +
                          std::to_string(kCalibrationIlluminants.front().index) + " to " +
                          std::to_string(kCalibrationIlluminants.back().index));
    }
    return result;
}

CoefficientFile ReadWholeCoefficients(const std::string& path) {
    std::ifstream file = open(path);
    requireNoReason(path, CheckCoefficientLength(file));
    rewind(file);
    CoefficientFile result;
    Require([&] { return ReadCoefficients(file, result.head, result.transform); }, path,
            "cannot read the coefficients");
    requireTerms(path, result.head.terms);
    if (result.transform.GetFormat() != CTivData::FormatFloat || result.transform.GetSize() != 3 * result.head.terms) {
        throw WorkFailure(path + ": the transform is not one of 3 x " + std::to_string(result.head.terms) + " floats");
    }
    return result;
}
