#pragma once

namespace util {

// Storage for a static that is abandoned at exit: it is constructed before anything runs (T's default
// constructor must be constexpr) and never destroyed, so no order of static destructors can matter.
template <class T>
class Immortal {
  public:
    constexpr Immortal() : m_value() {}
    ~Immortal() {}
    Immortal(const Immortal&) = delete;
    Immortal& operator=(const Immortal&) = delete;

    T& operator*() { return m_value; }
    T* operator->() { return &m_value; }

  private:
    union {
        T m_value;
    };
};

}  // namespace util
