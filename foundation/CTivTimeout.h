#pragma once

#include <memory>

#include "foundation/CTivManager.h"

class ImplTimeout;

/// A stopwatch with a limit, in milliseconds.
class CTivTimeout : public CTivManager {
public:
    explicit CTivTimeout(float limitMs);
    ~CTivTimeout() override;

    void Restart(float limitMs);  ///< a negative limit becomes 1000
    void Reset();                 ///< clears "expired" and restarts with the same limit
    void Update();                ///< measures now; reaching a limit other than 0 marks it expired
    bool IsTimedOut();            ///< false while not enabled, or with a limit of 0 or NaN
    float GetElapsed() const;     ///< last measure minus start, milliseconds
    float GetLimit() const;
    void Enable(bool enable);
    bool IsEnabled() const;

private:
    std::unique_ptr<ImplTimeout> impl_;
};
