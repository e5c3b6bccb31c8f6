#pragma once

#include <cstddef>
#include <set>

#include "util/Assert.h"

namespace util {

// Base that makes all live T enumerable. Walks over the set work on a copy and ask IsLive before each
// call, since a member may die during the walk.
template <class T>
class ClassTracker {
  public:
    static const std::set<T*>& GetInstances() { return Instances(); }
    static bool IsLive(T* object) { return Instances().count(object) != 0; }

    // Calls `function(T&)` on each live object, also when members die or appear meanwhile.
    template <class Function>
    static void ForEach(Function function) {
        const std::set<T*> members = Instances();
        for (T* member : members) {
            if (IsLive(member)) function(*member);
        }
    }

  protected:
    ClassTracker() { Instances().insert(static_cast<T*>(this)); }
    ClassTracker(const ClassTracker&) { Instances().insert(static_cast<T*>(this)); }
    ClassTracker& operator=(const ClassTracker&) { return *this; }
    virtual ~ClassTracker() noexcept(false) {
        const size_t nerased = Instances().erase(static_cast<T*>(this));
        DATA_ASSERTION(nerased == 1);
    }

  private:
    static std::set<T*>& Instances() {
        static std::set<T*>& s_instances = *new std::set<T*>;  // abandoned at exit
        return s_instances;
    }
};

}  // namespace util
