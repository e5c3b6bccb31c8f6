#pragma once

#include <stack>

#include "util/Assert.h"

namespace util {

// Binding that nests: the outer object is bound again when the inner one ends. Use through ScopedBind, so
// that an exception cannot leave the stack behind.
template <class T>
class StackedBind {
  public:
    virtual ~StackedBind() noexcept(false) = default;

    virtual void Bind() const {
        DATA_ASSERTION(s_stack.size() < 100);
        if (!s_stack.empty() && !s_lazy) s_stack.top()->DoUnbind();
        s_stack.push(static_cast<const T*>(this));
        DoBind();
    }

    virtual void Unbind() const {
        DATA_ASSERTION(!s_stack.empty());
        const T* const self = static_cast<const T*>(this);
        AssertTop(self);
        s_stack.pop();
        if (s_stack.empty()) {
            DoUnbind();
            return;
        }
        if (!s_lazy) DoUnbind();
        s_stack.top()->DoBind();
    }

    virtual void DoBind() const = 0;
    virtual void DoUnbind() const = 0;

  private:
    static void AssertTop(const T* self) {
        if (s_stack.top() == self) return;
        AssertionFailed("s_stack.top() == this", true, false, __PRETTY_FUNCTION__, __FILE__, __LINE__);
    }

    static inline std::stack<const T*> s_stack;
    static inline bool s_lazy = false;  // true skips the unbinding between two bound objects
};

template <class T>
class ScopedBind {
  public:
    explicit ScopedBind(const T& object) : m_object(object) { m_object.Bind(); }
    ~ScopedBind() { m_object.Unbind(); }
    ScopedBind(const ScopedBind&) = delete;
    ScopedBind& operator=(const ScopedBind&) = delete;

  private:
    const T& m_object;
};

}  // namespace util
