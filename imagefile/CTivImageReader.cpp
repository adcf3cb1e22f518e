#include "imagefile/CTivImageReader.h"

namespace {

// What an unopened reader answers with: empty results and no data.
class NoImage : public ctiv::ImageReaderResults {
public:
    int GetDataSize() const override { return 0; }
    void ReadData(int, int, void*) override {}
};

// Runs `action` and turns what it throws into a report that begins with `origin`.
template <class Action>
bool reporting(const char* origin, Action action) {
    try {
        action();
        return true;
    } catch (const std::exception& failure) {
        return CTivManager::Refuse(std::string(origin) + failure.what());
    } catch (...) {
        return CTivManager::Refuse(std::string(origin) + "unknown error");
    }
}

}  // namespace

CTivImageReader::CTivImageReader() = default;
CTivImageReader::~CTivImageReader() = default;

ctiv::ConcreteImageReader& CTivImageReader::Reader() const {
    if (reader_) return reader_->Get();
    thread_local NoImage none;
    return none;
}

bool CTivImageReader::SetDataSource(const CTivString& path) {
    return reporting("CTivImageReader::SetDataSource() => ",
                     [&] { reader_ = std::make_unique<ctiv::ImageReader>(path.ToString()); });
}

bool CTivImageReader::ReadData(int offset, int size, void* buffer) {
    if (!reader_) return false;
    return reporting("CTivImageReader::ReadData() => ", [&] { reader_->Get().ReadData(offset, size, buffer); });
}
