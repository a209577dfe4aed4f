// An interface pointer that releases itself.
#pragma once

#include <utility>

namespace frame {

// An interface pointer that holds one reference.
template <class Interface>
class ComPtr {
public:
    ComPtr() = default;
    // Takes over the caller's reference.
    explicit ComPtr(Interface* owned) : pointer_(owned) {}
    ComPtr(const ComPtr& other) : pointer_(other.pointer_) {
        if (pointer_ != nullptr) pointer_->AddRef();
    }
    ComPtr(ComPtr&& other) noexcept : pointer_(std::exchange(other.pointer_, nullptr)) {}
    ComPtr& operator=(ComPtr other) noexcept {
        std::swap(pointer_, other.pointer_);
        return *this;
    }
    ~ComPtr() { reset(); }

    void reset() {
        if (Interface* const pointer = std::exchange(pointer_, nullptr); pointer != nullptr) pointer->Release();
    }
    Interface* get() const { return pointer_; }
    Interface* operator->() const { return pointer_; }
    Interface& operator*() const { return *pointer_; }
    explicit operator bool() const { return pointer_ != nullptr; }
    // Where a call may store a new reference; the old one is released.
    void** put() { return reinterpret_cast<void**>(put_typed()); }
    Interface** put_typed() {
        reset();
        return &pointer_;
    }

private:
    Interface* pointer_ = nullptr;
};

}  // namespace frame
