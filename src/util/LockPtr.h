#pragma once

#include "util/SharedPtr.h"

namespace util {

// A hold for the length of a call, for a local variable. Unlike a SharedPtr it may be taken on an object
// that nobody owns yet (`this` in a constructor) without deleting it at the end; over an owned object it
// can be the last hold, and the object then dies with the lock.
template <class T>
class LockPtr {
  public:
    LockPtr() noexcept = default;
    explicit LockPtr(T* object) noexcept { Take(object); }
    explicit LockPtr(const SharedPtr<T>& object) noexcept { Take(object.Get()); }
    LockPtr(LockPtr&& other) noexcept
        : m_object(other.m_object), m_handle(other.m_handle), m_strongAtLock(other.m_strongAtLock) {
        other.m_object = nullptr;
        other.m_handle = nullptr;
    }
    LockPtr(const LockPtr&) = delete;
    LockPtr& operator=(const LockPtr&) = delete;
    ~LockPtr() {
        if (m_handle == nullptr) return;
        if (m_strongAtLock == 0) {
            --m_handle->m_strong;  // unowned when taken: never the one to delete it
        } else {
            ReleaseStrong(m_handle);
        }
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
    void Take(T* object) noexcept {
        if (object == nullptr) return;
        m_object = object;
        m_handle = object->GetHandle();
        m_strongAtLock = m_handle->m_strong;
        ++m_handle->m_strong;
    }
    void Check() const {
        if (m_object == nullptr) ThrowNullPointer("Tried to dereference a NULL LockPtr");
    }

    T* m_object = nullptr;
    PointeeHandle* m_handle = nullptr;
    int32_t m_strongAtLock = 0;
};

}  // namespace util
