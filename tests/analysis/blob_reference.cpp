#include "tests/analysis/blob_reference.h"

#include <algorithm>
#include <functional>
#include <map>
#include <random>

namespace {

struct Step {
    int x, y;
};
constexpr Step kSteps[] = {{1, 0}, {-1, 0}, {0, 1}, {0, -1}, {1, 1}, {-1, -1}, {1, -1}, {-1, 1}};

// Labels from 1 for the pixels of rows [top, end) that `same` holds together; 0 where `inside` says no.
struct Labels {
    int width, height;
    std::vector<int> of;
    int count = 0;

    int& At(int x, int y) {
        return of[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)];
    }
};

Labels label(int width, int top, int end, bool eight, const std::function<int(int, int)>& value) {
    Labels labels{width, end, std::vector<int>(static_cast<std::size_t>(width) * static_cast<std::size_t>(end))};
    std::vector<Step> stack;
    for (int y = top; y < end; ++y) {
        for (int x = 0; x < width; ++x) {
            if (value(x, y) == 0 || labels.At(x, y) != 0) continue;
            labels.At(x, y) = ++labels.count;
            stack.push_back({x, y});
            while (!stack.empty()) {
                const Step at = stack.back();
                stack.pop_back();
                for (int k = 0; k < (eight ? 8 : 4); ++k) {
                    const int nx = at.x + kSteps[k].x;
                    const int ny = at.y + kSteps[k].y;
                    if (nx < 0 || nx >= width || ny < top || ny >= end || labels.At(nx, ny) != 0) continue;
                    if (value(nx, ny) != value(at.x, at.y)) continue;
                    labels.At(nx, ny) = labels.count;
                    stack.push_back({nx, ny});
                }
            }
        }
    }
    return labels;
}

Labels labelRows(const Bitmap& bitmap, bool eight, int top, int end) {
    return label(bitmap.width, top, end, eight, [&](int x, int y) { return bitmap.At(x, y); });
}

struct Run {
    int start, end, y, blob;
};

std::vector<Run> runsOf(Labels& labels, int y) {
    std::vector<Run> runs;
    for (int x = 0; x < labels.width;) {
        const int start = x;
        const int blob = labels.At(x, y);
        while (x < labels.width && labels.At(x, y) == blob) ++x;
        if (blob != 0) runs.push_back({start, x, y, blob});
    }
    return runs;
}

struct Contact {
    int blob, term, diagonal;
};

// All pairs of touching runs of row y and the row above.
std::vector<Contact> contactsAt(Labels& labels, int y, bool eight) {
    std::vector<Contact> contacts;
    if (y == 0) return contacts;
    const std::vector<Run> upper = runsOf(labels, y - 1);
    for (const Run& run : runsOf(labels, y)) {
        for (const Run& above : upper) {
            if (above.blob != run.blob) continue;
            const int reach = eight ? 1 : 0;
            if (above.start >= run.end + reach || above.end <= run.start - reach) continue;
            const int common = std::min(run.end, above.end) - std::max(run.start, above.start);
            const int diagonal = (run.start != above.start) + (run.end != above.end);
            contacts.push_back({run.blob, 2 * common - 2 + (eight ? diagonal : 0), diagonal});
        }
    }
    return contacts;
}

std::int64_t holesOf(const Bitmap& bitmap, Labels& labels, const BlobFacts& facts, int blob, bool eight) {
    const auto width = static_cast<int>(facts.maxX - facts.minX) + 3;
    const auto height = static_cast<int>(facts.maxY - facts.minY) + 3;
    const auto isOther = [&](int x, int y) {
        const int ix = x - 1 + static_cast<int>(facts.minX);
        const int iy = y - 1 + static_cast<int>(facts.minY);
        const bool inside = ix >= 0 && iy >= 0 && ix < bitmap.width && iy < bitmap.height;
        return inside && labels.At(ix, iy) == blob ? 0 : 1;
    };
    return label(width, 0, height, !eight, isOther).count - 1;
}

void addPixels(const Bitmap& bitmap, Labels& labels, std::vector<BlobFacts>& blobs) {
    for (int y = 0; y < labels.height; ++y) {
        for (int x = 0; x < labels.width; ++x) {
            if (labels.At(x, y) == 0) continue;
            BlobFacts& blob = blobs[static_cast<std::size_t>(labels.At(x, y)) - 1];
            if (blob.area == 0) blob.minX = blob.maxX = x, blob.minY = y;
            blob.minX = std::min<std::int64_t>(blob.minX, x);
            blob.maxX = std::max<std::int64_t>(blob.maxX, x);
            blob.maxY = blob.lastY = y;
            blob.lastX = x;
            blob.value = bitmap.At(x, y);
            ++blob.area;
            blob.sumX += x, blob.sumY += y, blob.sumXX += x * x, blob.sumYY += y * y, blob.sumXY += x * y;
        }
    }
}

/// Loops that the seam above row `top` closes, for each blob: contacts that join what was joined already.
std::map<int, int> loopsAtSeam(const Bitmap& bitmap, Labels& whole, int top, int end, bool eight) {
    std::map<int, int> loops;
    for (const Contact& contact : contactsAt(whole, top, eight)) ++loops[contact.blob];
    const auto addParts = [&](Labels part, int from, int sign) {
        std::map<int, int> blobOfPart;
        for (int y = from; y < end; ++y) {
            for (int x = 0; x < bitmap.width; ++x) {
                if (y < part.height && part.At(x, y) != 0) blobOfPart[part.At(x, y)] = whole.At(x, y);
            }
        }
        for (const auto& [label, blob] : blobOfPart) loops[blob] += sign;
    };
    addParts(labelRows(bitmap, eight, 0, top), 0, -1);
    addParts(labelRows(bitmap, eight, top, end), top, -1);
    addParts(labelRows(bitmap, eight, 0, end), 0, 1);
    return loops;
}

}  // namespace

Bitmap Bitmap::Of(const CTivImage& image) {
    const CTivRect roi = image.GetRoi();
    Bitmap bitmap{roi.width, roi.height, {}};
    for (int y = 0; y < roi.height; ++y) {
        for (int x = 0; x < roi.width; ++x) bitmap.pixels.push_back(image.GetData(roi.x + x, roi.y + y).AsUByte());
    }
    return bitmap;
}

Bitmap Bitmap::Random(int width, int height, double density, unsigned seed, int values) {
    std::mt19937 random(seed);
    Bitmap bitmap{width, height, {}};
    for (int i = 0; i < width * height; ++i) {
        const bool set = random() % 10000 < static_cast<unsigned>(density * 10000);
        bitmap.pixels.push_back(static_cast<std::uint8_t>(set ? 1 + random() % static_cast<unsigned>(values) : 0));
    }
    return bitmap;
}

CTivImage Bitmap::ToImage(CTivData::Format format) const {
    CTivImage image(width, height, format, nullptr, true);
    const int full = format == CTivData::FormatBinary ? 1 : format == CTivData::FormatUShort ? 65535 : 255;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            if (At(x, y) != 0) image.SetData(x, y, CTivData::Int(full));
        }
    }
    return image;
}

std::ostream& operator<<(std::ostream& stream, const BlobFacts& f) {
    return stream << "{last " << f.lastX << ',' << f.lastY << " box " << f.minX << ".." << f.maxX << ' ' << f.minY
                  << ".." << f.maxY << " area " << f.area << " runs " << f.runs << " holes " << f.holes << " raw "
                  << f.rawBorder << " h " << f.horizontal << " v " << f.vertical << " d " << f.diagonal << " value "
                  << f.value << " sums " << f.sumX << ' ' << f.sumY << ' ' << f.sumXX << ' ' << f.sumYY << ' '
                  << f.sumXY << '}';
}

std::vector<BlobFacts> referenceBlobs(const Bitmap& bitmap, bool eight, int strips) {
    Labels labels = labelRows(bitmap, eight, 0, bitmap.height);
    std::vector<BlobFacts> blobs(static_cast<std::size_t>(labels.count), BlobFacts{});
    addPixels(bitmap, labels, blobs);
    const auto blobAt = [&](int blob) -> BlobFacts& { return blobs[static_cast<std::size_t>(blob) - 1]; };
    for (int blob = 1; blob <= labels.count; ++blob) {
        BlobFacts& facts = blobAt(blob);
        facts.holes = holesOf(bitmap, labels, facts, blob, eight);
        facts.rawBorder = 2 * facts.area - 1 + 3 * facts.holes;
        facts.horizontal = 2 * facts.area;
    }
    for (int y = 0; y < bitmap.height; ++y) {
        for (const Run& run : runsOf(labels, y)) blobAt(run.blob).runs += 1, blobAt(run.blob).vertical += 2;
        for (const Contact& contact : contactsAt(labels, y, eight)) {
            BlobFacts& facts = blobAt(contact.blob);
            facts.rawBorder -= contact.term;
            facts.horizontal -= contact.term + 2 + (eight ? 0 : contact.diagonal);
            facts.vertical -= contact.diagonal;
            facts.diagonal += contact.diagonal;
        }
    }
    for (int strip = 1; strip < strips; ++strip) {
        const int top = bitmap.height * strip / strips;
        const int end = bitmap.height * (strip + 1) / strips;
        for (const auto& [blob, loops] : loopsAtSeam(bitmap, labels, top, end, eight)) {
            blobAt(blob).rawBorder += 2 * loops;
            blobAt(blob).horizontal += 2 * loops;
        }
    }
    std::sort(blobs.begin(), blobs.end());
    return blobs;
}

std::vector<BlobFacts> factsOf(const CTivBlob& blob) {
    std::vector<BlobFacts> all;
    const auto whole = [](double value) { return static_cast<std::int64_t>(value); };
    for (int i = 0; i < blob.GetNumBlobs(); ++i) {
        const BlobRecord& r = *blob.GetBlob(i);
        all.push_back({r.lastY, r.lastX, r.minX, r.minY, r.maxX, r.maxY, whole(r.area), r.runs, r.holes, r.rawBorder,
                       r.horizontalBorder, r.verticalBorder, r.diagonalBorder, r.value, whole(r.sumX), whole(r.sumY),
                       whole(r.sumXX), whole(r.sumYY), whole(r.sumXY)});
    }
    std::sort(all.begin(), all.end());
    return all;
}
