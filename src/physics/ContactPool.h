#pragma once

#include <cstdint>
#include <vector>

#include "math/Vector.h"
#include "physics/Contact.h"

namespace physics {

// The contacts of one step, in the order in which they were found. Objects are kept and used again, so that
// a settled scene allocates nothing; one that somebody else still holds is left to them.
class ContactPool {
  public:
    using const_iterator = std::vector<ContactPtr>::const_iterator;

    // Appends a contact; the arguments are those of Contact's constructor.
    Contact& Add(Geom* geomA, Geom* geomB, uint32_t index, math::Vec2 point, math::Vec2 normal,
                 math::real penetration);

    void Clear() { m_size = 0; }  // keeps the objects
    void Release();               // drops the objects too

    // A step finds no more than this; what is piled up in one place beyond it goes on without the rest. Some
    // 70 MB, and ten times what the largest scenes need that run at all.
    static constexpr size_t MOST_CONTACTS = 100000;
    bool IsFull() const { return m_size >= MOST_CONTACTS; }

    size_t size() const { return m_size; }
    bool empty() const { return m_size == 0; }
    Contact* operator[](size_t i) const { return m_objects[i].Get(); }
    const_iterator begin() const { return m_objects.begin(); }
    const_iterator end() const { return m_objects.begin() + static_cast<std::ptrdiff_t>(m_size); }

  private:
    std::vector<ContactPtr> m_objects;  // the first m_size are contacts, the rest wait
    size_t m_size = 0;
};

}  // namespace physics
