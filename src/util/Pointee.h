#pragma once

#include <cstdint>

#include "util/Immortal.h"
#include "util/VectorPOD.h"

namespace util {

class Pointee;

// The control record of a counted object. It outlives the object, so that weak pointers can find out that
// the object is gone, and is freed in bulk by Pointee::SweepHandles.
struct PointeeHandle {
    Pointee* m_pointee;  // null once the object has been destroyed
    int32_t m_strong;    // SharedPtr and LockPtr holds
    int32_t m_weak;      // WeakPtr holds
};

// Base of everything that is owned by counted pointers.
//
// Life: unowned (just built, or under locks only), owned (m_strong above zero), dead (m_pointee null; the
// handle waits for its weak holds and a sweep). Release by the last SharedPtr is the only road to
// destruction, so a Pointee never lives on the stack nor by value inside another object: its handle would
// be swept and a later pointer to it would be a use after free. In a constructor take only weak pointers
// or locks of `this`: a SharedPtr that goes away again would delete the object being built.
//
// Not thread-safe: counts are plain integers.
class Pointee {
  public:
    Pointee();
    Pointee(const Pointee& other);  // a copy is an object of its own, with its own handle
    Pointee& operator=(const Pointee&) { return *this; }  // the handle stays with its object
    virtual ~Pointee() noexcept(false);  // destructors may raise assertions; SafeDelete catches

    PointeeHandle* GetHandle() const { return m_handle; }

    // Frees handles without holds. Looks only at handles appended since the last sweep, until the table has
    // outgrown twice its size at the last full sweep; so the cost per frame follows the objects made in
    // that frame. An object that lives past a sweep must be held by then.
    static void SweepHandles();

    static int32_t GetCount() { return s_numPointees; }
    static size_t GetHandleCount() { return s_handles->size(); }

  private:
    void MakeHandle();

    PointeeHandle* m_handle;

    static int32_t s_numPointees;  // live objects
    static Immortal<VectorPOD<PointeeHandle*>> s_handles;
    static size_t s_fullSweepSize;  // size of the table after the last sweep from 0
    static size_t s_sweepStart;     // first handle that no sweep has looked at
};

}  // namespace util
