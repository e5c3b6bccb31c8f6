#include "util/Pointee.h"

namespace util {

int32_t Pointee::s_numPointees = 0;
Immortal<VectorPOD<PointeeHandle*>> Pointee::s_handles;
size_t Pointee::s_fullSweepSize = 0;
size_t Pointee::s_sweepStart = 0;

Pointee::Pointee() {
    MakeHandle();
}

Pointee::Pointee(const Pointee&) {
    MakeHandle();
}

// The handle is left alone: the release that led here has cleared its m_pointee, and for an object that
// was never owned it may be gone already.
Pointee::~Pointee() noexcept(false) {
    --s_numPointees;
}

void Pointee::MakeHandle() {
    m_handle = new PointeeHandle{this, 0, 0};
    try {
        s_handles->push_back(m_handle);
    } catch (...) {
        delete m_handle;
        throw;
    }
    ++s_numPointees;
}

void Pointee::SweepHandles() {
    VectorPOD<PointeeHandle*>& handles = *s_handles;
    const bool full = 2 * s_fullSweepSize < handles.size();
    size_t i = full ? 0 : s_sweepStart;
    while (i < handles.size()) {
        PointeeHandle* const handle = handles[i];
        if (handle->m_strong != 0 || handle->m_weak != 0) {
            ++i;
            continue;
        }
        delete handle;
        handles[i] = handles.back();
        handles.pop_back();
    }
    s_sweepStart = handles.size();
    if (full) s_fullSweepSize = handles.size();
}

}  // namespace util
