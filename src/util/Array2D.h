#pragma once

#include <cstddef>

#include "util/Assert.h"
#include "util/VectorPOD.h"

namespace util {

// A rectangle of values, stored row after row: (x, y) stands at y * width + x.
template <class T, class Data = VectorPOD<T>>
class Array2D {
  public:
    Array2D() = default;
    Array2D(size_t width, size_t height, const T& value = T()) : m_width(width), m_height(height) {
        m_data.resize(width * height, value);
    }

    size_t GetWidth() const { return m_width; }
    size_t GetHeight() const { return m_height; }

    // The range is tested in every build; throws BadCoderException.
    T& operator()(size_t x, size_t y) {
        CODE_ASSERTION(x < m_width && y < m_height);
        return m_data[y * m_width + x];
    }
    const T& operator()(size_t x, size_t y) const {
        CODE_ASSERTION(x < m_width && y < m_height);
        return m_data[y * m_width + x];
    }

    // All values for loops that have proved their indices.
    Data& GetData() { return m_data; }
    const Data& GetData() const { return m_data; }

  private:
    size_t m_width = 0;
    size_t m_height = 0;
    Data m_data;
};

}  // namespace util
