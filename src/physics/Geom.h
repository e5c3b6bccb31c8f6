#pragma once

#include <cstdint>
#include <set>

#include "math/BoundingBox.h"
#include "math/OBB2D.h"
#include "math/RigidTransform.h"
#include "math/Vector.h"
#include "physics/Fwd.h"
#include "physics/Surface.h"
#include "util/Pointee.h"
#include "util/SharedPtr.h"

namespace physics {

// Where a geom stands, to the bit.
struct GeomPlace {
    math::RigidTransform transform;
    double angle;  // rad, as last given
};

// A shape that collides. It has a place in the world with or without a body; a body that adopts it moves it
// from then on.
//
// Distances are signed, negative inside, and all points are in the world.
class Geom : public util::Pointee {
  public:
    // What the collision passes distinguish. Everything but circles, polygons and planes touches nothing
    // there.
    enum class Kind : uint8_t { CIRCLE, POLYGON, PLANE, OTHER };

    Geom& operator=(const Geom&) = delete;
    ~Geom() noexcept(false) override;

    virtual math::real GetDistance(math::Vec2 point) const = 0;
    virtual math::Vec2 GetNormal(
        math::Vec2 point) const = 0;                    // outward and unit, or zero where there is none
    virtual math::real GetArea() const = 0;             // m^2
    virtual math::real GetInertiaSansMass() const = 0;  // m^2, about the geom's origin, per unit mass
    virtual math::BoundingBox2f GetBoundingBox() const = 0;
    virtual math::OBB2D GetOBB() const = 0;
    virtual math::Vec3 GetBoundingCircle() const = 0;  // x, y, radius
    virtual void SetTransform(const math::RigidTransform& transform);
    // m, of a circle about the middle that lies within the shape. Asks for the distance map of a polygon.
    math::real GetCoreRadius() const;

    uint32_t GetID() const { return m_id; }  // creation number; a count of its own, apart from the bodies'
    Kind GetKind() const { return m_kind; }

    const AbstractBodyPtr& GetBody() const { return m_body; }
    AbstractBody* GetBodyPtr() const { return m_body.Get(); }
    void SetBody(AbstractBody* body);
    // Lets the body, if it is a rigid one, take in a changed density or shape.
    void UpdateBody();

    const math::RigidTransform& GetTransform() const { return m_transform; }        // geom-local to world
    const math::RigidTransform& GetInvTransform() const { return m_invTransform; }  // world to geom-local
    math::Vec2 GetPos() const { return m_pos; }                                     // of the geom's origin

    // By the angle instead of its cosine and sine, which do not tell it exactly: the geom remembers the
    // angle, so that what is written to a file is what was read.
    void SetAngleAndPos(double angle, math::Vec2 pos);
    double GetAngle() const;  // rad; the very angle last given, unless the geom has turned since
    GeomPlace GetPlace() const { return {m_transform, m_givenAngle}; }
    void SetPlace(const GeomPlace& place);

    math::real m_density;      // kg/m^2, above 0
    math::real m_friction;     // 0 and above
    math::real m_restitution;  // 0 to 1

    std::set<Geom*> m_noCollide;  // partners that this geom must not touch; kept by hinges, not owned
    bool m_collideWater = true;   // contacts with particles wanted
    uint32_t m_collideSet = 1;    // mask of collision layers; geoms that share none of bits 0 to 2 pass

  protected:
    Geom(Kind kind, const Surface& surface);
    // Copies shape, place and surface. The copy has an ID of its own, no body and no barred partners.
    Geom(const Geom& other);

  private:
    uint32_t m_id;
    Kind m_kind;
    AbstractBodyPtr m_body;  // its m_parts own this geom in turn: a cycle that Body::SetGeoms breaks
    math::RigidTransform m_invTransform;
    math::RigidTransform m_transform;
    math::Vec2 m_pos;         // the translation of m_transform
    double m_givenAngle = 0;  // rad; out of date as soon as m_transform turns

    static uint32_t s_nextID;  // starts at 0 and never goes back: the world geom is 0
};

// A disc about the geom's origin.
class Circular : public Geom {
  public:
    math::real GetDistance(math::Vec2 point) const override;
    math::Vec2 GetNormal(math::Vec2 point) const override;
    math::real GetArea() const override;
    math::real GetInertiaSansMass() const override;
    math::BoundingBox2f GetBoundingBox() const override;
    math::OBB2D GetOBB() const override;
    math::Vec3 GetBoundingCircle() const override;

    math::real m_radius;  // m, above 0; after a change call UpdateBody

  protected:
    Circular(math::real radius, Kind kind, const Surface& surface) : Geom(kind, surface), m_radius(radius) {}
    Circular(const Circular& other) = default;
};

class Circle : public Circular {
  public:
    explicit Circle(math::real radius) : Circular(radius, Kind::CIRCLE, {}) {}
    Circle(math::real radius, math::Vec2 pos, const Surface& surface = {});
    Circle(const Circle& other) = default;
};

// A half plane without end, solid on the negative side. A body with one is immovable and has its frame at
// the world's origin.
class Plane : public Geom {
  public:
    // The points p with normal . p + offset < 0 are solid. `normal` is a unit vector.
    Plane(math::Vec2 normal, math::real offset, const Surface& surface = {});
    Plane(const Plane& other) = default;

    math::real GetDistance(math::Vec2 point) const override { return Distance(point); }
    math::Vec2 GetNormal(math::Vec2 point) const override;
    math::real GetArea() const override;
    math::real GetInertiaSansMass() const override;
    math::BoundingBox2f GetBoundingBox() const override;
    math::OBB2D GetOBB() const override;
    math::Vec3 GetBoundingCircle() const override;
    void SetTransform(const math::RigidTransform& transform) override;

    const math::Vec3& GetLocalPlane() const { return m_localPlane; }
    const math::Vec3& GetPlane() const { return m_plane; }  // in the world: normal x, normal y, offset
    math::Vec2 GetNormal() const { return {m_plane.x, m_plane.y}; }
    math::real Distance(math::Vec2 p) const { return m_plane.x * p.x + m_plane.y * p.y + m_plane.z; }

  private:
    math::Vec3 m_localPlane;
    math::Vec3 m_plane;
};

// The one geom of the world body, which stands for the fixed world in joints: a point anywhere lies inside
// it, and nothing collides with it.
class WorldGeom : public Geom {
  public:
    WorldGeom() : Geom(Kind::OTHER, {}) {}

    math::real GetDistance(math::Vec2 point) const override;
    math::Vec2 GetNormal(math::Vec2 point) const override;
    math::real GetArea() const override;
    math::real GetInertiaSansMass() const override;
    math::BoundingBox2f GetBoundingBox() const override;
    math::OBB2D GetOBB() const override;
    math::Vec3 GetBoundingCircle() const override;
};

}  // namespace physics
