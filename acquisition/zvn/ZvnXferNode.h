#pragma once

#include <memory>
#include <string>

#include "acquisition/zvn/ZvnBackend.h"

/// What frames come from: a frame grabber's input or a camera. Opened by Create, closed by Destroy or with the object.
class ZvnXferNode {
public:
    virtual ~ZvnXferNode();
    ZvnXferNode(const ZvnXferNode&) = delete;
    ZvnXferNode& operator=(const ZvnXferNode&) = delete;

    /// Opens the resource and applies the configuration file. @return false where either fails
    bool Create();
    void Destroy();
    bool IsCreated() const { return source_ != nullptr; }

protected:
    ZvnXferNode(ZvnResourceType type, ZvnLocation location, const char* configFile);
    ZvnSource* GetSource() const { return source_.get(); }

private:
    friend class ZvnBufferWithTrash;
    friend class ZvnTransfer;

    ZvnResourceType type_;
    ZvnLocation location_;
    std::string configFile_;
    std::shared_ptr<ZvnSource> source_;
};
