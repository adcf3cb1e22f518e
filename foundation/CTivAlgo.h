#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "foundation/CTivConfig.h"
#include "foundation/CTivString.h"
#include "foundation/CTivTimeout.h"

/// Base of every operator's implementation: a name, a tree of child operators, a time-out that the tree shares, and
/// timing samples by name. A tree belongs to one thread.
class CTivAlgo : public CTivConfig {
public:
    explicit CTivAlgo(const CTivString& name);
    CTivAlgo(const CTivAlgo&) = delete;
    CTivAlgo& operator=(const CTivAlgo&) = delete;
    ~CTivAlgo() override;  ///< its children move up to its parent

    /// Hangs this operator under another one, whose time-out it then shares with all of its direct children.
    virtual void SetParent(CTivAlgo* parent);
    virtual void AddChild(CTivAlgo* child);
    virtual void SetName(CTivString name);
    virtual CTivString GetName() const;
    virtual void SetUserValue(int value);
    virtual int GetUserValue() const;
    virtual int GetChildCount() const;
    virtual CTivAlgo* GetChild(int index) const;  ///< null when outside
    virtual CTivAlgo* GetParent() const;
    virtual void RemoveChild(CTivAlgo* child);
    virtual float GetAverageTime();  ///< mean of the samples under the operator's own name, 0 if none
    // Only the operator that owns the time-out changes it; the others answer false.
    virtual bool EnableTimeout(bool enable);
    virtual bool IsTimeoutEnabled() const;
    virtual bool SetTimeout(float milliseconds);
    virtual float GetTimeout() const;
    virtual bool IsTimedOut() const;
    virtual bool RestartTimeout();
    virtual CTivTimeout* GetTimeoutObject() const;

    void AddTimeSample(const CTivString& name, float milliseconds);
    void ClearTimeSamples(const CTivString& name);  ///< keeps the entry

protected:
    bool inheritedFlags_[2] = {false, false};  ///< taken over from a parent, down the whole subtree

private:
    void TakeTimeout(CTivTimeout* timeout);
    void TakeFlag(int which, bool value);

    CTivString name_;
    std::unique_ptr<CTivTimeout> ownedTimeout_;
    CTivTimeout* timeout_ = nullptr;
    CTivAlgo* parent_ = nullptr;
    std::vector<CTivAlgo*> children_;
    std::map<std::string, std::vector<float>> timing_;
    int userValue_ = 0;
};
