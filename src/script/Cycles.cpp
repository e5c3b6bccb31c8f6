#include "script/Cycles.h"

#include <algorithm>
#include <unordered_map>

#include "script/Release.h"
#include "script/Scopes.h"

namespace script {

namespace {

using Suspect = util::WeakPtr<util::Pointee>;

constexpr size_t MAX_NODES = 4096;  // of an examination; what reaches further is taken for alive
constexpr size_t MAX_FRESH = 4096;  // examined in one call
constexpr size_t MAX_OLD = 16;

SuspectList& GetOld() {
    static SuspectList& s_old = *new SuspectList;  // abandoned at exit
    return s_old;
}

// Counts the holds on all that a closure reaches which come from there. What has more holds than that is
// held from outside, and so is what it reaches in turn.
class Examination {
  public:
    explicit Examination(const Closure& suspect) : m_suspect(suspect) {}

    bool IsGarbage() {
        m_nodes[&m_suspect];
        m_queue.push_back(&m_suspect);
        for (size_t i = 0; i < m_queue.size(); ++i) {
            if (m_queue.size() > MAX_NODES) return false;
            ForEachHold(*m_queue[i], [this](const util::Pointee& held) {
                Node& node = m_nodes[&held];
                if (node.holds++ == 0 && &held != &m_suspect) m_queue.push_back(&held);
            });
        }
        const std::vector<const util::Pointee*> reached = m_queue;
        for (const util::Pointee* const object : reached) {
            if (object->GetHandle()->m_strong > m_nodes[object].holds) MarkAlive(*object);
        }
        return !m_nodes[&m_suspect].alive;
    }

  private:
    struct Node {
        int holds = 0;  // from within
        bool alive = false;
    };

    void MarkAlive(const util::Pointee& object) {
        m_queue = {&object};
        while (!m_queue.empty()) {
            const util::Pointee* const next = m_queue.back();
            m_queue.pop_back();
            Node& node = m_nodes[next];
            if (node.alive) continue;
            node.alive = true;
            ForEachHold(*next, [this](const util::Pointee& held) { m_queue.push_back(&held); });
        }
    }

    // The root and the parts of the program are alive anyway: the walk does not enter them.
    template <class Visit>
    static void ForEachHold(const util::Pointee& object, const Visit& visit) {
        const auto hold = [&visit](const auto& pointer) {
            if (pointer) visit(*pointer);
        };
        if (const auto* const closure = dynamic_cast<const Closure*>(&object)) {
            if (!closure->GetSuperscope()) return;
            hold(closure->GetSuperscope());
            for (const auto& entry : closure->GetTable()) hold(entry.second);
        } else if (const auto* const variable = dynamic_cast<const Variable*>(&object)) {
            hold(variable->GetStored());
        } else if (const auto* const function = dynamic_cast<const Function*>(&object)) {
            hold(function->GetClosure());
            hold(function->GetCallClosure());
        } else if (const auto* const list = dynamic_cast<const List*>(&object)) {
            for (const ObjectPtr& element : list->Get()) hold(element);
        }
    }

    const Closure& m_suspect;
    std::unordered_map<const util::Pointee*, Node> m_nodes;
    std::vector<const util::Pointee*> m_queue;
};

// Whether the suspect is to be looked at again.
bool Examine(const Suspect& suspect) {
    Closure* const closure = dynamic_cast<Closure*>(suspect.Get());
    if (closure == nullptr) return false;
    if (!Examination(*closure).IsGarbage()) return true;
    const ClosurePtr hold = closure;
    hold->RemoveAllVariables();
    return false;
}

void ExamineFirst(SuspectList& suspects, size_t most) {
    for (size_t i = std::min(most, suspects.size()); i > 0; --i) {
        const Suspect suspect = suspects.front();
        suspects.pop_front();
        if (Examine(suspect)) GetOld().push_back(suspect);
    }
}

}  // namespace

void CollectCycles() {
    ExamineFirst(GetOld(), MAX_OLD);
    ExamineFirst(GetNewSuspects(), MAX_FRESH);
}

size_t GetNumSuspects() {
    return GetNewSuspects().size() + GetOld().size();
}

}  // namespace script
