#include "chart/CCSVParser.h"

#include <algorithm>
#include <cerrno>
#include <clocale>
#include <cstdlib>
#include <fstream>
#include <locale>
#include <stdexcept>

#include "foundation/SafeFile.h"

using namespace tonewright;

namespace {

// A window toolkit may have set a locale with a decimal comma; the file's numbers stay what they are.
locale_t plainLocale() {
    static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
    return locale;
}

float toFloat(const std::string& field) {
    char* end = nullptr;
    errno = 0;
    const float value = strtof_l(field.c_str(), &end, plainLocale());
    if (end == field.c_str()) throw std::invalid_argument("invalid stof argument");
    if (errno == ERANGE) throw std::out_of_range("stof argument out of range");
    return value;
}

/// Takes the text up to the next comma off the line; a field that is not there reads as empty.
std::string nextField(const std::string& line, std::size_t& position) {
    if (position > line.size()) return {};
    const std::size_t end = std::min(line.find(',', position), line.size());
    std::string field = line.substr(position, end - position);
    position = end + 1;
    return field;
}

void readColor(const std::string& line, float (&color)[4]) {
    std::size_t position = 0;
    for (int i = 0; i < 3; ++i) color[i] = toFloat(nextField(line, position));
}

}  // namespace

bool CCSVParser::Read(const std::string& fileName, CTivVector& values) {
    std::ifstream file(fileName);
    if (!file) return Refuse("CCSVParser::Read => cannot open file for reading");
    std::string line;
    for (int row = 0; row < values.GetSize(); ++row) {
        std::getline(file, line);
        // Deliberate (C35): a last line without a line feed ends the file during its read, and so counts as missing.
        if (!file.good()) return Refuse("The file contains less values than the matrix size permits.");
        float color[4] = {};
        readColor(line, color);
        values.SetData(row, CTivData::ColorFloat(color));
    }
    std::getline(file, line);
    return file.eof() || Refuse("The file contains more values than the matrix size permits.");
}

void CCSVParser::Write(const std::string& fileName, const CTivVector& values) {
    SafeOutputFile file(fileName);
    if (!file.IsOpen()) return;
    std::ostream& stream = file.Stream();
    stream.imbue(std::locale::classic());
    for (int row = 0; row < values.GetSize(); ++row) {
        const float* color = values.GetData(row).AsColorFloat();
        if (color) stream << color[0] << ',' << color[1] << ',' << color[2] << '\n';
    }
    if (!file.Commit()) return;
}
