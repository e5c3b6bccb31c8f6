#include "rendering/Renderer.h"

#include <boost/lexical_cast.hpp>
#include <ctime>
#include <vector>

#include "logging/Log.h"
#include "rendering/Context.h"
#include "rendering/Gl.h"
#include "rendering/Recording.h"
#include "util/FileSystem.h"
#include "util/FileWrapper.h"
#include "util/Guarded.h"

namespace rendering {

namespace {

constexpr int MAX_SCREENSHOTS = 10000;  // of one day
constexpr size_t TGA_HEADER_SIZE = 18;

// Vertex arrays for the length of a scope.
class VertexArrays {
  public:
    VertexArrays(const math::Vec2* points, const math::Vec2* texCoords) : m_textured(texCoords != nullptr) {
        glEnableClientState(GL_VERTEX_ARRAY);
        glVertexPointer(2, GL_FLOAT, sizeof(math::Vec2), points);
        if (!m_textured) return;
        glEnableClientState(GL_TEXTURE_COORD_ARRAY);
        glTexCoordPointer(2, GL_FLOAT, sizeof(math::Vec2), texCoords);
    }
    ~VertexArrays() {
        glDisableClientState(GL_VERTEX_ARRAY);
        if (m_textured) glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    }

  private:
    bool m_textured;
};

void DrawUntextured(GLenum mode, const math::Vec2* points, size_t nPoints) {
    if (nPoints == 0) return;
    const ScopedCapability texturing(GL_TEXTURE_2D, false);
    if (!Recording::Note(mode, {{points, nPoints * sizeof(*points)}})) return;
    const VertexArrays arrays(points, nullptr);
    glDrawArrays(mode, 0, static_cast<GLsizei>(nPoints));
}

String Today() {
    const std::time_t now = std::time(nullptr);
    char date[16];
    std::strftime(date, sizeof(date), "%y%m%d", std::localtime(&now));
    return date;
}

String FindScreenshotPath(const String& prefix) {
    const util::FileSystem& files = util::FileSystem::Instance();
    const String base = prefix + "_" + Today() + "_";
    for (int i = 0; i < MAX_SCREENSHOTS; ++i) {
        const String candidate = base + boost::lexical_cast<String>(i) + ".tga";
        if (!files.Exists(candidate)) return candidate;
    }
    return files.GetWorkDir() + "to_many_screenshots.tga";
}

void MakeFolderOf(const String& path) {
    const size_t slash = path.rfind('/');
    if (slash != String::npos && slash != 0) util::FileSystem::Instance().MakeDir(path.substr(0, slash));
}

// Uncompressed true colour, 24 bits, origin at the lower left: the order in which GL reads the frame.
void WriteTGAHeader(util::FILEWrapper& file, int width, int height) {
    unsigned char header[TGA_HEADER_SIZE] = {};
    header[2] = 2;  // image type
    header[12] = static_cast<unsigned char>(width & 0xff);
    header[13] = static_cast<unsigned char>(width >> 8);
    header[14] = static_cast<unsigned char>(height & 0xff);
    header[15] = static_cast<unsigned char>(height >> 8);
    header[16] = 24;  // bits per pixel
    file.Write(header, sizeof(header));
}

void SaveTGA(const String& path) {
    static std::vector<unsigned char> s_pixels;  // kept from call to call
    GLint viewport[4];
    glGetIntegerv(GL_VIEWPORT, viewport);
    const int width = viewport[2], height = viewport[3];
    const size_t size = size_t{3} * static_cast<size_t>(width) * static_cast<size_t>(height);
    if (s_pixels.size() < size) s_pixels.resize(size);
    Context::ReadPixels(width, height, GL_BGR, s_pixels.data());

    util::FILEWrapper file(path, "wb");
    WriteTGAHeader(file, width, height);
    file.Write(s_pixels.data(), size);
    file.Close();
    Log(logging::Info, "Screenshot saved to \"" + path + "\"");
}

}  // namespace

// ---- colour -------------------------------------------------------------------------------------------

Renderer::Renderer() = default;

void Renderer::SetColor(const math::Vec4& color) {
    if (color == m_color) return;
    m_color = color;
    RestoreColor();
}

void Renderer::MultColor(const math::Vec4& color) {
    if (color == math::Vec4(1, 1, 1, 1)) return;
    SetColor(m_color * color);
}

void Renderer::RestoreColor() {
    if (Context::Exists()) glColor4fv(&m_color.x);
}

// ---- matrices -----------------------------------------------------------------------------------------

void Renderer::MultMatrix(const math::TMatrix3<float>& matrix) {
    const auto& m = matrix.m;
    // GL reads column after column.
    const float columns[16] = {m[0][0], m[1][0], 0, m[2][0], m[0][1], m[1][1], 0, m[2][1],
                               0,       0,       1, 0,       m[0][2], m[1][2], 0, m[2][2]};
    glMultMatrixf(columns);
}

void Renderer::MultMatrix(const math::RigidTransform& transform) {
    MultMatrix(math::TMatrix3<float>(transform));
}

// ---- shapes -------------------------------------------------------------------------------------------

void Renderer::DrawLines(const math::Vec2List& points, bool closed) {
    DrawLines(points.data(), points.size(), closed);
}

void Renderer::DrawLines(const math::Vec2* points, size_t nPoints, bool closed) {
    DrawUntextured(closed ? GL_LINE_LOOP : GL_LINE_STRIP, points, nPoints);
}

void Renderer::DrawSegments(const math::Vec2* points, size_t nPoints) {
    DrawUntextured(GL_LINES, points, nPoints);
}

void Renderer::DrawPoints(const math::Vec2* points, size_t nPoints) {
    DrawUntextured(GL_POINTS, points, nPoints);
}

void Renderer::DrawQuad(math::Vec2 min, math::Vec2 max, math::Vec2 tcMin, math::Vec2 tcMax) {
    const math::Vec2 points[4] = {min, {max.x, min.y}, max, {min.x, max.y}};
    const math::Vec2 texCoords[4] = {tcMin, {tcMax.x, tcMin.y}, tcMax, {tcMin.x, tcMax.y}};
    DrawPolygon(points, texCoords, 4);
}

void Renderer::DrawPolygon(const math::Vec2* points, const math::Vec2* texCoords, size_t nPoints) {
    if (nPoints < 3) return;
    const size_t size = nPoints * sizeof(*points);
    if (!Recording::Note(GL_TRIANGLE_FAN, {{points, size}, {texCoords, size}})) return;
    const VertexArrays arrays(points, texCoords);
    glDrawArrays(GL_TRIANGLE_FAN, 0, static_cast<GLsizei>(nPoints));
}

void Renderer::DrawColored(const math::Vec2* points, const math::Vec4* colors, size_t nPoints) {
    if (nPoints < 3) return;
    const ScopedCapability untextured(GL_TEXTURE_2D, false);
    const Recording::Bytes vertices{points, nPoints * sizeof(*points)},
        tints{colors, nPoints * sizeof(*colors)};
    if (!Recording::Note(GL_TRIANGLE_FAN, {vertices, tints})) return;
    const VertexArrays arrays(points, nullptr);
    glEnableClientState(GL_COLOR_ARRAY);
    glColorPointer(4, GL_FLOAT, sizeof(math::Vec4), colors);
    glDrawArrays(GL_TRIANGLE_FAN, 0, static_cast<GLsizei>(nPoints));
    glDisableClientState(GL_COLOR_ARRAY);
    RestoreColor();  // a colour array leaves GL's colour undefined
}

// ---- screenshots --------------------------------------------------------------------------------------

void Renderer::Screenshot(String prefix) {
    const auto save = [&] {
        MakeFolderOf(prefix);
        SaveTGA(FindScreenshotPath(prefix));
    };
    util::Guarded(save, "Could not save the screenshot: ", logging::Error);
}

// ---- scopes -------------------------------------------------------------------------------------------

ScopedAttribs::ScopedAttribs() : m_color(Renderer::Instance().GetColor()) {
    glPushAttrib(GL_ALL_ATTRIB_BITS);
}

ScopedAttribs::~ScopedAttribs() {
    glPopAttrib();
    Renderer::Instance().SetColor(m_color);
    Renderer::Instance().RestoreColor();
}

ScopedColor::ScopedColor() : m_kept(Renderer::Instance().GetColor()) {}

ScopedColor::ScopedColor(const math::Vec4& color) : m_kept(Renderer::Instance().GetColor()) {
    Renderer::Instance().SetColor(color);
}

ScopedColor::ScopedColor(const math::Vec3& factor) : m_kept(Renderer::Instance().GetColor()) {
    Renderer::Instance().MultColor({factor.x, factor.y, factor.z, 1});
}

ScopedColor::~ScopedColor() {
    Renderer::Instance().SetColor(m_kept);
}

ScopedMatrix::ScopedMatrix() {
    glPushMatrix();
}

ScopedMatrix::~ScopedMatrix() {
    glPopMatrix();
}

ScopedCapability::ScopedCapability(unsigned int capability, bool enabled)
    : m_capability(capability), m_wasEnabled(glIsEnabled(capability) == GL_TRUE) {
    if (enabled) {
        glEnable(capability);
    } else {
        glDisable(capability);
    }
}

ScopedCapability::~ScopedCapability() {
    if (m_wasEnabled) {
        glEnable(m_capability);
    } else {
        glDisable(m_capability);
    }
}

}  // namespace rendering
