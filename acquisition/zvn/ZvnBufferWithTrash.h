#pragma once

#include "acquisition/zvn/ZvnBuffer.h"
#include "acquisition/zvn/ZvnXferNode.h"

/// Buffers with the size and format of a source, whose bad frames are thrown away.
class ZvnBufferWithTrash : public ZvnBuffer {
public:
    /// @param source created before this is, and alive until it is created @param type -1
    ZvnBufferWithTrash(int count, const ZvnXferNode& source, int type, const ZvnLocation& location);

    bool Create() override;

private:
    const ZvnXferNode* source_;
};
