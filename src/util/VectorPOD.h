#pragma once

#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <new>
#include <type_traits>
#include <utility>

#include "util/Assert.h"

namespace util {

// A growable array for plain data: growth is a memcpy and clear is one store, so hot paths may fill and
// empty it every step. T needs no constructor, no destructor and may be copied by memcpy. Growing throws
// std::bad_alloc when memory runs out and leaves the contents as they were.
template <class T>
class VectorPOD {
    static_assert(std::is_trivially_copyable<T>::value && std::is_trivially_destructible<T>::value,
                  "VectorPOD copies its elements with memcpy");

  public:
    using value_type = T;
    using iterator = T*;
    using const_iterator = const T*;

    constexpr VectorPOD() = default;
    explicit VectorPOD(size_t count, const T& value = T()) { resize(count, value); }
    VectorPOD(std::initializer_list<T> values) { assign(values.begin(), values.end()); }
    VectorPOD(const VectorPOD& other) { assign(other.begin(), other.end()); }
    VectorPOD(VectorPOD&& other) noexcept { swap(other); }
    ~VectorPOD() { std::free(m_begin); }

    VectorPOD& operator=(const VectorPOD& other) {
        if (this != &other) assign(other.begin(), other.end());
        return *this;
    }
    VectorPOD& operator=(VectorPOD&& other) noexcept {
        swap(other);
        return *this;
    }

    void swap(VectorPOD& other) noexcept {
        std::swap(m_begin, other.m_begin);
        std::swap(m_end, other.m_end);
        std::swap(m_capacityEnd, other.m_capacityEnd);
    }

    // Replaces the contents by [first, last), which must not lie inside this vector.
    void assign(const T* first, const T* last) {
        clear();
        const size_t count = static_cast<size_t>(last - first);
        reserve(count);
        if (count != 0) std::memcpy(static_cast<void*>(m_begin), first, count * sizeof(T));
        m_end = m_begin + count;
    }

    // Takes the value by copy: it may be an element of this very vector.
    void push_back(T value) {
        if (m_end == m_capacityEnd) Reallocate((size() + 1) * 2);
        *m_end++ = value;
    }

    void pop_back() {
        CODE_ASSERTION(!empty());
        --m_end;
    }

    // Keeps the capacity.
    void clear() { m_end = m_begin; }

    void resize(size_t count, T value = T()) {
        reserve(count);
        T* const newEnd = m_begin + count;
        for (T* p = m_end; p < newEnd; ++p) *p = value;
        m_end = newEnd;
    }

    void reserve(size_t count) {
        if (count > capacity()) Reallocate(count);
    }

    size_t size() const { return static_cast<size_t>(m_end - m_begin); }
    size_t capacity() const { return static_cast<size_t>(m_capacityEnd - m_begin); }
    bool empty() const { return m_begin == m_end; }

    T& operator[](size_t i) { return m_begin[i]; }
    const T& operator[](size_t i) const { return m_begin[i]; }
    T& front() { return *m_begin; }
    const T& front() const { return *m_begin; }
    T& back() { return m_end[-1]; }
    const T& back() const { return m_end[-1]; }
    T* data() { return m_begin; }
    const T* data() const { return m_begin; }
    iterator begin() { return m_begin; }
    iterator end() { return m_end; }
    const_iterator begin() const { return m_begin; }
    const_iterator end() const { return m_end; }

  private:
    void Reallocate(size_t newCapacity) {
        T* const block = static_cast<T*>(std::malloc(newCapacity * sizeof(T)));
        if (block == nullptr) throw std::bad_alloc();
        const size_t count = size();
        if (count != 0) std::memcpy(static_cast<void*>(block), m_begin, count * sizeof(T));
        std::free(m_begin);
        m_begin = block;
        m_end = block + count;
        m_capacityEnd = block + newCapacity;
    }

    T* m_begin = nullptr;
    T* m_end = nullptr;
    T* m_capacityEnd = nullptr;
};

}  // namespace util
