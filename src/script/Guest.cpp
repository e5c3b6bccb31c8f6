#include "script/Guest.h"

#include <algorithm>

#include "script/Exceptions.h"
#include "script/Parser.h"
#include "script/Scopes.h"

namespace script {

constexpr int MAX_GUEST_FAILURES = 1000;

Guest* Guest::s_current = nullptr;

ClosurePtr Guest::MakeClosure(const String& name) const {
    const GuestRights rights(const_cast<Guest*>(this));
    return new Closure(name, Parser::Instance().GetRootClosure());
}

void Guest::CheckWrite(const ClassObject& owner, const String& name) {
    if (s_current == nullptr) return;
    const Closure* const closure = dynamic_cast<const Closure*>(&owner);
    if (closure != nullptr && closure->GetGuest() != nullptr) return;
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
