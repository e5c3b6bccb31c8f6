#pragma once

#include <cstddef>
#include <functional>
#include <type_traits>

#include "util/Pointee.h"
#include "util/SafeDelete.h"

namespace util {

[[noreturn]] void ThrowNullPointer(const char* text);

// Lowers the strong count of `object` and destroys it when this was the last hold.
inline void ReleaseStrong(PointeeHandle* handle) noexcept {
    if (--handle->m_strong != 0) return;
    Pointee* const pointee = handle->m_pointee;
    handle->m_pointee = nullptr;
    SafeDelete(pointee);
}

// The owning pointer: one word, the count lives in the object's handle. Compares and orders by address.
// Dereferencing null throws std::runtime_error.
template <class T>
class SharedPtr {
  public:
    using element_type = T;

    constexpr SharedPtr() noexcept = default;
    constexpr SharedPtr(std::nullptr_t) noexcept {}
    SharedPtr(T* object) noexcept : m_object(object) { Hold(); }
    SharedPtr(const SharedPtr& other) noexcept : m_object(other.m_object) { Hold(); }
    SharedPtr(SharedPtr&& other) noexcept : m_object(other.m_object) { other.m_object = nullptr; }
    template <class U, class = std::enable_if_t<std::is_convertible<U*, T*>::value>>
    SharedPtr(const SharedPtr<U>& other) noexcept : m_object(other.Get()) {
        Hold();
    }
    ~SharedPtr() { Release(m_object); }

    SharedPtr& operator=(const SharedPtr& other) noexcept { return Assign(other.m_object); }
    SharedPtr& operator=(T* object) noexcept { return Assign(object); }
    SharedPtr& operator=(std::nullptr_t) noexcept { return Assign(nullptr); }
    template <class U, class = std::enable_if_t<std::is_convertible<U*, T*>::value>>
    SharedPtr& operator=(const SharedPtr<U>& other) noexcept {
        return Assign(other.Get());
    }
    SharedPtr& operator=(SharedPtr&& other) noexcept {
        if (this == &other) return *this;
        T* const old = m_object;
        m_object = other.m_object;
        other.m_object = nullptr;
        Release(old);
        return *this;
    }

    T* Get() const noexcept { return m_object; }
    explicit operator bool() const noexcept { return m_object != nullptr; }
    T& operator*() const {
        Check();
        return *m_object;
    }
    T* operator->() const {
        Check();
        return m_object;
    }

  private:
    void Check() const {
        if (m_object == nullptr) ThrowNullPointer("Tried to dereference a NULL SharedPtr");
    }
    void Hold() noexcept {
        if (m_object != nullptr) ++m_object->GetHandle()->m_strong;
    }
    static void Release(T* object) noexcept {
        if (object != nullptr) ReleaseStrong(object->GetHandle());
    }
    // The new object is held before the old one goes, whose destructor may reach this very pointer.
    SharedPtr& Assign(T* object) noexcept {
        if (object == m_object) return *this;
        T* const old = m_object;
        m_object = object;
        Hold();
        Release(old);
        return *this;
    }

    T* m_object = nullptr;
};

template <class T, class U>
bool operator==(const SharedPtr<T>& a, const SharedPtr<U>& b) {
    return a.Get() == b.Get();
}
template <class T, class U>
bool operator!=(const SharedPtr<T>& a, const SharedPtr<U>& b) {
    return a.Get() != b.Get();
}
template <class T>
bool operator==(const SharedPtr<T>& a, const T* b) {
    return a.Get() == b;
}
template <class T>
bool operator!=(const SharedPtr<T>& a, const T* b) {
    return a.Get() != b;
}
template <class T>
bool operator==(const SharedPtr<T>& a, std::nullptr_t) {
    return a.Get() == nullptr;
}
template <class T>
bool operator!=(const SharedPtr<T>& a, std::nullptr_t) {
    return a.Get() != nullptr;
}
template <class T>
bool operator<(const SharedPtr<T>& a, const SharedPtr<T>& b) {
    return std::less<T*>()(a.Get(), b.Get());
}

// The language's dynamic cast; empty when it fails.
template <class T, class U>
SharedPtr<T> DynamicCast(const SharedPtr<U>& pointer) {
    return SharedPtr<T>(dynamic_cast<T*>(pointer.Get()));
}

}  // namespace util
