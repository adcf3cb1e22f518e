#include "foundation/CTivAlgo.h"

#include <algorithm>
#include <numeric>

namespace {

constexpr float kTimeoutMs = 1000.0f;

}  // namespace

CTivAlgo::CTivAlgo(const CTivString& name)
    : name_(name), ownedTimeout_(std::make_unique<CTivTimeout>(kTimeoutMs)), timeout_(ownedTimeout_.get()) {}

CTivAlgo::~CTivAlgo() {
    ownedTimeout_.reset();
    if (parent_) {
        while (!children_.empty()) {
            CTivAlgo* const child = children_.front();
            child->SetParent(parent_);
            RemoveChild(child);  // one that came by AddChild alone is still here
        }
        parent_->RemoveChild(this);
        return;
    }
    // Without a parent to move up to, the children stand alone: the time-out that they shared ends here.
    for (CTivAlgo* child : children_) {
        if (child->parent_ != this) continue;  // came by AddChild alone and keeps its own
        child->parent_ = nullptr;
        child->TakeTimeout(nullptr);
    }
}

void CTivAlgo::SetParent(CTivAlgo* parent) {
    if (!parent || parent == this) return;
    ownedTimeout_.reset();
    if (parent_) parent_->RemoveChild(this);
    TakeTimeout(parent->timeout_);
    parent_ = parent;
    parent->AddChild(this);
    for (int which = 0; which < 2; ++which) TakeFlag(which, parent->inheritedFlags_[which]);
}

// Down the whole subtree, which shares one.
void CTivAlgo::TakeTimeout(CTivTimeout* timeout) {
    timeout_ = timeout;
    for (CTivAlgo* child : children_) child->TakeTimeout(timeout);
}

void CTivAlgo::TakeFlag(int which, bool value) {
    inheritedFlags_[which] = value;
    for (CTivAlgo* child : children_) child->TakeFlag(which, value);
}

void CTivAlgo::AddChild(CTivAlgo* child) { children_.push_back(child); }
void CTivAlgo::SetName(CTivString name) { name_ = std::move(name); }
CTivString CTivAlgo::GetName() const { return name_; }
void CTivAlgo::SetUserValue(int value) { userValue_ = value; }
int CTivAlgo::GetUserValue() const { return userValue_; }
int CTivAlgo::GetChildCount() const { return static_cast<int>(children_.size()); }
CTivAlgo* CTivAlgo::GetParent() const { return parent_; }

CTivAlgo* CTivAlgo::GetChild(int index) const {
    return index >= 0 && index < GetChildCount() ? children_[static_cast<std::size_t>(index)] : nullptr;
}

void CTivAlgo::RemoveChild(CTivAlgo* child) {
    const auto found = std::find(children_.begin(), children_.end(), child);
    if (found != children_.end()) children_.erase(found);
}

float CTivAlgo::GetAverageTime() {
    const std::vector<float>& samples = timing_[name_.ToString()];
    if (samples.empty()) return 0.0f;
    return std::accumulate(samples.begin(), samples.end(), 0.0f) / static_cast<float>(samples.size());
}

bool CTivAlgo::EnableTimeout(bool enable) {
    if (!ownedTimeout_) return false;
    ownedTimeout_->Enable(enable);
    return true;
}

bool CTivAlgo::IsTimeoutEnabled() const { return timeout_ && timeout_->IsEnabled(); }

bool CTivAlgo::SetTimeout(float milliseconds) {
    if (!ownedTimeout_) return false;
    ownedTimeout_->Restart(milliseconds);
    return true;
}

float CTivAlgo::GetTimeout() const { return timeout_ ? timeout_->GetLimit() : 0.0f; }
bool CTivAlgo::IsTimedOut() const { return timeout_ && timeout_->IsEnabled() && timeout_->IsTimedOut(); }

bool CTivAlgo::RestartTimeout() {
    if (!ownedTimeout_) return false;
    ownedTimeout_->Reset();
    return true;
}

CTivTimeout* CTivAlgo::GetTimeoutObject() const { return timeout_; }

void CTivAlgo::AddTimeSample(const CTivString& name, float milliseconds) {
    timing_[name.ToString()].push_back(milliseconds);
}

void CTivAlgo::ClearTimeSamples(const CTivString& name) { timing_[name.ToString()].clear(); }
