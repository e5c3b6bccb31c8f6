#include "app/drawing/Background.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "app/scene/View.h"
#include "physics/Simulation.h"
#include "rendering/Gl.h"
#include "rendering/Renderer.h"
#include "rendering/TextureManager.h"
#include "util/FileSystem.h"
#include "util/ProfileTree.h"
#include "util/Random.h"

namespace app {

using math::Vec2;
using math::Vec4;
using rendering::Renderer;

namespace {

constexpr int CLOUD_COUNT = 2500;
constexpr float MIN_CLOUD_SIZE = 5, MAX_CLOUD_SIZE = 15;         // world units
constexpr float MIN_CLOUD_SPEED = 0.1f, MAX_CLOUD_SPEED = 0.2f;  // sizes per second: big ones are faster
// The box covers a large screen at the farthest zoom, seen at the clouds' slower speed.
constexpr float SCREEN_WIDTH = 2048, SCREEN_HEIGHT = 1280;  // GUI units
constexpr float ONE_OVER_PARALLAX = 1.4285715f;

// Clouds brought into a view: their middles from the upper left, in parts of the view, and their width.
struct CloudPlace {
    float x, y, width;
};
constexpr CloudPlace CLOUD_PLACES[] = {
    {0.27f, 0.42f, 0.17f}, {0.36f, 0.10f, 0.15f}, {0.90f, 0.13f, 0.22f}, {0.63f, 0.50f, 0.20f}};
constexpr float LEAST_WIDTH = 0.08f;  // of a cloud that one notices, in parts of the view
constexpr float MOST_WIDTH = 0.6f;    // likewise: of a larger one the view may show but empty margins
constexpr float CLOUD_GAP = 0.4f;     // between those that drift in, in parts of the view

const char* const FOLDER = "background/";
const char* const MASKS[] = {"*.png", "*.tga", "*.bmp", "*.jpg"};

float Wrap(float coordinate, float center, float period) {
    if (coordinate < center - period / 2) return coordinate + period;
    if (coordinate > center + period / 2) return coordinate - period;
    return coordinate;
}

bool IsIn(const math::BoundingBox2f& view, const Background::Cloud& cloud) {
    const Vec2 distance = cloud.position - view.GetCenter(), halfSize = view.GetSize() * 0.5f;
    const float half = cloud.size / 2;
    return std::fabs(distance.x) < halfSize.x + half && std::fabs(distance.y) < halfSize.y + half;
}

// Not those that were sent to a much closer view, and not those of a much farther one.
bool IsNoticed(const math::BoundingBox2f& view, const Background::Cloud& cloud) {
    const float width = view.GetSize().x;
    const bool isSeen = cloud.size >= std::min(LEAST_WIDTH * width, MIN_CLOUD_SIZE);
    return isSeen && cloud.size <= MOST_WIDTH * width && IsIn(view, cloud);
}

// From the plane of the clouds to GUI units; the world point in the middle of the view stays there.
math::TMatrix3<float> GetParallaxMatrix(const View& view) {
    constexpr float P = Background::PARALLAX;
    const Vec2 middle = view.GetMiddle();
    const auto shift = math::TMatrix3<float>::Translation((1 - P) * middle.x, (1 - P) * middle.y);
    return shift * math::TMatrix3<float>::Scale(P, P) * view.GetWorldToGUI();
}

}  // namespace

Background::Background(const View& view, const script::AttribPtr<bool>& drawClouds)
    : Component("Background"),
      m_opacity(script::DeclareAttrib(*this, "opacity", 0.9f)),
      m_skyColor(script::DeclareAttrib(*this, "skyColor", Vec4(0.3f, 0.4f, 1, 1))),
      m_horizonColor(script::DeclareAttrib(*this, "horizonColor", Vec4(0.8f, 0.9f, 1, 1))),
      m_view(view),
      m_drawClouds(drawClouds) {
    FindTextures();
}

// In order of their names, so that every machine shows the same sky.
void Background::FindTextures() {
    const util::FileSystem& files = util::FileSystem::Instance();
    util::StringList names;
    for (const char* const mask : MASKS) {
        const util::StringList found = files.ListFiles(files.GetTexturesDir() + FOLDER, mask);
        names.insert(names.end(), found.begin(), found.end());
    }
    std::sort(names.begin(), names.end());
    rendering::TextureManager& textures = rendering::TextureManager::Instance();
    for (const String& name : names) m_skyTextures.push_back(textures.Get(FOLDER + name));
    if (m_skyTextures.empty()) m_skyTextures.push_back(textures.Get("blank"));
    m_batches.resize(m_skyTextures.size());
}

void Background::CreateClouds() {
    m_wrapHeight = SCREEN_HEIGHT * (1 / View::GetMinZoom()) * ONE_OVER_PARALLAX;
    m_wrapWidth = SCREEN_WIDTH * (1 / View::GetMinZoom()) * ONE_OVER_PARALLAX;
    util::Random random;
    m_clouds.resize(CLOUD_COUNT);
    for (size_t i = 0; i < m_clouds.size(); ++i) {
        Cloud& cloud = m_clouds[i];
        cloud.size = random.GetUniform(MIN_CLOUD_SIZE, MAX_CLOUD_SIZE);
        cloud.position.x = random.GetUniform(0, m_wrapWidth);
        cloud.position.y = random.GetUniform(0, m_wrapHeight);
        cloud.velocity.x = random.GetUniform(MIN_CLOUD_SPEED, MAX_CLOUD_SPEED) * cloud.size;
        cloud.textureIndex = static_cast<uint32_t>(i % m_skyTextures.size());
    }
}

void Background::Update(float dt) {
    if (!m_drawClouds->Get()) return;
    if (m_clouds.empty()) CreateClouds();
    const physics::Simulation& simulation = physics::Simulation::Instance();
    const float t = simulation.GetRealtimeFraction() * simulation.m_timeFactor->Get() * dt;
    if (!math::IsFinite(t) || !(t > 0 && t <= 1) || !simulation.m_running->Get()) return;
    PROFILE_SECTION("Background::Update");
    for (Cloud& cloud : m_clouds) cloud.position += cloud.velocity * t;
}

void Background::Draw() {
    PROFILE_SECTION("Background::Draw");
    const rendering::ScopedMatrix matrix;
    const rendering::ScopedAttribs attribs;
    DrawSky();
    if (!m_drawClouds->Get() || m_clouds.empty()) return;
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    DrawClouds();
}

void Background::DrawSky() {
    PROFILE_SECTION("Draw sky color");
    const rendering::ScopedCapability untextured(GL_TEXTURE_2D, false);
    const Vec4& sky = m_skyColor->Get();
    const Vec4& horizon = m_horizonColor->Get();
    const rendering::ScopedCapability blended(GL_BLEND, sky.w < 1 || horizon.w < 1);
    const Vec2 size = GetSize();
    const Vec2 corners[4] = {{0, 0}, {size.x, 0}, size, {0, size.y}};
    const Vec4 colors[4] = {sky, sky, horizon, horizon};
    Renderer::Instance().DrawColored(corners, colors, 4);
}

void Background::DrawClouds() {
    const math::TMatrix3<float> toGUI = GetParallaxMatrix(m_view);
    const math::TMatrix3<float> fromGUI = Inverted(toGUI);
    WrapClouds(fromGUI(GetSize() * 0.5f));
    math::BoundingBox2f view;
    view.Extend(fromGUI({0, 0}));
    view.Extend(fromGUI(GetSize()));
    if (IsViewOfNewScene()) BringClouds(view);
    if (!CollectClouds(view)) SendClouds(view);
    Renderer::Instance().MultMatrix(toGUI);
    Renderer::Instance().SetColor({1, 1, 1, m_opacity->Get()});
    glEnable(GL_TEXTURE_2D);
    for (size_t i = 0; i < m_batches.size(); ++i) {
        if (m_batches[i].IsEmpty()) continue;
        const rendering::TexturePtr texture = m_skyTextures[i]->Get();
        const rendering::ScopedTexture bound(texture);
        if (texture) m_batches[i].Draw();
        m_batches[i].Clear();
    }
}

void Background::WrapClouds(Vec2 center) {
    PROFILE_SECTION("Wrapping");
    for (Cloud& cloud : m_clouds) {
        cloud.position.x = Wrap(cloud.position.x, center.x, m_wrapWidth);
        cloud.position.y = Wrap(cloud.position.y, center.y, m_wrapHeight);
    }
}

// Once the view has come to rest on the scene.
bool Background::IsViewOfNewScene() {
    if (m_sceneFits == m_view.GetSceneFits() || m_view.GetWorldToGUI() != m_view.GetTargetWorldToGUI())
        return false;
    m_sceneFits = m_view.GetSceneFits();
    return true;
}

// The sky that a user sees first is the same for everybody; a later one is left as it is.
void Background::BringClouds(const math::BoundingBox2f& view) {
    const auto isNoticed = [&view](const Cloud& cloud) { return IsNoticed(view, cloud); };
    const bool isFirst = !std::exchange(m_hasBroughtClouds, true);
    if (!isFirst && std::any_of(m_clouds.begin(), m_clouds.end(), isNoticed)) return;
    for (Cloud& cloud : m_clouds) {
        if (IsIn(view, cloud)) cloud.position.x += m_wrapWidth / 2;
    }
    for (size_t i = 0; i < std::size(CLOUD_PLACES); ++i) PlaceCloud(i, view, CLOUD_PLACES[i].x);
}

// When the wind has swept the sky, clouds drift in from the left, one behind the other.
void Background::SendClouds(const math::BoundingBox2f& view) {
    for (size_t i = 0; i < std::size(CLOUD_PLACES); ++i) {
        const bool isLarge = m_clouds[i].size > MOST_WIDTH * view.GetSize().x;
        if (isLarge && IsIn(view, m_clouds[i])) continue;  // it may be seen
        PlaceCloud(i, view, -CLOUD_PLACES[i].width / 2 - CLOUD_GAP * static_cast<float>(i));
    }
}

// At its height and in its size, with its middle at `x` from the left, in parts of the view.
void Background::PlaceCloud(size_t index, const math::BoundingBox2f& view, float x) {
    const CloudPlace& place = CLOUD_PLACES[index];
    const Vec2 size = view.GetSize();
    Cloud& cloud = m_clouds[index];
    cloud.velocity *= place.width * size.x / cloud.size;
    cloud.size = place.width * size.x;
    cloud.position = {view.min.x + x * size.x, view.max.y - place.y * size.y};
}

// Sorted by texture. They are not turned.
bool Background::CollectClouds(const math::BoundingBox2f& view) {
    bool any = false;
    for (const Cloud& cloud : m_clouds) {
        if (!IsIn(view, cloud)) continue;
        any = any || IsNoticed(view, cloud);
        const float half = cloud.size / 2;
        m_batches[cloud.textureIndex].AddSprite(cloud.position, {half, 0}, {0, half});
    }
    return any;
}

}  // namespace app
