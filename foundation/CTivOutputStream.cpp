#include "foundation/CTivOutputStream.h"

#include <ostream>

namespace brennick::korva::zelvan_pix {

namespace {

void requireGood(const std::ostream& stream, const char* text) {
    if (!stream) throw std::ios_base::failure(text, std::make_error_code(std::io_errc::stream));
}

}  // namespace

OutputStreamStdOstream::~OutputStreamStdOstream() {
    try {
        stream_.flush();
    } catch (const std::ios_base::failure&) {  // NOLINT(bugprone-empty-catch): the stream's own state tells of it
    }
}

void OutputStreamStdOstream::Write(const char* data, unsigned size) {
    stream_.write(data, size);
    requireGood(stream_, "failed to write data to an output stream");
}

void OutputStreamStdOstream::Seek(unsigned position) {
    stream_.seekp(position);
    requireGood(stream_, "failed to seek within an output stream");
}

}  // namespace brennick::korva::zelvan_pix
