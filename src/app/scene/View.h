#pragma once

#include "math/BoundingBox.h"
#include "math/Matrix3.h"
#include "math/Vector.h"
#include "script/Attributes.h"
#include "util/Interpolator.h"

namespace app {

class Scene;

// Where the user looks, and how that moves.
//
// World coordinates are metres with y up; GUI coordinates have y down. The matrix
// W = T(middle) S(s, -s) T(-p) maps the world point p to the middle of the view, with s GUI units to the
// metre and y turned over.
class View {
  public:
    // Of the screen, pixels per inch.
    explicit View(const script::AttribPtr<float>& dpi) : m_dpi(dpi) {}

    static constexpr float GetMinZoom() { return 1.5f; }  // GUI units per metre
    static constexpr float GetMaxZoom() { return 3000; }
    static constexpr float GetDefaultZoom() { return 150; }

    void Update();            // glides on
    void Arrive();            // ends gliding, at the target
    void KeepZoomInBounds();  // glides back into them

    math::Vec2 GUIToWorld(const math::Vec2& gui) const { return math::Inverted(m_worldToGUI)(gui); }
    math::Vec2 WorldToGUI(const math::Vec2& world) const { return m_worldToGUI(world); }
    const math::TMatrix3<float>& GetWorldToGUI() const { return m_worldToGUI; }
    // Where the view is going; what changes the view starts from here.
    const math::TMatrix3<float>& GetTargetWorldToGUI() const { return m_view.GetTarget(); }
    // Animated within 0.1 s, or at once. A scale of zero or not finite is refused with a warning.
    void SetWorldToGUI(const math::TMatrix3<float>& matrix, bool animate = true);

    float GetZoom() const { return m_worldToGUI.m[0][0]; }
    void SetZoom(float scale, bool animate = true);  // about the middle
    void ZoomAbout(math::Vec2 gui, float factor);    // the world under that point stays there
    // Moves the picture by GUI units; under the mouse at once, or the ground would trail behind it.
    void Pan(float x, float y, bool animate = true);
    // To all entities with finite extents; to the default view when there are none. Clear of the rooms.
    void ZoomToScene(const Scene& scene);
    // What the interface covers at the left and at the upper edge, GUI units.
    void SetRooms(float left, float top);
    float GetLeftRoom() const;                             // at most a part of the width
    float GetTopRoom() const;                              // at most a part of the height
    uint32_t GetSceneFits() const { return m_sceneFits; }  // how often it has gone to a scene
    void SetDefaultView(bool animate);
    // Brings the tracked entity to the middle; one without finite extents is not tracked any more.
    void Follow(Scene& scene);

    const math::Vec2& GetSize() const { return m_size; }  // GUI units
    void SetSize(math::Vec2 size) { m_size = size; }
    math::Vec2 GetMiddle() const { return m_size * 0.5f; }
    math::Vec2 GetMousePos() const;          // world
    math::BoundingBox2f GetViewBox() const;  // the visible part of the world
    float GetWorldPerGUI() const;            // world units per GUI unit, from the inverse of the view
    float GetCmToWorld() const;              // world units per centimetre on the screen
    float GetDPI() const { return m_dpi->Get(); }

  private:
    const script::AttribPtr<float> m_dpi;
    util::Interpolator<math::TMatrix3<float>> m_view;
    math::TMatrix3<float> m_worldToGUI;  // the present value of m_view
    math::Vec2 m_size;
    float m_leftRoom = 0;  // GUI units
    float m_topRoom = 0;
    uint32_t m_sceneFits = 0;
};

}  // namespace app
