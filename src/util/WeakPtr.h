#pragma once

#include "util/LockPtr.h"
#include "util/SharedPtr.h"

namespace util {

// A pointer that does not own and reads as null once its object has died. It clears itself at the first
// test after that.
template <class T>
class WeakPtr {
  public:
    WeakPtr() noexcept = default;
    WeakPtr(std::nullptr_t) noexcept {}
    WeakPtr(T* object) noexcept { Hold(object); }
    template <class U, class = std::enable_if_t<std::is_convertible<U*, T*>::value>>
    WeakPtr(const SharedPtr<U>& object) noexcept {
        Hold(object.Get());
    }
    WeakPtr(const WeakPtr& other) noexcept { Hold(other.Get()); }
    template <class U, class = std::enable_if_t<std::is_convertible<U*, T*>::value>>
    WeakPtr(const WeakPtr<U>& other) noexcept {
        Hold(other.Get());
    }
    ~WeakPtr() { Drop(); }

    WeakPtr& operator=(const WeakPtr& other) noexcept {
        if (this == &other) return *this;
        T* const object = other.Get();
        Drop();
        Hold(object);
        return *this;
    }

    // The object, or null when it has died (or was never there).
    T* Get() const noexcept {
        if (m_handle != nullptr && m_handle->m_pointee == nullptr) Drop();
        return m_object;
    }
    explicit operator bool() const noexcept { return Get() != nullptr; }
    LockPtr<T> Lock() const noexcept { return LockPtr<T>(Get()); }

  private:
    void Hold(T* object) noexcept {
        if (object == nullptr) return;
        m_object = object;
        m_handle = object->GetHandle();
        ++m_handle->m_weak;
    }
    void Drop() const noexcept {
        if (m_handle != nullptr) --m_handle->m_weak;
        m_object = nullptr;
        m_handle = nullptr;
    }

    mutable T* m_object = nullptr;
    mutable PointeeHandle* m_handle = nullptr;
};

template <class T, class U>
bool operator==(const WeakPtr<T>& a, const WeakPtr<U>& b) {
    return a.Get() == b.Get();
}
template <class T, class U>
bool operator!=(const WeakPtr<T>& a, const WeakPtr<U>& b) {
    return a.Get() != b.Get();
}

}  // namespace util
