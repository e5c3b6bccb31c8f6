#include "SceneFixture.h"

#include <algorithm>
#include <limits>
#include <sstream>
#include <vector>

#include "app/entities/Chain.h"
#include "app/entities/FixJointEntity.h"
#include "app/entities/HingeEntity.h"
#include "app/entities/SpringEntity.h"
#include "app/files/Serializer.h"
#include "physics/Particle.h"
#include "script/Expressions.h"
#include "support/SourceDir.h"
#include "util/Clock.h"
#include "util/FileSystem.h"

namespace test {

using namespace app;

namespace {

double g_now = 100;

double Now() {
    return g_now;
}

// The words of the interface, beside the scratch folder's other data: a test may add to them.
void CopyLanguages() {
    const util::FileSystem& files = util::FileSystem::Instance();
    if (files.Exists(files.GetLanguageDir())) return;
    files.MakeDir(files.GetLanguageDir());
    const String shipped = test::GetSourceDir() + "/Data/Language/";
    for (const String& name : files.ListFiles(shipped, "*")) {
        files.WriteFileAtomically(files.GetLanguageDir() + name, files.ReadFile(shipped + name));
    }
}

std::ptrdiff_t CountEntities() {
    const auto& all = script::Reflected::GetInstances();
    return std::count_if(all.begin(), all.end(),
                         [](script::Reflected* object) { return dynamic_cast<Entity*>(object) != nullptr; });
}

}  // namespace

void SceneFixture::SetUp() {
    CopyLanguages();
    util::Clock::SetSource(&Now);
    g_now = 100;
    GetSim();
    GetApp().SetSize(800, 600);
    GetSim().m_running->SetValue(script::ValueToObject(false));
    GetApp().Clear();
    GetUndoer().Clear();
    GetView().SetDefaultView(false);
}

void SceneFixture::TearDown() {
    GetApp().m_maxUndo->Set(GetApp().m_maxUndo->GetDefault());
    GetSim().m_running->SetValue(script::ValueToObject(GetSim().m_running->GetDefault()));
    GetApp().Clear();
    GetUndoer().Clear();
    util::Clock::SetSource(nullptr);
    EXPECT_EQ(CountEntities(), 0) << "something keeps them alive";
}

CircleEntityPtr SceneFixture::AddCircle(math::Vec2 pos, float radius) {
    const CircleEntityPtr entity = new CircleEntity(new physics::Circle(radius, pos));
    GetApp().AddEntity(entity);
    return entity;
}

PolyEntityPtr SceneFixture::AddBox(math::Vec2 min, math::Vec2 max) {
    const PolyEntityPtr entity = new PolyEntity(physics::MakeBoxPolygon(min.x, min.y, max.x, max.y));
    GetApp().AddEntity(entity);
    return entity;
}

PolyEntityPtr SceneFixture::AddTriangle(math::Vec2 pos) {
    math::Vec2List outline;
    for (const math::Vec2 corner : {math::Vec2(0, 0), math::Vec2(1, 0), math::Vec2(0.25f, 0.75f)}) {
        outline.push_back(pos + corner);
    }
    const PolyEntityPtr entity = new PolyEntity(new physics::Polygon(outline));
    GetApp().AddEntity(entity);
    return entity;
}

PlaneEntityPtr SceneFixture::AddPlane(math::Vec2 normal, float offset) {
    const PlaneEntityPtr entity = new PlaneEntity(new physics::Plane(normal, offset));
    GetSim().GetWorldBody()->AddGeom(entity->GetGeom());
    GetApp().AddEntity(entity);
    return entity;
}

template <class JointPtr>
static JointPtr AddJoint(Scene& scene, const JointPtr& joint, math::Vec2 p0, math::Vec2 p1) {
    joint->SetScene(&scene);
    joint->Attach(p0, p1);
    EXPECT_FALSE(joint->IsOrphaned());
    joint->Rebuild();
    scene.AddEntity(joint);
    return joint;
}

constexpr math::real JOINT_SIZE = 0.2f;  // m

HingeEntityPtr SceneFixture::AddHinge(math::Vec2 pos) {
    return AddJoint(GetScene(), HingeEntityPtr(new HingeEntity(JOINT_SIZE)), pos, pos);
}

FixJointEntityPtr SceneFixture::AddFixJoint(math::Vec2 pos) {
    return AddJoint(GetScene(), FixJointEntityPtr(new FixJointEntity(JOINT_SIZE)), pos, pos);
}

SpringEntityPtr SceneFixture::AddSpring(math::Vec2 from, math::Vec2 to) {
    return AddJoint(GetScene(), SpringEntityPtr(new SpringEntity(JOINT_SIZE)), from, to);
}

void SceneFixture::Join(const GeomEntity& a, const GeomEntity& b) {
    const auto body = util::DynamicCast<physics::Body>(a.GetGeom()->GetBody());
    GetSim().RemoveBody(util::DynamicCast<physics::Body>(b.GetGeom()->GetBody()));
    body->AddGeom(b.GetGeom());
}

void SceneFixture::RunFor(int frames, float dt) {
    for (int i = 0; i < frames; ++i) {
        g_now += static_cast<double>(dt);
        GetApp().Update(dt);
    }
}

void SceneFixture::AdvanceClock(double seconds) {
    g_now += seconds;
}

String SceneFixture::Save() {
    return Serializer::Serialize(GetScene())->ToCode();
}

void SceneFixture::Load(const String& text) {
    GetApp().Clear();
    Serializer::Deserialize(GetScene(), text);
}

String SceneFixture::Describe() {
    std::ostringstream out;
    out.precision(std::numeric_limits<float>::max_digits10);
    for (const EntityPtr& entity : GetApp().GetEntities()) {
        if (!entity->IsAlive()) continue;  // the next update retires it
        out << entity.Get() << (GetApp().GetSelection().Has(entity) ? " selected" : "") << " chain "
            << entity->GetChain().Get() << "\n";
    }
    const EntityPtr tracked = GetScene().GetTrackedEntity();
    out << "tracked " << (tracked && tracked->IsAlive() ? tracked.Get() : nullptr) << "\n" << Save() << "\n";
    for (const physics::BodyPtr& body : GetSim().GetBodies()) {
        out << body->GetID() << ":";
        for (const float value : {body->m_pos.x, body->m_pos.y, body->m_angle, body->m_vel.x, body->m_vel.y,
                                  body->m_angVel, body->m_mass, body->m_inertia}) {
            out << " " << value;
        }
        out << "\n";
    }
    for (const physics::ParticlePtr& particle : GetSim().GetParticles()) {
        out << particle->m_vel.x << " " << particle->m_vel.y << "\n";
    }
    return out.str();
}

}  // namespace test
