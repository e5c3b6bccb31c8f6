#include "physics/Geom.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "math/Geometry.h"
#include "math/Matrix3.h"
#include "physics/Body.h"
#include "util/LockPtr.h"

namespace physics {

using math::BoundingBox2f;
using math::OBB2D;
using math::real;
using math::RigidTransform;
using math::Vec2;
using math::Vec3;

namespace {

constexpr real INF = std::numeric_limits<real>::infinity();
constexpr real LEAST_CORE = 0.1f;  // of the bounding radius, for shapes whose middle lies outside

OBB2D AlignedBox(Vec2 center, real halfSize) {
    OBB2D box;
    box.center = center;
    box.halfSize = {halfSize, halfSize};
    return box;
}

}  // namespace

// ---- Geom ----------------------------------------------------------------------------------------------

uint32_t Geom::s_nextID = 0;

Geom::Geom(Kind kind, const Surface& surface)
    : m_density(surface.density),
      m_friction(surface.friction),
      m_restitution(surface.restitution),
      m_id(s_nextID++),
      m_kind(kind) {}

Geom::Geom(const Geom& other)
    : util::Pointee(other),
      m_density(other.m_density),
      m_friction(other.m_friction),
      m_restitution(other.m_restitution),
      m_collideWater(other.m_collideWater),
      m_collideSet(other.m_collideSet),
      m_id(s_nextID++),
      m_kind(other.m_kind),
      m_invTransform(other.m_invTransform),
      m_transform(other.m_transform),
      m_pos(other.m_pos),
      m_givenAngle(other.m_givenAngle) {}

Geom::~Geom() noexcept(false) = default;

void Geom::SetTransform(const RigidTransform& transform) {
    m_transform = transform;
    m_invTransform = transform.Inverse();
    m_pos = transform.GetTranslation();
}

static RigidTransform TransformOf(double angle, Vec2 pos) {
    return {static_cast<real>(std::cos(angle)), static_cast<real>(std::sin(angle)), pos.x, pos.y};
}

void Geom::SetAngleAndPos(double angle, Vec2 pos) {
    m_givenAngle = angle;
    SetTransform(TransformOf(angle, pos));
}

double Geom::GetAngle() const {
    const RigidTransform given = TransformOf(m_givenAngle, m_pos);
    if (given.cos == m_transform.cos && given.sin == m_transform.sin) return m_givenAngle;
    return std::atan2(static_cast<double>(m_transform.sin), static_cast<double>(m_transform.cos));
}

void Geom::SetPlace(const GeomPlace& place) {
    m_givenAngle = place.angle;
    SetTransform(place.transform);
}

// The distance map knows how far the middle of a polygon is from its outline.
real Geom::GetCoreRadius() const {
    const real radius = GetBoundingCircle().z;
    if (m_kind != Kind::POLYGON) return radius;
    return std::max(-GetDistance(m_pos), LEAST_CORE * radius);
}

void Geom::SetBody(AbstractBody* body) {
    m_body = body;
}

void Geom::UpdateBody() {
    const util::LockPtr<Body> body(dynamic_cast<Body*>(m_body.Get()));
    if (body) body->RefreshGeoms();
}

// ---- Circular ------------------------------------------------------------------------------------------

Circle::Circle(real radius, Vec2 pos, const Surface& surface) : Circular(radius, Kind::CIRCLE, surface) {
    SetTransform(RigidTransform(1, 0, pos.x, pos.y));
}

real Circular::GetDistance(Vec2 point) const {
    return math::Length(point - GetPos()) - m_radius;
}

Vec2 Circular::GetNormal(Vec2 point) const {
    return math::Normalized(point - GetPos());
}

real Circular::GetArea() const {
    return math::PI * m_radius * m_radius;
}

// I/m = r^2 / 2, of a disc about its centre.
real Circular::GetInertiaSansMass() const {
    return m_radius * m_radius / 2;
}

BoundingBox2f Circular::GetBoundingBox() const {
    const Vec2 half(m_radius, m_radius);
    return {GetPos() - half, GetPos() + half};
}

OBB2D Circular::GetOBB() const {
    return AlignedBox(GetPos(), m_radius);
}

Vec3 Circular::GetBoundingCircle() const {
    return {GetPos().x, GetPos().y, m_radius};
}

// ---- Plane ---------------------------------------------------------------------------------------------

Plane::Plane(Vec2 normal, real offset, const Surface& surface)
    : Geom(Kind::PLANE, surface), m_localPlane(normal.x, normal.y, offset), m_plane(m_localPlane) {}

Vec2 Plane::GetNormal(Vec2) const {
    return GetNormal();
}

real Plane::GetArea() const {
    return INF;
}

real Plane::GetInertiaSansMass() const {
    return INF;
}

BoundingBox2f Plane::GetBoundingBox() const {
    return {Vec2(-INF, -INF), Vec2(INF, INF)};
}

OBB2D Plane::GetOBB() const {
    return AlignedBox(Vec2(), INF);
}

Vec3 Plane::GetBoundingCircle() const {
    return {0, 0, INF};
}

// A point p lies on the plane l when l . p = 0, both homogeneous. Points move by M, so planes move by the
// transpose of its inverse.
void Plane::SetTransform(const RigidTransform& transform) {
    Geom::SetTransform(transform);
    m_plane = math::Transposed(math::Inverted(math::TMatrix3<real>(transform))) * m_localPlane;
}

// ---- WorldGeom -----------------------------------------------------------------------------------------

real WorldGeom::GetDistance(Vec2) const {
    return -1;
}

Vec2 WorldGeom::GetNormal(Vec2) const {
    return Vec2();
}

real WorldGeom::GetArea() const {
    return INF;
}

real WorldGeom::GetInertiaSansMass() const {
    return INF;
}

BoundingBox2f WorldGeom::GetBoundingBox() const {
    return BoundingBox2f();
}

OBB2D WorldGeom::GetOBB() const {
    return AlignedBox(Vec2(), -INF);
}

Vec3 WorldGeom::GetBoundingCircle() const {
    return {0, 0, -INF};
}

}  // namespace physics
