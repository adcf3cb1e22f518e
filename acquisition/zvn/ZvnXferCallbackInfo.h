#pragma once

/// What the transfer's callback is given, for each frame.
class ZvnXferCallbackInfo {
public:
    ZvnXferCallbackInfo(void* context, bool isTrash) : context_(context), isTrash_(isTrash) {}

    void* GetContext() const { return context_; }
    bool IsTrash() const { return isTrash_; }  ///< the frame was thrown away

private:
    void* context_;
    bool isTrash_;
};
