#include "imagefile/bmp_strips.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>
#include <vector>

#include "foundation/StagedFile.h"
#include "foundation/nur_image.h"
#include "imagefile/bmp_impl.h"
#include "primitives/color_rows.h"

namespace tonewright {

namespace {

constexpr std::int64_t kBlockPixels = 65536;  // worth a call to read and to write
constexpr std::int64_t kStripPixels = 4096;   // both images of a strip stay in the first cache
constexpr int kColorBits = 24;

/// A file that is open while this lives; reads and writes are whole or fail.
class OpenFile {
public:
    OpenFile(const std::string& path, int flags) : file_(::open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK)) {}
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    ~OpenFile() { Close(); }

    bool IsOpen() const { return file_ >= 0; }

    /// @return its length, -1 where it is not a regular file
    std::int64_t GetLength() const {
        struct stat state {};
        return ::fstat(file_, &state) == 0 && S_ISREG(state.st_mode) ? std::int64_t{state.st_size} : -1;
    }

    bool Seek(std::int64_t offset) { return ::lseek(file_, offset, SEEK_SET) == offset; }

    bool Read(void* bytes, std::size_t count) {
        return Move(static_cast<std::uint8_t*>(bytes), count,
                    [this](auto* at, auto n) { return ::read(file_, at, n); });
    }

    bool Write(const void* bytes, std::size_t count) {
        return Move(static_cast<const std::uint8_t*>(bytes), count,
                    [this](auto* at, auto n) { return ::write(file_, at, n); });
    }

    bool Close() {
        const int file = std::exchange(file_, -1);
        return file < 0 || ::close(file) == 0;
    }

private:
    template <class Byte, class Call>
    static bool Move(Byte* bytes, std::size_t count, Call call) {
        while (count > 0) {
            const ssize_t moved = call(bytes, count);
            if (moved < 0 && errno == EINTR) continue;
            if (moved <= 0) return false;
            bytes += moved;
            count -= static_cast<std::size_t>(moved);
        }
        return true;
    }

    int file_;
};

/// Whether the pixels lie in the file as this way takes them, all of them.
bool isTaken(const BmpHead& head, std::int64_t fileBytes) {
    const bool isPlain = std::memcmp(head.signature, "BM", 2) == 0 && head.bitsPerPixel == kColorBits &&
                         head.planes == 1 && head.compression == BmpPlain && head.width > 0 && head.height > 0;
    const bool hasOffset = head.pixelOffset >= sizeof head && 14 + std::uint64_t{head.headBytes} <= head.pixelOffset;
    return isPlain && hasOffset && (fileBytes - head.pixelOffset) / bmpRowBytes(head.width, kColorBits) >= head.height;
}

/// The block that both files' rows pass through, a strip at a time.
class Block {
public:
    explicit Block(const BmpHead& head)
        : width_(head.width),
          rowBytes_(static_cast<std::size_t>(bmpRowBytes(head.width, kColorBits))),
          rows_(RowsOf(kBlockPixels, head)),
          stripRows_(RowsOf(kStripPixels, head)) {}

    std::int32_t GetRows() const { return rows_; }

    bool Allocate() {
        read_.resize(rowBytes_ * static_cast<std::size_t>(rows_));
        written_.resize(read_.size());
        return strip_.Set(width_, stripRows_, CTivData::FormatRgb, nullptr, false) &&
               changed_.Set(width_, stripRows_, CTivData::FormatRgb, nullptr, false);
    }

    template <class Change>
    bool Pass(OpenFile& source, OpenFile& target, std::int32_t rows, const Change& change) {
        const std::size_t bytes = rowBytes_ * static_cast<std::size_t>(rows);
        if (!source.Read(read_.data(), bytes)) return false;
        for (std::int32_t y = 0; y < rows; y += stripRows_) {
            if (!PassStrip(y, std::min(stripRows_, rows - y), change)) return false;
        }
        return target.Write(written_.data(), bytes);
    }

private:
    static std::int32_t RowsOf(std::int64_t pixels, const BmpHead& head) {
        return static_cast<std::int32_t>(std::clamp<std::int64_t>(pixels / head.width, 1, head.height));
    }

    template <class Change>
    bool PassStrip(std::int32_t top, std::int32_t rows, const Change& change) {
        if (!strip_.SetRoi({0, 0, width_, rows}) || !changed_.SetRoi({0, 0, width_, rows})) return false;
        const auto count = static_cast<std::size_t>(width_);
        const auto place = [&](std::int32_t y) { return rowBytes_ * static_cast<std::size_t>(top + y); };
        for (std::int32_t y = 0; y < rows; ++y) {
            SpreadBgr(read_.data() + place(y), strip_.GetRecord()->RoiRow(y), count);
        }
        if (!change(strip_, changed_)) return false;
        for (std::int32_t y = 0; y < rows; ++y) {
            PackBgr(changed_.GetRecord()->RoiRow(y), written_.data() + place(y), count);
        }
        return true;
    }

    std::int32_t width_;
    std::size_t rowBytes_;
    std::int32_t rows_;
    std::int32_t stripRows_;
    std::vector<std::uint8_t> read_;
    std::vector<std::uint8_t> written_;  // what pads its rows stays 0
    CTivImage strip_;
    CTivImage changed_;
};

}  // namespace

bool RewriteBitmap(const std::string& from, const std::string& to,
                   const std::function<bool(const CTivImage& strip, CTivImage& changed)>& change) {
    // A pipe is not even opened: whoever writes into it would meet a reader that leaves at once.
    std::error_code error;
    if (!std::filesystem::is_regular_file(from, error)) return false;
    OpenFile source(from, O_RDONLY);
    BmpHead head{};
    if (!source.IsOpen() || !source.Read(&head, sizeof head) || !isTaken(head, source.GetLength())) return false;
    Block block(head);
    // Written in place it could be the very file that is read. A new file, lost, can be made again from that one.
    StagedFile staged(to, StagedFile::Waits::Replacing);
    if (!staged.IsBeside() || !source.Seek(head.pixelOffset) || !block.Allocate()) return false;
    OpenFile target(staged.GetName(), O_WRONLY | O_NOFOLLOW);
    const BmpHead written = bmpColorHead(head.width, head.height);
    if (!target.IsOpen() || !target.Write(&written, sizeof written)) return false;
    for (std::int32_t left = head.height; left > 0; left -= std::min(left, block.GetRows())) {
        if (!block.Pass(source, target, std::min(left, block.GetRows()), change)) return false;
    }
    return target.Close() && !staged.Commit();
}

}  // namespace tonewright
