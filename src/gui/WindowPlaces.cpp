#include "gui/WindowPlaces.h"

#include <boost/algorithm/string.hpp>
#include <cmath>
#include <sstream>

namespace gui {

WindowPlaces& WindowPlaces::Instance() {
    static const util::SharedPtr<WindowPlaces>& places =
        *new util::SharedPtr<WindowPlaces>(new WindowPlaces);  // abandoned at exit
    return *places;
}

void WindowPlaces::SetStore(const script::AttribPtr<String>& store) {
    m_store = store;
    m_store->AddOnChange(new util::Callback([this] { Read(); }, this));
    Read();
}

const math::Vec2* WindowPlaces::FindPlace(const String& key) const {
    const auto found = m_places.find(key);
    return found != m_places.end() ? &found->second.place : nullptr;
}

bool WindowPlaces::IsOpen(const String& key, bool otherwise) const {
    const auto found = m_places.find(key);
    return found != m_places.end() ? found->second.open : otherwise;
}

void WindowPlaces::Note(const String& key, math::Vec2 place, bool open) {
    if (key.empty() || !math::IsFinite(place)) return;
    m_places[key] = {place, open};
    Write();
}

// What is not readable is left out: a window then stands where it does at a first start.
void WindowPlaces::Read() {
    if (m_writing) return;
    m_places.clear();
    std::vector<String> rows;
    const String text = m_store->Get();
    boost::split(rows, text, boost::is_any_of(";"));
    for (const String& row : rows) {
        std::istringstream in(row);
        String key;
        Place place{};
        if (in >> key >> place.place.x >> place.place.y >> place.open) m_places[key] = place;
    }
}

void WindowPlaces::Write() {
    if (!m_store) return;
    std::ostringstream out;
    for (const auto& [key, place] : m_places) {
        if (out.tellp() > 0) out << "; ";
        out << key << " " << std::lround(place.place.x) << " " << std::lround(place.place.y) << " "
            << place.open;
    }
    m_writing = true;
    m_store->Set(out.str());
    m_writing = false;
}

}  // namespace gui
