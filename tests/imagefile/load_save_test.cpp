#include <sys/resource.h>

#include <csignal>

#include "imagefile/CTivImageFileFormat.h"
#include "imagefile/CTivImageReader.h"
#include "imagefile/read_image.h"
#include "imagefile/write_image.h"
#include "tests/imagefile/file_support.h"

using D = CTivData;

TEST(ImageFiles, AFileOfNoKindIsToldOnceForEachKindInTheirOrder) {
    const std::string path = scratchFile("text.png");
    writeFile(path, std::string("\x89PNG\r\n\x1a\n broken", 15));
    CTivImageReader reader;
    EXPECT_FALSE(reader.SetDataSource(path));
    const std::string text = LastError();
    EXPECT_EQ(text.find("CTivImageReader::SetDataSource() => Failed to read image from file \"" + path + "\": "), 0u);
    const std::size_t crc = text.find("\nError reading as CRC: Error reading CRC header from input stream.");
    const std::size_t png = text.find("\nError reading as PNG: Error during PNG init io.");
    const std::size_t tiff = text.find("\nError reading as Tiff: ctiv_readImageFromFile failed\n.");
    const std::size_t native = text.find("\nError reading as CTivImage: error loading image from file: ");
    EXPECT_LT(crc, png);
    EXPECT_LT(png, tiff);
    EXPECT_LT(tiff, native);
    EXPECT_NE(native, std::string::npos);
}

TEST(ImageFiles, AFailedSourceKeepsTheEarlierOneAndNoneAnswersEmpty) {
    CTivImageReader reader;
    EXPECT_EQ(reader.GetDataSize(), 0);
    EXPECT_EQ(reader.GetFormat().Get(), D::FormatNone);
    EXPECT_FALSE(reader.GetRoi().IsPresent());
    char byte = 0;
    EXPECT_FALSE(reader.ReadData(0, 1, &byte));
    const CTivImage image = countingImage(3, 2, D::FormatUByte);
    ASSERT_TRUE(image.Save(scratchFile("one.zvk"), ImageFileNative));
    ASSERT_TRUE(reader.SetDataSource(scratchFile("one.zvk")));
    EXPECT_EQ(reader.GetKind(), "CTivImage");
    EXPECT_FALSE(reader.SetDataSource("/nonexistent/file"));
    EXPECT_EQ(reader.GetWidth().Get(), 3);
    EXPECT_FALSE(reader.ReadData(5, 2, &byte));
    EXPECT_EQ(LastError(),
              "CTivImageReader::ReadData() => The requested sub-range goes beyond the end of the image data");
}

TEST(ImageFiles, NativeFilesKeepFormatRoiAndName) {
    CTivImage image = countingImage(5, 4, D::FormatRgb16);
    image.SetRoi({1, 1, 2, 3});
    const std::string path = scratchFile("native.any");
    ASSERT_TRUE(image.Save(path, ImageFileNative));
    EXPECT_TRUE(CTivImage::IsFile(path.c_str()));
    CTivImage back;
    ASSERT_TRUE(back.Load(path, true)) << LastError();
    EXPECT_TRUE(samePixels(image, back));
    EXPECT_EQ(back.GetRoi(), image.GetRoi());
    CTivImage empty;
    ASSERT_TRUE(empty.Save(path, ImageFileNative));
    EXPECT_FALSE(back.Load(path, true));
    EXPECT_EQ(LastError(), "CTivImage::Load => unrecognized image data format");
}

TEST(ImageFiles, NamesGetTheKindsExtensionWhereTheyHaveNone) {
    const CTivImage image = countingImage(4, 2, D::FormatUByte);
    const std::string folder = scratchFolder() + "/tonewright.dir";
    ASSERT_EQ(system(("mkdir -p '" + folder + "'").c_str()), 0);
    ASSERT_TRUE(image.Save(folder + "/c", ImageFileBmp));
    EXPECT_FALSE(readFile(folder + "/c.bmp").empty());
    ASSERT_TRUE(image.Save(folder + "/d.x", ImageFileCrc));
    EXPECT_FALSE(readFile(folder + "/d.x").empty());
}

TEST(ImageFiles, UnknownKindsAndFormatsAreRefusedInWords) {
    const CTivImage image = countingImage(4, 2, D::FormatUByte);
    EXPECT_FALSE(image.Save(scratchFile("kind"), 2));
    EXPECT_EQ(LastError(), "CTivImage::Save(CTivOutputStream) => CTivImageFileFormat not supported: 2");
    EXPECT_FALSE(image.Save("/nonexistent/file.zvk", ImageFileNative));
    EXPECT_EQ(LastError(), "CTivImage::Save => cannot open file for saving");
    EXPECT_EQ(writeImage(image.GetRecord(), "/nonexistent/file.bmp", ImageFileBmp), 1);
    EXPECT_EQ(LastError(), "writeImage: failed\n");
    EXPECT_EQ(writeImage(image.GetRecord(), scratchFile("x").c_str(), 3), 1);
    EXPECT_EQ(LastError(), "writeImage: Unknown image file format 3");
    const CTivImage floats = countingImage(4, 2, D::FormatDouble);
    EXPECT_EQ(writeImage(floats.GetRecord(), scratchFile("x").c_str(), ImageFileBmp), 1);
    EXPECT_EQ(LastError(), "writeImage: cannot convert input image type float64 to the specified format.\n");
    NurImage record;
    EXPECT_EQ(ctiv_readImageFromFile(&record, "/nonexistent/file", nullptr), 100);
}

TEST(ImageFiles, AFullDiskLeavesTheEarlierFileWhole) {
    const CTivImage small = countingImage(4, 2, D::FormatUByte);
    const CTivImage large = countingImage(400, 400, D::FormatUByte);
    for (const int kind : {ImageFileNative, ImageFileBmp, ImageFileCrc, ImageFileTiff}) {
        const std::string path = scratchFile("full.dat");
        std::remove(path.c_str());
        ASSERT_TRUE(small.Save(path, kind)) << kind << LastError();
        const std::string before = readFile(path);
        std::signal(SIGXFSZ, SIG_IGN);
        rlimit old{};
        getrlimit(RLIMIT_FSIZE, &old);
        const rlimit tight{4096, old.rlim_max};
        setrlimit(RLIMIT_FSIZE, &tight);
        const bool saved = large.Save(path, kind);
        setrlimit(RLIMIT_FSIZE, &old);
        EXPECT_FALSE(saved) << kind;
        EXPECT_EQ(readFile(path), before) << kind;
    }
}
