#include <algorithm>
#include <cstring>
#include <fstream>
#include <limits>
#include <stdexcept>
#include <vector>

#include "foundation/CTivImage.h"
#include "foundation/CTivOutputStream.h"
#include "foundation/SafeFile.h"
#include "foundation/nur_image.h"
#include "imagefile/CTivImageFileFormat.h"
#include "imagefile/CTivImageReader.h"
#include "imagefile/crc.h"
#include "imagefile/native_file_impl.h"
#include "imagefile/read_image.h"
#include "imagefile/write_image.h"

using namespace tonewright;

// CTivImage's files: the members that need to know the kinds.

namespace {

using brennick::korva::zelvan_pix::OutputStreamStdOstream;

struct Extension {
    int fileFormat;
    const char* text;
};
constexpr Extension kExtensions[] = {
    {ImageFileTiff, ".tif"},
    {ImageFileBmp, ".bmp"},
    {ImageFileCrc, ".crc"},
};

}  // namespace

// A name whose last of `\`, `.` and `/` is not a dot has no extension and gets the kind's.
std::string tonewright::GetSavedImageName(const std::string& name, int fileFormat) {
    if (fileFormat == ImageFileNative) return name;
    const std::size_t last = name.find_last_of("\\./");
    if (last != std::string::npos && name[last] == '.') return name;
    for (const Extension& extension : kExtensions) {
        if (extension.fileFormat == fileFormat) return name + extension.text;
    }
    return name;
}

bool LoadNativeFile(CTivImage& image, const std::string& path, bool reallocate) {
    std::ifstream stream(path, std::ios::binary);
    if (!stream) return CTivManager::Refuse("CTivImage::Load => cannot open file for loading");
    return image.ReadFile(stream, reallocate);
}

bool CTivImage::LoadFrom(CTivImageReader& reader) {
    if (reader.GetFormat().Get() == CTivData::FormatNone) throw std::runtime_error("unrecognized image data format");
    if (!Assign(reader.GetWidth().Get(), reader.GetHeight().Get(), reader.GetFormat().Get(), nullptr, false, true)) {
        throw std::runtime_error("error allocating image data");
    }
    if (reader.GetRoi().IsPresent() && !SetRoi(reader.GetRoi().Get())) {
        throw std::runtime_error("CTivImage::Load => error setting region of interest");
    }
    if (reader.ExchangePixels(GetRecord()->data)) return true;
    // A file may say more bytes a pixel than its format has: no more is read than the image holds.
    const std::int64_t room = GetImageBytes(GetWidth(), GetHeight(), GetFormat());
    const auto bytes = static_cast<int>(std::min<std::int64_t>(reader.GetDataSize(), room));
    if (!reader.ReadData(0, bytes, GetData())) {
        throw std::runtime_error("CTivImage::LoadFrom => error reading image data");
    }
    return true;
}

bool CTivImage::Load(const CTivString& path, bool reallocate) {
    if (!GetRecord()) return false;
    const std::string name = path.ToString();
    if (reallocate) {
        CTivImageReader reader;
        if (reader.SetDataSource(path)) {
            try {
                return LoadFrom(reader);
            } catch (const std::exception& failure) {
                return Refuse(std::string("CTivImage::Load => ") + failure.what());
            } catch (...) {
                return Refuse("CTivImage::Load => unknown exception");
            }
        }
    }
    if (IsFile(name.c_str())) return LoadNativeFile(*this, name, reallocate);
    NurImage record;
    NurImage& mine = *GetRecord();
    if (!reallocate) record = mine;
    bool read = false;
    try {
        read = ctiv_readImageFromFile(&record, name.c_str(), nullptr) == 0;
    } catch (const std::exception& failure) {
        read = Refuse(std::string("CTivImage::Load => ") + failure.what());
    }
    if (record.data && record.data == mine.data) {
        // Filled in place; a reader may have changed the sign of the format.
        if (read) mine.format = record.format;
        return read;
    }
    if (read && Free()) {
        *GetRecord() = record;  // takes the pixels over: as if copied, and so with 8 significant bits
        return true;
    }
    if (record.data) nur_image_free(&record);
    return false;
}

bool CTivImage::Save(const CTivString& path, int fileFormat) const {
    if (!GetRecord()) return false;
    if (fileFormat == ImageFileNative) {
        SafeOutputFile file(path.ToString());
        if (!file.IsOpen()) return Refuse("CTivImage::Save => cannot open file for saving");
        WriteFile(file.Stream());
        return file.Commit() || Refuse("CTivImage::Save => cannot open file for saving");
    }
    const std::string name = GetSavedImageName(path.ToString(), fileFormat);
    if (fileFormat == ImageFileBmp) return writeImage(GetRecord(), name.c_str(), fileFormat) == 0;
    SafeOutputFile file(name);
    {
        OutputStreamStdOstream stream(file.Stream());
        if (!Save(stream, fileFormat)) return false;
    }
    return file.Commit() || Refuse("CTivImage::Save(CTivOutputStream) => failed to write data to an output stream");
}

bool CTivImage::Save(CTivOutputStream& stream, int fileFormat) const {
    const NurImage* record = GetRecord();
    if (!record) return false;
    ImageParameters parameters;
    *parameters.width.Set() = record->width;
    *parameters.height.Set() = record->height;
    *parameters.format.Set() = record->format;
    *parameters.roi.Set() = record->roi;
    const std::int64_t bytes = std::int64_t{record->width} * record->height * CTivData::GetFormatSize(record->format);
    try {
        if (bytes > std::numeric_limits<int>::max()) throw std::runtime_error("image data too large");
        const int length = static_cast<int>(bytes);
        if (fileFormat == ImageFileTiff) {
            if (writeImageToStream(parameters, record->data, length, fileFormat, &stream) != 0) {
                throw std::runtime_error("failed to write TIFF data to stream");
            }
            return true;
        }
        if (fileFormat == ImageFileCrc) {
            // Packed bits are fewer bytes than the file counts: zeros make up the rest.
            std::vector<char> padded;
            const void* data = record->data;
            if (const std::int64_t held = GetImageBytes(record->width, record->height, record->format); held < bytes) {
                padded.resize(static_cast<std::size_t>(bytes));
                if (data) std::memcpy(padded.data(), data, static_cast<std::size_t>(held));
                data = padded.data();
            }
            writeCrc(parameters, data, length, &stream);
            return true;
        }
        throw std::runtime_error("CTivImageFileFormat not supported: " + std::to_string(fileFormat));
    } catch (const std::exception& failure) {
        return Refuse(std::string("CTivImage::Save(CTivOutputStream) => ") + failure.what());
    }
}
