#pragma once

#include "app/entities/Entity.h"
#include "physics/Geom.h"
#include "script/Attributes.h"

namespace app {

// An entity around one geom. Its attributes are views on the geom's fields.
class GeomEntity : public Entity {
  public:
    GeomEntity(const String& name, const physics::GeomPtr& geom);
    ~GeomEntity() noexcept(false) override;

    void UpdateBodyPtr() override;
    bool IsPointInside(math::Vec2 point) const override;

    // Without a body the geom gets one of its own.
    void AddToSimulation() override;
    // Takes the geom out of its body, and the body out of the world when that was its last.
    void RemoveFromSimulation() override;
    bool IsInSimulation() const override;

    // Moves the geom by way of its body, so other geoms of the body follow. On an immovable body it moves
    // alone.
    void Transform(const math::RigidTransform& transform) override;
    void BeginMove() override;
    void EndMove() override;

    void Serialize(EntitySerializer& out) const override;
    // The place goes into the geom alone; a body takes it in with its next SetGeoms.
    void Deserialize(const EntitySerializer& in) override;
    math::BoundingBox2f GetBoundingBox() const override { return m_geom->GetBoundingBox(); }

    const physics::GeomPtr& GetGeom() const { return m_geom; }
    // The body as of the last UpdateBodyPtr; null outside the world.
    const physics::BodyPtr& GetBody() const { return m_body; }

    const script::TAttribPtr<float> m_friction;
    const script::TAttribPtr<float> m_restitution;
    const script::TAttribPtr<bool> m_collideWater;
    const script::TAttribPtr<int> m_collideSet;  // bit mask, see physics::Geom

  private:
    const physics::GeomPtr m_geom;
    physics::BodyPtr m_body;                // a cache
    math::RigidTransform m_startTransform;  // of the geom at the start of a move
};

// A geom with an end: it has a mass.
class FiniteGeomEntity : public GeomEntity {
  public:
    FiniteGeomEntity(const String& name, const physics::GeomPtr& geom);

    // The places of the drops that fill the shape when it turns into water; at least one, about `most` at
    // most.
    virtual std::vector<math::Vec2> GetWaterPoints(int most) const;

    // kg/m^2. Values that are not above 0 or not finite are ignored: they would cost the geom its body.
    const script::TAttribPtr<float> m_density;

  private:
    void SetDensity(float density);
};

// A triangle wave over [0, size]: turns the length along an outline into a texture coordinate without seam.
// Throws BadDataException unless 0 <= c <= size.
float CircConverter(float c, float size);

}  // namespace app
