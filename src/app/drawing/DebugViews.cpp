#include "app/drawing/DebugViews.h"

#include <cmath>

#include "physics/Body.h"
#include "physics/Particle.h"
#include "physics/Polygon.h"
#include "physics/Simulation.h"
#include "rendering/Renderer.h"
#include "rendering/ShapePainter.h"

namespace app {

using math::Vec2;
using math::Vec2List;
using math::Vec4;
using rendering::Renderer;

namespace {

constexpr Vec4 WHITE{1, 1, 1, 1};
constexpr Vec4 RED{1, 0, 0, 1};
constexpr Vec4 GREEN{0.4f, 1, 0.4f, 1};
constexpr float VELOCITY_TIME = 0.1f;  // s of flight that a velocity's line shows
constexpr int CIRCLE_SEGMENTS = 48;

void DrawPointsIn(const Vec4& color, const Vec2List& points) {
    const rendering::ScopedColor scope(color);
    Renderer::Instance().DrawPoints(points.data(), points.size());
}

void DrawSegmentsIn(const Vec4& color, const Vec2List& points) {
    const rendering::ScopedColor scope(color);
    Renderer::Instance().DrawSegments(points.data(), points.size());
}

void DrawBox(const math::OBB2D& box, const math::RigidTransform& transform) {
    const Vec2 u = box.axis[0] * box.halfSize.x, v = box.axis[1] * box.halfSize.y;
    const Vec2List corners = {transform(box.center - u - v), transform(box.center + u - v),
                              transform(box.center + u + v), transform(box.center - u + v)};
    Renderer::Instance().DrawLines(corners, true);
}

void DrawBoundingCircle(const math::Vec3& circle) {
    Vec2List points;
    for (int i = 0; i < CIRCLE_SEGMENTS; ++i) {
        const float angle = math::TWO_PI * static_cast<float>(i) / CIRCLE_SEGMENTS;
        points.push_back(Vec2(circle.x, circle.y) + Vec2(std::cos(angle), std::sin(angle)) * circle.z);
    }
    Renderer::Instance().DrawLines(points, true);
}

}  // namespace

void DrawBodyCenters(const physics::BodyList& bodies) {
    Vec2List points;
    for (const physics::BodyPtr& body : bodies) points.push_back(body->m_pos);
    DrawPointsIn(GREEN, points);
}

void DrawParticleCenters(const physics::ParticleList& particles) {
    Vec2List segments, points;
    for (const physics::ParticlePtr& particle : particles) {
        segments.push_back(particle->m_pos);
        segments.push_back(particle->m_pos + particle->m_vel * VELOCITY_TIME);
        points.push_back(particle->m_pos);
    }
    DrawSegmentsIn(WHITE, segments);
    DrawPointsIn(RED, points);
}

void DrawContacts(float normalLength) {
    Vec2List segments, points;
    for (const physics::ContactPtr& contact : physics::Simulation::Instance().GetContacts()) {
        segments.push_back(contact->m_point);
        segments.push_back(contact->m_point + contact->m_normal * normalLength);
        points.push_back(contact->m_point);
    }
    DrawSegmentsIn(RED, segments);
    DrawPointsIn(RED, points);
}

void DrawDebugLayers(const physics::Geom& geom, const DrawSettings& settings) {
    const auto* const polygon = dynamic_cast<const physics::Polygon*>(&geom);
    const bool drawMapOBB = polygon != nullptr && settings.m_drawMapOBBs->Get();
    const bool drawVertices = polygon != nullptr && settings.m_drawVertices->Get();
    if (!settings.m_drawOBBs->Get() && !settings.m_drawBCs->Get() && !drawMapOBB && !drawVertices) return;
    rendering::ShapePainter::Instance().Flush();
    if (settings.m_drawOBBs->Get()) DrawBox(geom.GetOBB(), {});
    if (settings.m_drawBCs->Get()) DrawBoundingCircle(geom.GetBoundingCircle());
    if (drawMapOBB) DrawBox(polygon->GetMapOBB(), polygon->GetTransform());
    if (drawVertices) DrawPointsIn(RED, polygon->GetWorldVertices());
}

}  // namespace app
