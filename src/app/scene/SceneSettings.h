#pragma once

#include <map>
#include <memory>

#include "app/Fwd.h"
#include "script/Fwd.h"
#include "util/String.h"

namespace app {

// The settings of the world that scenes bring along: gravity, air and water, by the names of their
// attributes. What a scene sets holds as long as it is open, and what it was set to before, the user's own,
// comes back with the next scene. A change made meanwhile is the scene's.
//
// What one scene brings is a bundle, which most scenes have empty. The history switches between bundles, so
// that undoing a load undoes its settings too.
class SceneSettings {
  public:
    using Values = std::map<String, script::ObjectPtr>;  // by name
    using Bundle = std::shared_ptr<Values>;              // never null

    SceneSettings();
    ~SceneSettings();

    // The setting of that name that a scene may bring along; null for all others.
    static script::AbstractAttribPtr Find(const String& name);
    // Whether the setting takes such a value: of its type, finite, and no formula.
    static bool IsValueFor(script::AbstractAttrib& setting, const script::ObjectPtr& value);

    // Another scene brings these along.
    void Set(const Values& values);
    // What the open one brings, as far as it differs from the user's own.
    Values Get() const;
    String ToCode() const;  // of these; another text whenever one of them is changed

    // Whether the open scene has any, be they the same as the user's.
    bool IsEmpty() const { return m_bundle->empty(); }
    // All that hold now become the open scene's, and the user's own fall back to their defaults. Formulas
    // stay the user's.
    void Adopt();

    // The user's own, of all that scenes may bring.
    Values GetUsersOwn() const;
    void SetUsersOwn(const Values& values);

    const Bundle& GetBundle() const { return m_bundle; }
    void Switch(const Bundle& bundle);

    // While it lives the user's own hold, so that they are what is saved as his.
    class UsersTurn {
      public:
        explicit UsersTurn(SceneSettings& settings);
        ~UsersTurn();
        UsersTurn(const UsersTurn&) = delete;
        UsersTurn& operator=(const UsersTurn&) = delete;

      private:
        SceneSettings& m_settings;
        const Bundle m_bundle;
    };

  private:
    Bundle m_bundle;  // that holds
    Values m_users;   // the user's own values of what the bundle sets
};

}  // namespace app
