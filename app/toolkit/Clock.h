#pragma once

#include <QDateTime>

/// Tells the local time; a test replaces it.
class Clock {
public:
    virtual ~Clock() = default;
    virtual QDateTime LocalNow() const { return QDateTime::currentDateTime(); }
};
