#pragma once

#include "util/ClassTracker.h"
#include "util/Clock.h"
#include "util/Redraw.h"

namespace util {

// What the frame loop updates before the GUI.
class InterpolatorBase : public ClassTracker<InterpolatorBase> {
  public:
    virtual void Update() = 0;
};

// A value that glides to a new target over a set time. T needs * float and +.
template <class T>
class Interpolator : public InterpolatorBase {
  public:
    explicit Interpolator(const T& value = T()) : m_start(value), m_target(value), m_current(value) {}

    // Starts from the present value; `duration` in seconds. Zero jumps at the next Update.
    void Set(const T& value, double duration) {
        m_start = m_current;
        m_target = value;
        m_startTime = Clock::Now();
        m_duration = duration;
        m_isMoving = true;
    }

    // Takes the value at once.
    void Jump(const T& value) {
        m_start = m_target = m_current = value;
        m_isMoving = false;
        Redraw::Request();
    }

    // The ease s(u) = u + u^2 - u^3 starts with slope 1, overshoots nothing, ends with slope 0 and reaches
    // exactly 1 at u = 1.
    void Update() override {
        if (!m_isMoving) return;
        Redraw::Request();
        const double t = Clock::Now() - m_startTime;
        if (!(t < m_duration)) {
            m_start = m_current = m_target;
            m_isMoving = false;
            return;
        }
        const float u = static_cast<float>(t / m_duration);
        const float s = u * u + u - u * u * u;
        m_current = m_start * (1 - s) + m_target * s;
    }

    const T& Get() const { return m_current; }
    const T& GetTarget() const { return m_target; }

  private:
    double m_startTime = 0;  // seconds
    double m_duration = 0;   // seconds
    bool m_isMoving = false;
    T m_start;
    T m_target;
    T m_current;
};

}  // namespace util
