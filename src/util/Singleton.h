#pragma once

#include <cstdint>
#include <new>
#include <typeinfo>
#include <utility>

#include "util/Assert.h"
#include "util/Immortal.h"
#include "util/SharedPtr.h"

namespace util {

[[noreturn]] void ThrowPhoenix(const char* typeName);

// Second base of a service, next to util::Pointee, which must come first. Made on first use by Instance()
// and kept alive by s_instance until Destroy(); an Instance() after that is refused ("Phoenix"), for a
// service that has been torn down must not come back half-dressed.
template <class T>
class Singleton {
  public:
    static T& Instance() {
        if (!*s_instance) Create();
        return **s_instance;
    }

    // Whether the service exists now; makes nothing. For callers that must work before and after it.
    static bool IsCreated() { return static_cast<bool>(*s_instance); }

    // Throws BadCoderException when the service has existed before.
    static void Create() {
        if (*s_instance) return;
        if (s_created != 0) ThrowPhoenix(typeid(T).name());
        s_created = 1;
        new T;
    }

    // Cleared before the release, so that a destructor asking for its own service is refused.
    static void Destroy() { const SharedPtr<T> last = std::move(*s_instance); }

    Singleton(const Singleton&) = delete;
    Singleton& operator=(const Singleton&) = delete;

  protected:
    // Runs inside `new T`. s_instance is the hold that keeps the object alive.
    Singleton() {
        CODE_ASSERTION_TEXT(!*s_instance, "!s_instance");
        *s_instance = static_cast<T*>(this);
    }

    // Reached with the slot still set only when T's constructor threw: the storage is about to be freed,
    // so the slot is emptied without a release.
    virtual ~Singleton() noexcept(false) {
        T* const self = static_cast<T*>(this);
        if (s_instance->Get() != self) return;
        self->GetHandle()->m_strong = 0;
        self->GetHandle()->m_pointee = nullptr;
        new (&*s_instance) SharedPtr<T>();
    }

  private:
    static inline Immortal<SharedPtr<T>> s_instance;
    static inline int32_t s_created = 0;  // set once, never cleared
};

}  // namespace util
