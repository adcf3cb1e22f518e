#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <stop_token>
#include <vector>

#include "foundation/nur_memory.h"

/// The memory of a set of buffers, and which of them are full. Shared by the buffer object and the transfer that fills
/// it, so that whoever ends last frees it.
class ZvnBufferMemory {
public:
    /// @return null without memory
    static std::shared_ptr<ZvnBufferMemory> Take(int count, std::uint64_t bytesEach) {
        auto memory = std::make_shared<ZvnBufferMemory>();
        memory->bytesEach_ = bytesEach;
        for (int i = 0; i < count; ++i) {
            memory->blocks_.emplace_back(static_cast<std::byte*>(nur_alloc(bytesEach, true)));
            if (!memory->blocks_.back()) return nullptr;
        }
        memory->isFull_.resize(memory->blocks_.size());
        return memory;
    }

    bool Holds(int index) const { return index >= 0 && index < Count(); }
    std::span<std::byte> Pixels(int index) {
        return {blocks_[static_cast<std::size_t>(index)].get(), static_cast<std::size_t>(bytesEach_)};
    }

    int GetIndex() const {
        const std::scoped_lock lock(lock_);
        return current_;
    }

    /// @return the next empty buffer in turn, nothing when stopped first
    std::optional<int> WaitForEmpty(const std::stop_token& stop) {
        std::unique_lock lock(lock_);
        std::optional<int> found;
        emptied_.wait(lock, stop, [&] { return (found = FindEmpty()).has_value(); });
        return stop.stop_requested() ? std::nullopt : found;
    }

    void Fill(int index) {
        const std::scoped_lock lock(lock_);
        isFull_[static_cast<std::size_t>(index)] = true;
        current_ = index;
        next_ = (index + 1) % Count();
    }

    void Empty(int index) {
        const std::scoped_lock lock(lock_);
        isFull_[static_cast<std::size_t>(index)] = false;
        emptied_.notify_all();
    }

private:
    struct Free {
        void operator()(std::byte* block) const { nur_free(block); }
    };

    int Count() const { return static_cast<int>(blocks_.size()); }

    std::optional<int> FindEmpty() const {
        for (int i = 0; i < Count(); ++i) {
            const int index = (next_ + i) % Count();
            if (!isFull_[static_cast<std::size_t>(index)]) return index;
        }
        return std::nullopt;
    }

    std::vector<std::unique_ptr<std::byte, Free>> blocks_;
    std::uint64_t bytesEach_ = 0;
    mutable std::mutex lock_;
    std::condition_variable_any emptied_;
    std::vector<bool> isFull_;
    int current_ = 0;
    int next_ = 0;
};
