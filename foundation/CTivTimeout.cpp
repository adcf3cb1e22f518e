#include "foundation/CTivTimeout.h"

#include <chrono>
#include <cmath>

namespace {

constexpr float kDefaultLimitMs = 1000.0f;

}  // namespace

class ImplTimeout : public CTivManager {
public:
    using Clock = std::chrono::steady_clock;

    Clock::time_point startCounter_ = Clock::now();
    float limitMs_ = kDefaultLimitMs;
    double startMarkMs_ = 0.0;
    double lastMeasureMs_ = -1.0;
    bool expired_ = false;
    bool enabled_ = false;

    double MillisecondsNow() const {
        return std::chrono::duration<double, std::milli>(Clock::now() - startCounter_).count();
    }
    bool HasLimit() const { return limitMs_ != 0.0f && !std::isnan(limitMs_); }
};

CTivTimeout::CTivTimeout(float limitMs) : impl_(std::make_unique<ImplTimeout>()) { Restart(limitMs); }
CTivTimeout::~CTivTimeout() = default;

void CTivTimeout::Restart(float limitMs) {
    impl_->limitMs_ = limitMs < 0.0f ? kDefaultLimitMs : limitMs;
    impl_->startCounter_ = ImplTimeout::Clock::now();
    impl_->startMarkMs_ = impl_->MillisecondsNow();
}

void CTivTimeout::Reset() {
    impl_->expired_ = false;
    Restart(impl_->limitMs_);
}

void CTivTimeout::Update() {
    impl_->lastMeasureMs_ = impl_->MillisecondsNow();
    if (impl_->HasLimit() && impl_->lastMeasureMs_ - impl_->startMarkMs_ >= static_cast<double>(impl_->limitMs_)) {
        impl_->expired_ = true;
    }
}

bool CTivTimeout::IsTimedOut() {
    if (impl_->expired_) return true;
    if (!impl_->HasLimit() || !impl_->enabled_) return false;
    if (impl_->MillisecondsNow() - impl_->startMarkMs_ < static_cast<double>(impl_->limitMs_)) return false;
    impl_->expired_ = true;
    Update();
    return true;
}

float CTivTimeout::GetElapsed() const { return static_cast<float>(impl_->lastMeasureMs_ - impl_->startMarkMs_); }
float CTivTimeout::GetLimit() const { return impl_->limitMs_; }
void CTivTimeout::Enable(bool enable) { impl_->enabled_ = enable; }
bool CTivTimeout::IsEnabled() const { return impl_->enabled_; }
