#include "rendering/Texture.h"

#include <algorithm>
#include <tuple>

#include "logging/Log.h"
#include "rendering/Context.h"
#include "rendering/Gl.h"
#include "rendering/Recording.h"
#include "util/Assert.h"
#include "util/Exception.h"
#include "util/FileSystem.h"
#include "util/ProfileTree.h"

namespace rendering {

namespace {

auto AsTuple(const Texture::ImageType& t) {
    return std::tie(t.internalFormat, t.mipmaps, t.clampS, t.clampT, t.linearMin, t.linearMag, t.linearMip,
                    t.whiteBorder, t.density);
}

int BytesPerPixel(int internalFormat) {
    switch (internalFormat) {
        case GL_ALPHA:
        case GL_ALPHA8:
        case GL_LUMINANCE:
        case GL_LUMINANCE8:
            return 1;
        case GL_DEPTH_COMPONENT16:
        case GL_LUMINANCE_ALPHA:
        case GL_LUMINANCE8_ALPHA8:
        case GL_LUMINANCE16F_ARB:
            return 2;
        case GL_RGB:
        case GL_DEPTH_COMPONENT24:
            return 3;
        case GL_RGBA:
        case GL_RGBA8:
        case GL_DEPTH_COMPONENT32:
            return 4;
        case GL_RGB32F_ARB:  // as drivers pack it: at half precision
        case GL_RGBA16F_ARB:
            return 8;
        case GL_RGBA32F_ARB:
            return 16;
        default:
            return -1;
    }
}

constexpr uint32_t ICON_DENSITY = 4;  // as art/build.py renders them

bool IsDepthFormat(int internalFormat) {
    return internalFormat == GL_DEPTH_COMPONENT || internalFormat == GL_DEPTH_COMPONENT16 ||
           internalFormat == GL_DEPTH_COMPONENT24 || internalFormat == GL_DEPTH_COMPONENT32;
}

void SelectUnit(int unit) {
    glActiveTextureARB(GL_TEXTURE0_ARB + static_cast<GLenum>(unit));
}

// Binds for a scope and gives back what was bound: a texture may be loaded in the middle of somebody's
// drawing.
class ScopedBinding {
  public:
    explicit ScopedBinding(GLuint id) {
        glGetIntegerv(GL_TEXTURE_BINDING_2D, &m_previous);
        glBindTexture(GL_TEXTURE_2D, id);
    }
    ~ScopedBinding() { glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(m_previous)); }

  private:
    GLint m_previous = 0;
};

GLint MinFilter(const Texture::ImageType& type) {
    if (!type.mipmaps) return type.linearMin ? GL_LINEAR : GL_NEAREST;
    if (type.linearMin && type.linearMip) return GL_LINEAR_MIPMAP_LINEAR;
    if (type.linearMip) return GL_NEAREST_MIPMAP_LINEAR;
    return type.linearMin ? GL_LINEAR_MIPMAP_NEAREST : GL_NEAREST_MIPMAP_NEAREST;
}

bool IsPowerOfTwo(uint32_t n) {
    return (n & (n - 1)) == 0;
}

GLint WrapMode(uint32_t clamp) {
    if (!clamp) return GL_REPEAT;
    return HasBorderClamp() ? GL_CLAMP_TO_BORDER : GL_CLAMP_TO_EDGE;
}

}  // namespace

bool operator<(const Texture::ImageType& a, const Texture::ImageType& b) {
    return AsTuple(a) < AsTuple(b);
}

// ---- ways of sampling ---------------------------------------------------------------------------------

Texture::ImageType Texture::ImageType::Icon() {
    return {GL_RGBA, 1, 1, 1, 1, 1, 1, 0, ICON_DENSITY};
}
Texture::ImageType Texture::ImageType::Tile() {
    return {GL_RGBA, 1, 0, 0, 1, 1, 0, 0, ICON_DENSITY};
}
Texture::ImageType Texture::ImageType::Sprite() {
    return {GL_RGBA, 1, 1, 1, 1, 1, 0};
}
Texture::ImageType Texture::ImageType::Smooth() {
    return {GL_RGBA, 0, 1, 1, 1, 1, 0};
}
Texture::ImageType Texture::ImageType::Profile() {
    return {GL_RGBA, 0, 1, 1, 1, 1, 0};
}
Texture::ImageType Texture::ImageType::Font() {
    return {GL_ALPHA, 0, 1, 1, 1, 1, 0};
}
Texture::ImageType Texture::ImageType::Distance() {
    return {GL_ALPHA, 1, 1, 1, 1, 1, 0, 1};
}
Texture::ImageType Texture::ImageType::Frame() {
    return {GL_RGBA, 0, 0, 0, 1, 1, 0};
}

// ---- life ---------------------------------------------------------------------------------------------

Texture::Texture(const AbstractImagePtr& image, const ImageType& type)
    : m_image(image), m_width(image->GetWidth()), m_height(image->GetHeight()), m_type(type) {
    if (Context::Exists()) Upload();
}

Texture::~Texture() noexcept(false) {
    // In a later context the name may belong to another texture.
    if (m_id == 0 || m_generation != Context::GetGeneration()) return;
    if (m_frameBuffer != 0) glDeleteFramebuffersEXT(1, &m_frameBuffer);
    glDeleteTextures(1, &m_id);
}

void Texture::Upload() {
    static uint64_t s_uploads = 0;
    m_serial = ++s_uploads;
    glGenTextures(1, &m_id);
    m_generation = Context::GetGeneration();
    const ScopedBinding binding(m_id);
    const bool stretches = !IsPowerOfTwo(m_width) || !IsPowerOfTwo(m_height);
    if (m_type.mipmaps && stretches && !HasFreeTextureSizes()) {
        StretchToPowersOfTwo();
    } else {
        UploadLevels();
    }
    SetSampling();
}

// All levels are made here. A driver that draws in software would compile programs for it at the start.
void Texture::UploadLevels() const {
    GLint level = 0;
    for (AbstractImagePtr image = m_image; image; image = m_type.mipmaps ? image->MakeHalf() : nullptr) {
        glTexImage2D(GL_TEXTURE_2D, level++, m_type.internalFormat, static_cast<GLsizei>(image->GetWidth()),
                     static_cast<GLsizei>(image->GetHeight()), 0, image->GetPixelFormat(),
                     image->GetPixelType(), image->GetPixels());
    }
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_LEVEL, level - 1);
}

// Which blurs it.
void Texture::StretchToPowersOfTwo() const {
    gluBuild2DMipmaps(GL_TEXTURE_2D, m_type.internalFormat, static_cast<GLsizei>(m_width),
                      static_cast<GLsizei>(m_height), m_image->GetPixelFormat(), m_image->GetPixelType(),
                      m_image->GetPixels());
}

void Texture::SetSampling() const {
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, WrapMode(m_type.clampS));
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, WrapMode(m_type.clampT));
    const float border = m_type.whiteBorder ? 1.0f : 0.0f;
    const GLfloat borderColor[4] = {border, border, border, border};
    glTexParameterfv(GL_TEXTURE_2D, GL_TEXTURE_BORDER_COLOR, borderColor);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, MinFilter(m_type));
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, m_type.linearMag ? GL_LINEAR : GL_NEAREST);
    if (!IsDepthFormat(m_type.internalFormat)) return;
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_COMPARE_MODE, GL_COMPARE_R_TO_TEXTURE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_COMPARE_FUNC, GL_LEQUAL);
    glTexParameteri(GL_TEXTURE_2D, GL_DEPTH_TEXTURE_MODE, GL_INTENSITY);
}

// ---- use ----------------------------------------------------------------------------------------------

static void BindTo(int unit, GLuint id, uint64_t serial) {
    Recording::NoteTexture(unit, serial);
    if (unit > 0) {
        DATA_ASSERTION(HasMultiTexturing());
        SelectUnit(unit);
    }
    glBindTexture(GL_TEXTURE_2D, id);
    if (unit > 0) SelectUnit(0);
}

void Texture::Bind(int unit) const {
    BindTo(unit, m_id, m_serial);
}

void Texture::Unbind(int unit) const {
    BindTo(unit, 0, 0);
}

math::Vec2 Texture::GetUnits() const {
    return math::Vec2(static_cast<float>(m_width), static_cast<float>(m_height)) /
           static_cast<float>(m_type.density);
}

unsigned int Texture::MemoryUsage() const {
    const int pixelSize = BytesPerPixel(m_type.internalFormat);
    DATA_ASSERTION_TEXT(pixelSize != -1, "!\"Bad image format\"");
    const unsigned int size = m_width * m_height * static_cast<unsigned int>(pixelSize);
    return m_type.mipmaps ? static_cast<unsigned int>(uint64_t{size} * 4 / 3) : size;
}

ImageRGBA32Ptr Texture::Read() const {
    PROFILE_SECTION("Read");
    const ImageRGBA32Ptr image = new ImageRGBA32(m_width, m_height);
    if (m_id == 0) return image;
    const ScopedBinding binding(m_id);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, image->GetData().data());
    return image;
}

void Texture::Copy(math::Vec2i min, math::Vec2i max) {
    PROFILE_SECTION("Texture::Copy");
    Recording::NoteUnknown();
    const math::Vec2i frame = Context::GetSize();
    const math::Vec2i from(std::max(min.x, 0), std::max(min.y, 0));
    const math::Vec2i size(std::min({max.x, frame.x, static_cast<int>(m_width)}) - from.x,
                           std::min({max.y, frame.y, static_cast<int>(m_height)}) - from.y);
    if (m_id == 0 || size.x <= 0 || size.y <= 0) return;
    const ScopedBinding binding(m_id);
    Context::CopyTexSubImage(from, size);
}

// ---- as a target --------------------------------------------------------------------------------------

unsigned int Texture::GetFrameBuffer() const {
    if (m_id == 0 || !HasTargets()) return 0;
    if (!m_triedFrameBuffer) MakeFrameBuffer();
    return m_frameBuffer;
}

// Drivers may refuse a format or a size.
void Texture::MakeFrameBuffer() const {
    m_triedFrameBuffer = true;
    glGenFramebuffersEXT(1, &m_frameBuffer);
    bool isComplete = false;
    {
        const ScopedTarget target(*this);
        glFramebufferTexture2DEXT(GL_FRAMEBUFFER_EXT, GL_COLOR_ATTACHMENT0_EXT, GL_TEXTURE_2D, m_id, 0);
        isComplete = glCheckFramebufferStatusEXT(GL_FRAMEBUFFER_EXT) == GL_FRAMEBUFFER_COMPLETE_EXT;
    }
    if (isComplete) return;
    glDeleteFramebuffersEXT(1, &m_frameBuffer);
    m_frameBuffer = 0;
}

ScopedTarget::ScopedTarget(const Texture& texture) {
    Recording::NoteUnknown();
    glGetIntegerv(GL_FRAMEBUFFER_BINDING_EXT, &m_previous);
    glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, texture.GetFrameBuffer());
}

ScopedTarget::~ScopedTarget() {
    glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, static_cast<GLuint>(m_previous));
}

// ---- from images and files ----------------------------------------------------------------------------

namespace {

const char* const EXTENSIONS[] = {"png", "tga", "bmp", "jpg"};

bool HasExtension(const String& name) {
    return name.size() > 4 && name[name.size() - 4] == '.';
}

String FindImage(const String& name) {
    const util::FileSystem& files = util::FileSystem::Instance();
    const String dataDir = files.GetDataDir();
    const bool isComplete = name.compare(0, dataDir.size(), dataDir) == 0;
    const String path = isComplete ? name : files.GetTexturesDir() + name;
    if (files.Exists(path) || HasExtension(name)) return path;
    for (const char* const extension : EXTENSIONS) {
        const String candidate = path + "." + extension;
        if (files.Exists(candidate)) return candidate;
    }
    return path;
}

}  // namespace

Texture* TextureFromImage(const ImageRGBA32Ptr& image, Texture::ImageType type) {
    return new Texture(image, type);
}

Texture* TextureFromImageFloat(const ImageFloatPtr& image, Texture::ImageType type) {
    return new Texture(image, type);
}

util::Ahead<Picture> BeginPicture(const String& name, Texture::ImageType type) {
    return util::Ahead<Picture>(
        [path = FindImage(name), withHalves = type.mipmaps != 0] { return ReadPicture(path, withHalves); });
}

Texture* TextureFromPath(const String& name, Texture::ImageType type, util::Ahead<Picture> ahead) {
    try {
        const String path = FindImage(name);
        if (ahead.IsEmpty()) return new Texture(ImageRGBA32::LoadFile(path), type);
        return new Texture(ImageRGBA32::FromPicture(ahead.Take(), path), type);
    } catch (const std::exception& e) {
        LogException(e, WHERE);
        Log(logging::Error, "Failed to load image " + name);
        return nullptr;
    }
}

}  // namespace rendering
