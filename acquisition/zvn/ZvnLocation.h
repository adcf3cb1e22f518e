#pragma once

#include <string>
#include <utility>

/// Names a resource: the server that holds it, and its number there. The default location names none; memory can be
/// taken there.
class ZvnLocation {
public:
    ZvnLocation() = default;
    explicit ZvnLocation(std::string serverName, int resourceIndex = 0)
        : serverName_(std::move(serverName)), resourceIndex_(resourceIndex) {}

    const std::string& GetServerName() const { return serverName_; }
    int GetResourceIndex() const { return resourceIndex_; }

private:
    std::string serverName_;
    int resourceIndex_ = 0;
};
