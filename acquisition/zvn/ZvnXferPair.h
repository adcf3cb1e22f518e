#pragma once

class ZvnBuffer;
class ZvnXferNode;

/// Which source fills which buffers. Both are created before the transfer is.
struct ZvnXferPair {
    /// Both ports are 0. @param callback whether the transfer's callback runs for these frames
    ZvnXferPair(ZvnXferNode& source, int /*sourcePort*/, ZvnBuffer& destination, int /*destinationPort*/, bool callback)
        : source(&source), destination(&destination), callback(callback) {}

    ZvnXferNode* source;
    ZvnBuffer* destination;
    bool callback;
};
