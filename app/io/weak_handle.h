// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

namespace kelvora {

/// Reaches an object that may be gone by the time of the call. Copied and dropped on any thread;
/// `get` only on the thread that destroys the object.
template <typename T>
class WeakHandle {
public:
    explicit WeakHandle(std::weak_ptr<T*> target) : target_(std::move(target)) {}

    /// Null when the object is gone.
    [[nodiscard]] T* get() const {
        const std::shared_ptr<T*> target = target_.lock();
        return target ? *target : nullptr;
    }

private:
    std::weak_ptr<T*> target_;
};

/// A member of the object that hands out handles to itself; they turn null when it is destroyed.
/// To be the last member, so that the handles are null before the others go.
template <typename T>
class WeakHandleSource {
public:
    explicit WeakHandleSource(T* target) : target_(std::make_shared<T*>(target)) {}
    WeakHandleSource(const WeakHandleSource&) = delete;
    WeakHandleSource& operator=(const WeakHandleSource&) = delete;

    [[nodiscard]] WeakHandle<T> handle() const { return WeakHandle<T>(target_); }

private:
    std::shared_ptr<T*> target_;
};

} // namespace kelvora
