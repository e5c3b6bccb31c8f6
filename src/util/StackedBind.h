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
        if (!s_stack.empty()) s_stack.top()->DoUnbind();
        s_stack.push(static_cast<const T*>(this));
        DoBind();
    }

    virtual void Unbind() const {
        DATA_ASSERTION(!s_stack.empty());
        DATA_ASSERTION_TEXT(s_stack.top() == static_cast<const T*>(this), "s_stack.top() == this");
        s_stack.pop();
        DoUnbind();
        if (!s_stack.empty()) s_stack.top()->DoBind();
    }

    virtual void DoBind() const = 0;
    virtual void DoUnbind() const = 0;

  private:
    static inline std::stack<const T*> s_stack;
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
