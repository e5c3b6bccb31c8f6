#include "World.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <map>
#include <sstream>
#include <vector>

#include "app/entities/Chain.h"
#include "app/files/Serializer.h"
#include "physics/Particle.h"
#include "script/Expressions.h"
#include "support/SourceDir.h"
#include "util/Clock.h"
#include "util/FileSystem.h"

namespace app {

namespace {

double g_now = 100;

double Now() {
    return g_now;
}

// Replaces each "key = n" by a number that counts up with the n that are new; 0 stays.
String CountThrough(const String& text, const String& key) {
    const String lead = " " + key + " = ";
    std::map<String, size_t> seen;
    String result;
    size_t at = 0;
    for (size_t found; (found = text.find(lead, at)) != String::npos;) {
        const size_t start = found + lead.size();
        result += text.substr(at, found - at);
        at = text.find_first_not_of("0123456789", start);
        const String number = text.substr(start, at - start);
        const size_t count = number == "0" ? 0 : seen.emplace(number, seen.size() + 1).first->second;
        result += lead + std::to_string(count);
    }
    return result + text.substr(at);
}

// Takes the floating point numbers out of the text and leaves a "#" for each.
String TakeNumbers(const String& text, std::vector<double>& numbers) {
    String rest;
    const char* at = text.c_str();
    while (*at != 0) {
        char* end = nullptr;
        const bool starts = *at == '-' || (*at >= '0' && *at <= '9');
        const double number = starts ? std::strtod(at, &end) : 0;
        if (!starts || end == at || !memchr(at, '.', static_cast<size_t>(end - at))) {
            rest += *at++;
            continue;
        }
        numbers.push_back(number);
        rest += '#';
        at = end;
    }
    return rest;
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

}  // namespace

void World::SetUp() {
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

void World::TearDown() {
    GetApp().m_maxUndo->Set(GetApp().m_maxUndo->GetDefault());
    GetSim().m_running->SetValue(script::ValueToObject(GetSim().m_running->GetDefault()));
    GetApp().Clear();
    GetUndoer().Clear();
    util::Clock::SetSource(nullptr);
}

CircleEntityPtr World::AddCircle(math::Vec2 pos, float radius) {
    const CircleEntityPtr entity = new CircleEntity(new physics::Circle(radius, pos));
    GetApp().AddEntity(entity);
    return entity;
}

PolyEntityPtr World::AddBox(math::Vec2 min, math::Vec2 max) {
    const PolyEntityPtr entity = new PolyEntity(physics::MakeBoxPolygon(min.x, min.y, max.x, max.y));
    GetApp().AddEntity(entity);
    return entity;
}

PolyEntityPtr World::AddTriangle(math::Vec2 pos) {
    math::Vec2List outline;
    for (const math::Vec2 corner : {math::Vec2(0, 0), math::Vec2(1, 0), math::Vec2(0.25f, 0.75f)}) {
        outline.push_back(pos + corner);
    }
    const PolyEntityPtr entity = new PolyEntity(new physics::Polygon(outline));
    GetApp().AddEntity(entity);
    return entity;
}

PlaneEntityPtr World::AddPlane(math::Vec2 normal, float offset) {
    const PlaneEntityPtr entity = new PlaneEntity(new physics::Plane(normal, offset));
    GetSim().GetWorldBody()->AddGeom(entity->GetGeom());
    GetApp().AddEntity(entity);
    return entity;
}

void World::Join(const GeomEntity& a, const GeomEntity& b) {
    const auto body = util::DynamicCast<physics::Body>(a.GetGeom()->GetBody());
    GetSim().RemoveBody(util::DynamicCast<physics::Body>(b.GetGeom()->GetBody()));
    body->AddGeom(b.GetGeom());
}

void World::RunFor(int frames, float dt) {
    for (int i = 0; i < frames; ++i) {
        g_now += static_cast<double>(dt);
        GetApp().Update(dt);
    }
}

void World::AdvanceClock(double seconds) {
    g_now += seconds;
}

String World::Save() {
    return Serializer::Serialize(GetScene())->ToCode();
}

String World::SaveNumbered() {
    return CountThrough(CountThrough(CountThrough(Save(), "id"), "body"), "chain");
}

void World::Load(const String& text) {
    GetApp().Clear();
    Serializer::Deserialize(GetScene(), text);
}

String World::Describe() {
    std::ostringstream out;
    for (const EntityPtr& entity : GetApp().GetEntities()) {
        out << entity.Get() << (GetApp().GetSelection().Has(entity) ? " selected" : "") << " chain "
            << entity->GetChain().Get() << "\n";
    }
    out << "tracked " << GetScene().GetTrackedEntity().Get() << "\n" << Save() << "\n";
    for (const physics::BodyPtr& body : GetSim().GetBodies()) {
        out << body->GetID() << ": " << body->m_vel.x << " " << body->m_vel.y << " " << body->m_angVel
            << "\n";
    }
    for (const physics::ParticlePtr& particle : GetSim().GetParticles()) {
        out << particle->m_vel.x << " " << particle->m_vel.y << "\n";
    }
    return out.str();
}

void World::ExpectSameText(const String& a, const String& b) {
    std::vector<double> x, y;
    EXPECT_EQ(TakeNumbers(a, x), TakeNumbers(b, y));
    for (size_t i = 0; i < std::min(x.size(), y.size()); ++i) {
        EXPECT_NEAR(x[i], y[i], 1e-5 * std::max(1.0, std::fabs(x[i])));
    }
}

}  // namespace app
