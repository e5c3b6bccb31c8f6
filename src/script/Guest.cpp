#include "script/Guest.h"

#include <algorithm>

#include "script/Exceptions.h"

namespace script {

constexpr int MAX_GUEST_FAILURES = 1000;

Guest* Guest::s_current = nullptr;

void Guest::CheckWrite(bool isGuestClosure, const String& name) {
    if (s_current == nullptr || isGuestClosure) return;
    THROW(ScriptException, "A scene or language file may not set " + name);
}

void Guest::CheckCommand() {
    if (s_current != nullptr) {
        THROW(ScriptException, "A scene or language file may not run this command");
    }
}

void Guest::NoteFailure() {
    if (++m_failures > MAX_GUEST_FAILURES) THROW(TimeoutException, "Too many failures");
}

GuestTurn::GuestTurn(Guest& guest)
    : m_guest(guest), m_rights(&guest), m_limit(std::min(guest.m_stepsLeft, MAX_GUEST_TURN)) {}

GuestTurn::~GuestTurn() {
    m_guest.m_stepsLeft -= m_limit.GetUsed();
}

}  // namespace script
