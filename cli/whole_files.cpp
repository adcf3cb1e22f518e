#include "cli/whole_files.h"

#include <cerrno>
#include <fstream>
#include <system_error>

#include "calibration/illuminants.h"
#include "cli/command.h"
#include "cli/files.h"
#include "foundation/record_length.h"

namespace {

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
    requireNoReason(path, CheckImageLength(file));
}

CTivVector ReadWholeVector(const std::string& path) {
    std::ifstream file = open(path);
    requireNoReason(path, CheckVectorLength(file));
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
