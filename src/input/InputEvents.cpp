#include "input/InputEvents.h"

#include <SDL/SDL_events.h>

namespace gui {

InputEvent::InputEvent(const SDL_Event& event) : m_event(std::make_unique<SDL_Event>(event)) {}

InputEvent::~InputEvent() = default;

}  // namespace gui
