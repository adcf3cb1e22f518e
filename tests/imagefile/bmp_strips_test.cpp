#include "imagefile/bmp_strips.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "imagefile/CTivImageFileFormat.h"
#include "tests/imagefile/file_support.h"

using namespace tonewright;

namespace {

bool invert(const CTivImage& strip, CTivImage& changed) {
    const CTivRect roi = strip.GetRoi();
    EXPECT_EQ(changed.GetRoi().height, roi.height);
    for (int y = 0; y < roi.height; ++y) {
        for (int x = 0; x < roi.width; ++x)
            changed.SetData(x, y, CTivData(strip.GetFormat(), ~strip.GetData(x, y).AsRgb()));
    }
    return true;
}

const std::string& inPath() {
    static const std::string path = scratchFile("strips-in.bmp");
    return path;
}

const std::string& outPath() {
    static const std::string path = scratchFile("strips-out.bmp");
    return path;
}

/// What Load, the change of the whole image, and Save make of the file.
std::string theLongWay() {
    CTivImage image, changed;
    EXPECT_TRUE(image.Load(inPath(), true)) << LastError();
    changed.Set(image.GetWidth(), image.GetHeight(), image.GetFormat(), nullptr, true);
    invert(image, changed);
    const std::string path = scratchFile("strips-long.bmp");
    EXPECT_TRUE(changed.Save(path, ImageFileBmp)) << LastError();
    return readFile(path);
}

std::size_t filesInScratch() {
    const std::filesystem::directory_iterator files(scratchFolder());
    return static_cast<std::size_t>(std::distance(begin(files), end(files)));
}

}  // namespace

TEST(BmpStrips, WriteWhatLoadAndSaveWrite) {
    // Rows that need padding and rows that don't; strips that end before, with and behind the last row.
    for (const auto& [width, height] :
         {std::pair{1, 1}, {3, 1}, {4, 5}, {5, 40000}, {1024, 64}, {1024, 65}, {1023, 127}, {70000, 2}}) {
        ASSERT_TRUE(countingImage(width, height, CTivData::FormatRgb).Save(inPath(), ImageFileBmp));
        EXPECT_TRUE(RewriteBitmap(inPath(), outPath(), invert)) << width;
        const std::string expected = theLongWay();
        EXPECT_TRUE(readFile(outPath()) == expected) << width;
        EXPECT_TRUE(RewriteBitmap(inPath(), inPath(), invert)) << "over the file that is read";
        EXPECT_TRUE(readFile(inPath()) == expected) << width;
    }
}

TEST(BmpStrips, TakeLongerHeadsAndDirtyPadding) {
    ASSERT_TRUE(countingImage(3, 2, CTivData::FormatRgb).Save(inPath(), ImageFileBmp));
    std::string file = readFile(inPath());
    for (const std::size_t rowEnd : {54u + 9, 54u + 21}) file.replace(rowEnd, 3, "abc");
    file = withU32(withU32(file, 10, 138), 14, 124);
    file.insert(54, std::string(84, 'h'));
    writeFile(inPath(), file + "what follows");
    EXPECT_TRUE(RewriteBitmap(inPath(), outPath(), invert));
    EXPECT_TRUE(readFile(outPath()) == theLongWay());
}

TEST(BmpStrips, LeaveToTheLongWayWhatTheyCannot) {
    ASSERT_TRUE(countingImage(40, 30, CTivData::FormatRgb).Save(inPath(), ImageFileBmp));
    const std::string good = readFile(inPath());
    const std::pair<std::string, const char*> cases[] = {
        {good.substr(0, good.size() - 1), "breaks off"},
        {good.substr(0, 53), "has half a head"},
        {"", "is empty"},
        {withU16(good, 28, 32), "has 32 bits"},
        {withU32(good, 30, 3), "has masks"},
        {withU32(good, 22, static_cast<std::uint32_t>(-30)), "runs from the top"},
        {withU32(good, 18, 0), "has no columns"},
        {withU32(good, 18, 0x7fffffff), "is wider than the file"},
        {withU32(good, 22, 0x7fffffff), "is higher than the file"},
        {withU32(good, 10, 53), "has pixels in its head"},
        {withU32(good, 10, 0xffffffff), "has pixels behind its end"},
        {withU32(good, 14, 41), "has a head that reaches into the pixels"},
        {withU32(good, 14, 0xffffffff), "has a head without end"},
        {"XM" + good.substr(2), "is none"},
    };
    const auto never = [](const CTivImage&, CTivImage&) {
        ADD_FAILURE() << "nothing is to be changed";
        return false;
    };
    writeFile(outPath(), "earlier");
    const std::size_t files = filesInScratch();
    for (const auto& [bytes, what] : cases) {
        writeFile(inPath(), bytes);
        EXPECT_FALSE(RewriteBitmap(inPath(), outPath(), never)) << what;
    }
    EXPECT_FALSE(RewriteBitmap(scratchFolder(), outPath(), never));
    EXPECT_FALSE(RewriteBitmap(scratchFile("none.bmp"), outPath(), never));
    writeFile(inPath(), good);
    EXPECT_FALSE(RewriteBitmap(inPath(), scratchFile("no/folder.bmp"), never));
    EXPECT_FALSE(RewriteBitmap(inPath(), "/dev/null", never)) << "what is written in place could be what is read";
    int strips = 0;
    EXPECT_FALSE(RewriteBitmap(inPath(), outPath(), [&](const CTivImage&, CTivImage&) { return ++strips < 1; }));
    EXPECT_EQ(readFile(outPath()), "earlier");
    EXPECT_EQ(filesInScratch(), files) << "nothing staged is left";
}

TEST(BmpStrips, TouchNoPipe) {
    const std::string pipe = scratchFile("strips-pipe.bmp");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_FALSE(RewriteBitmap(pipe, outPath(), invert));
    ASSERT_TRUE(countingImage(4, 3, CTivData::FormatRgb).Save(inPath(), ImageFileBmp));
    EXPECT_FALSE(RewriteBitmap(inPath(), pipe, invert));
    // What waits in it for another reader stays there.
    const std::string sent = readFile(inPath());
    const int end = ::open(pipe.c_str(), O_RDWR | O_NONBLOCK);
    ASSERT_EQ(::write(end, sent.data(), sent.size()), static_cast<ssize_t>(sent.size()));
    EXPECT_FALSE(RewriteBitmap(pipe, outPath(), invert));
    std::string received(sent.size() + 1, '\0');
    const ssize_t count = ::read(end, received.data(), received.size());
    ::close(end);
    EXPECT_EQ(count, static_cast<ssize_t>(sent.size()));
}
