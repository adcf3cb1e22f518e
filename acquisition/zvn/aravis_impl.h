#pragma once

#include <arv.h>

#include <memory>
#include <string>

// Ownership and errors of the camera library's objects, for builds that have it.

struct ArvUnref {
    void operator()(void* object) const { g_object_unref(object); }
};
using ArvCameraHandle = std::unique_ptr<ArvCamera, ArvUnref>;
using ArvStreamHandle = std::unique_ptr<ArvStream, ArvUnref>;
using ArvBufferHandle = std::unique_ptr<ArvBuffer, ArvUnref>;

/// Receives the error of one call after the other, and keeps the first.
class ArvErrors {
public:
    ArvErrors() = default;
    ArvErrors(const ArvErrors&) = delete;
    ArvErrors& operator=(const ArvErrors&) = delete;
    ~ArvErrors() { g_clear_error(&last_); }

    /// For the error argument of a call.
    GError** Next() {
        Keep();
        return &last_;
    }
    bool HasNone() {
        Keep();
        return text_.empty();
    }
    const std::string& Text() {
        Keep();
        return text_;
    }

private:
    void Keep() {
        if (last_ && text_.empty()) text_ = last_->message;
        g_clear_error(&last_);
    }

    GError* last_ = nullptr;
    std::string text_;
};
