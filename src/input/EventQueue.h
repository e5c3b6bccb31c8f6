#pragma once

#include <SDL/SDL_events.h>

#include <deque>

namespace gui {

// What the window system has reported and the program has not handled yet. The library's own queue holds 128
// events and drops what comes then, the release of a button as well as a movement; a mouse fills it in a
// slow frame. Here nothing is lost but movements of the mouse that add little to those beside them, and
// steps of a resize that a later one outdates.
class EventQueue {
  public:
    EventQueue() = default;
    ~EventQueue();  // the library's events go their own way again
    EventQueue(const EventQueue&) = delete;
    EventQueue& operator=(const EventQueue&) = delete;

    // From now on the library's events come here.
    void Install();

    void Push(const SDL_Event& event);
    bool Pop(SDL_Event& event);  // in the order of coming; false when there is none
    bool IsEmpty() const { return m_events.empty(); }
    size_t GetSize() const { return m_events.size(); }

  private:
    bool MergeMotion(const SDL_Event& event);

    std::deque<SDL_Event> m_events;
};

}  // namespace gui
