#include "imagefile/picture_file.h"
#include "python/pixel_array.h"

using namespace tonewright;

namespace {

py::array loadImage(const py::object& file) {
    const std::string path = ToPath(file);
    return ToArray(Work([&] { return LoadImage(path); }), path);
}

void saveImage(const py::object& file, const py::array& picture, std::optional<int> bits) {
    const std::string path = ToPath(file);
    const int fileFormat = FindFileFormat(path);
    if (fileFormat < 0) throw py::value_error("'" + path + "' does not end in .bmp, .tif, .zvk or .crc");
    const PixelArray pixels(picture);
    Work([&] { SaveImage(pixels.ToImage(bits), path, fileFormat); });
}

}  // namespace

void AddPictures(py::module_& module) {
    using namespace py::literals;
    module.def("load_image", loadImage, "path"_a,
               R"(Loads a BMP, TIFF, PNG, native (.zvk) or .crc file; its content says which it is.

Returns an array of shape (height, width, 3) in the order red, green, blue: uint8, or uint16 for 10 and 16 bits a
channel (0 to 1023, 0 to 65535); or (height, width) of a gray picture, bool for one of two levels, whose width is a multiple of 8.

The array looks at the library's own pixels, which lie in memory as blue, green, red, unused: its strides are
(4 * width, 4, -1) of words. Slices of it cost nothing, and whole rows of it go back into the library without a copy.
What wants red, green, blue packed takes numpy.ascontiguousarray(picture). Pictures of 10 bits are copied.

Raises Error where the file cannot be read.)");
    module.def("save_image", saveImage, "path"_a, "picture"_a, "bits"_a = py::none(),
               R"(Saves a picture by the name's extension: .bmp, .tif, .zvk (native) or .crc.

picture: (height, width, 3) of uint8 or uint16, red, green, blue; or (height, width) of gray.
bits: 10 where uint16 colors have 10 bits.

A save that fails leaves an earlier file as it was. Raises Error where the file cannot be written.)");
}
