#pragma once

#include "script/Limits.h"
#include "util/Pointee.h"

namespace script {

// Whoever wrote a scene or a language file: a stranger. What stands in such a file is evaluated as the
// guest's, and while a guest is at work
//   - only names of the guest's own closures can be assigned, and class objects that they hold stay where
//     they are;
//   - only commands run that Reflected::AllowGuests has named: those that change nothing;
//   - the steps of the whole file are counted together, and memory follows the steps.
// Closures carry the guest. A function acts for the guest of the closure in which it was made, whoever calls
// it and however late (a formula bound to an attribute, in each frame), and so does whatever it calls.
//
// Use: Parser::ParseGuest for the text, Parser::MakeGuestClosure for its names, a GuestTurn round each
// statement.
class Guest : public util::Pointee {
  public:
    // For whom code runs at present; null for the user's own.
    static Guest* GetCurrent() { return s_current; }

    // Raise ScriptException while a guest is at work: for a name that is not of a guest's closure, for a
    // command.
    static void CheckWrite(bool isGuestClosure, const String& name);
    static void CheckCommand();

    // Each failed statement is written to the log: raises TimeoutException when there are too many.
    void NoteFailure();
    int GetNumFailures() const { return m_failures; }

  private:
    friend class GuestRights;
    friend class GuestTurn;

    static Guest* s_current;

    int64_t m_stepsLeft = MAX_GUEST_STEPS;
    int m_failures = 0;  // statements so far
};

// A span in which code runs for `guest`. Null changes nothing; a guest within a guest's span neither.
class GuestRights {
  public:
    explicit GuestRights(Guest* guest) : m_outer(Guest::s_current) {
        if (m_outer == nullptr) Guest::s_current = guest;
    }
    ~GuestRights() { Guest::s_current = m_outer; }
    GuestRights(const GuestRights&) = delete;
    GuestRights& operator=(const GuestRights&) = delete;

  private:
    Guest* const m_outer;
};

// The reading of one statement of a guest's file, which takes its steps from what is left to the file.
class GuestTurn {
  public:
    explicit GuestTurn(Guest& guest);
    ~GuestTurn();
    GuestTurn(const GuestTurn&) = delete;
    GuestTurn& operator=(const GuestTurn&) = delete;

  private:
    Guest& m_guest;
    const GuestRights m_rights;
    const StepLimit m_limit;
};

}  // namespace script
