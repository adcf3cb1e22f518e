#include "foundation/CTivTimeout.h"

#include <chrono>
#include <cmath>

namespace {

constexpr float kDefaultLimitMs = 1000.0f;

}  // namespace

class ImplTimeout : public CTivManager {
public:
    using Clock = std::chrono::steady_clock;

    Clock::time_point startCounter = Clock::now();
    float limitMs = kDefaultLimitMs;
    double startMarkMs = 0.0;
    double lastMeasureMs = -1.0;
    bool expired = false;
    bool enabled = false;

    double MillisecondsNow() const {
        return std::chrono::duration<double, std::milli>(Clock::now() - startCounter).count();
    }
    bool HasLimit() const { return limitMs != 0.0f && !std::isnan(limitMs); }
};

CTivTimeout::CTivTimeout(float limitMs) : impl_(std::make_unique<ImplTimeout>()) { Restart(limitMs); }
CTivTimeout::~CTivTimeout() = default;

void CTivTimeout::Restart(float limitMs) {
    impl_->limitMs = limitMs < 0.0f ? kDefaultLimitMs : limitMs;
    impl_->startCounter = ImplTimeout::Clock::now();
    impl_->startMarkMs = impl_->MillisecondsNow();
}

void CTivTimeout::Reset() {
    impl_->expired = false;
    Restart(impl_->limitMs);
}

void CTivTimeout::Update() {
    impl_->lastMeasureMs = impl_->MillisecondsNow();
    if (impl_->HasLimit() && impl_->lastMeasureMs - impl_->startMarkMs >= static_cast<double>(impl_->limitMs)) {
        impl_->expired = true;
    }
}

bool CTivTimeout::IsTimedOut() {
    if (impl_->expired) return true;
    if (!impl_->HasLimit() || !impl_->enabled) return false;
    if (impl_->MillisecondsNow() - impl_->startMarkMs < static_cast<double>(impl_->limitMs)) return false;
    impl_->expired = true;
    Update();
    return true;
}

float CTivTimeout::GetElapsed() const { return static_cast<float>(impl_->lastMeasureMs - impl_->startMarkMs); }
float CTivTimeout::GetLimit() const { return impl_->limitMs; }
void CTivTimeout::Enable(bool enable) { impl_->enabled = enable; }
bool CTivTimeout::IsEnabled() const { return impl_->enabled; }
