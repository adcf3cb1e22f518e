#include "acquisition/zvn/ZvnAcquisition.h"

#include "acquisition/zvn/ZvnBuffer.h"
#include "acquisition/zvn/zvn_formats.h"

ZvnAcquisition::ZvnAcquisition(const ZvnLocation& location, const char* configFile, int, int)
    : ZvnXferNode(kZvnAcquisition, location, configFile) {}

bool ZvnAcquisition::SetImageFilter(int index, const ZvnBuffer& buffer) {
    void* address = nullptr;
    if (!IsCreated() || buffer.GetWidth() != 4 || buffer.GetHeight() != 3 || buffer.GetFormat() != kZvnFloat ||
        !buffer.GetAddress(0, &address)) {
        return false;
    }
    return GetSource()->SetImageFilter(index, std::span<const float, 12>(static_cast<const float*>(address), 12));
}
