#include "app/GetEngine.h"

#include <memory>

#include "calibration/CTivTonewrightDC.h"

namespace {

const std::unique_ptr<CTivTonewrightDC> engine = std::make_unique<CTivTonewrightDC>();

}  // namespace

CTivTonewrightDC& GetEngine() { return *engine; }
