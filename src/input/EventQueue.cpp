#include "input/EventQueue.h"

#include <algorithm>
#include <cstdlib>

namespace gui {

namespace {

constexpr size_t BUSY_SIZE = 32;  // waiting events that tell a slow frame from an ordinary one
constexpr int BUSY_STEP = 3;      // pixels that a movement then has at least, in x or y

EventQueue* s_installed = nullptr;

int TakeFromLibrary(const SDL_Event* event) {
    constexpr int KEEP_OUT_OF_LIBRARY = 0;
    s_installed->Push(*event);
    return KEEP_OUT_OF_LIBRARY;
}

bool IsResize(const SDL_Event& event) {
    return event.type == SDL_VIDEORESIZE;
}

}  // namespace

EventQueue::~EventQueue() {
    if (s_installed != this) return;
    SDL_SetEventFilter(nullptr);
    s_installed = nullptr;
}

void EventQueue::Install() {
    s_installed = this;
    SDL_SetEventFilter(&TakeFromLibrary);
}

void EventQueue::Push(const SDL_Event& event) {
    if (MergeMotion(event)) return;
    if (IsResize(event)) {
        m_events.erase(std::remove_if(m_events.begin(), m_events.end(), &IsResize), m_events.end());
    }
    m_events.push_back(event);
}

// A stroke keeps its shape: only steps too short to matter become one.
bool EventQueue::MergeMotion(const SDL_Event& event) {
    if (event.type != SDL_MOUSEMOTION || m_events.size() < BUSY_SIZE) return false;
    SDL_Event& last = m_events.back();
    const bool isShort = std::abs(last.motion.xrel) < BUSY_STEP && std::abs(last.motion.yrel) < BUSY_STEP;
    if (last.type != SDL_MOUSEMOTION || last.motion.state != event.motion.state || !isShort) return false;
    const SDL_Event previous = last;
    last = event;
    last.motion.xrel = static_cast<Sint16>(previous.motion.xrel + event.motion.xrel);
    last.motion.yrel = static_cast<Sint16>(previous.motion.yrel + event.motion.yrel);
    return true;
}

bool EventQueue::Pop(SDL_Event& event) {
    if (m_events.empty()) return false;
    event = m_events.front();
    m_events.pop_front();
    return true;
}

}  // namespace gui
