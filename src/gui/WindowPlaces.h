#pragma once

#include <map>

#include "math/Vector.h"
#include "script/Attributes.h"

namespace gui {

// Where the user has put the windows, and which of them were open, from one run to the next: a text in the
// settings, one "key x y open" for each window that was ever moved or shut, separated by "; ".
class WindowPlaces : public util::Pointee {
  public:
    static WindowPlaces& Instance();  // of the program

    // The setting to read and write; without one nothing is kept beyond this run.
    void SetStore(const script::AttribPtr<String>& store);

    const math::Vec2* FindPlace(const String& key) const;  // GUI units, in its parent; null for none
    bool IsOpen(const String& key, bool otherwise) const;
    void Note(const String& key, math::Vec2 place, bool open);

  private:
    struct Place {
        math::Vec2 place;
        bool open;
    };

    void Read();
    void Write();

    std::map<String, Place> m_places;
    script::AttribPtr<String> m_store;  // null for none
    bool m_writing = false;
};

}  // namespace gui
