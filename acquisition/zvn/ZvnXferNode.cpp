#include "acquisition/zvn/ZvnXferNode.h"

#include <utility>

#include "acquisition/zvn/backend_impl.h"

ZvnXferNode::ZvnXferNode(ZvnResourceType type, ZvnLocation location, const char* configFile)
    : type_(type), location_(std::move(location)), configFile_(configFile ? configFile : "") {}

ZvnXferNode::~ZvnXferNode() = default;

bool ZvnXferNode::Create() {
    Destroy();
    if (ZvnBackend* backend = FindZvnBackend()) source_ = backend->Open(location_, type_, configFile_);
    return IsCreated();
}

void ZvnXferNode::Destroy() { source_.reset(); }
