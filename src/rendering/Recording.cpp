#include "rendering/Recording.h"

#include <cstring>

#include "rendering/Context.h"
#include "rendering/Gl.h"
#include "rendering/Renderer.h"

namespace rendering {

Recording* Recording::s_present = nullptr;

// The present recording for the length of a take, however it ends.
class Recording::Scope {
  public:
    explicit Scope(Recording* recording) { s_present = recording; }
    ~Scope() { s_present = nullptr; }
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;
};

bool Recording::Take(Effect effect, const std::function<void()>& draw) {
    m_place = 0;
    m_isSame = true;
    m_effect = effect;
    const Scope scope(this);
    AddFrame();
    draw();
    m_isSame = m_isSame && m_place == m_bytes.size();
    m_bytes.resize(m_place);
    return m_isSame;
}

// From the first difference on the bytes of the last take give way to those of this one.
void Recording::Add(const void* data, size_t size) {
    const bool fits = m_place + size <= m_bytes.size();
    m_isSame = m_isSame && fits && std::memcmp(m_bytes.data() + m_place, data, size) == 0;
    if (!m_isSame) {
        const auto* const bytes = static_cast<const unsigned char*>(data);
        m_bytes.resize(m_place);
        m_bytes.insert(m_bytes.end(), bytes, bytes + size);
    }
    m_place += size;
}

// What all of a take has in common.
void Recording::AddFrame() {
    AddValue(Context::GetGeneration());
    AddValue(Context::GetSize());
    GLfloat projection[16];
    glGetFloatv(GL_PROJECTION_MATRIX, projection);
    AddValue(projection);
}

void Recording::AddState() {
    AddValue(Renderer::Instance().GetColor());
    GLfloat modelview[16];
    glGetFloatv(GL_MODELVIEW_MATRIX, modelview);
    AddValue(modelview);
    GLfloat widths[2];
    glGetFloatv(GL_LINE_WIDTH, &widths[0]);
    glGetFloatv(GL_POINT_SIZE, &widths[1]);
    AddValue(widths);
    AddValue(glIsEnabled(GL_TEXTURE_2D));
    if (!glIsEnabled(GL_BLEND)) NoteUnknown();
    constexpr GLenum MAX_PLANES = 6;  // that every GL has
    for (GLenum plane = GL_CLIP_PLANE0; plane < GL_CLIP_PLANE0 + MAX_PLANES; ++plane) {
        if (!glIsEnabled(plane)) continue;
        GLdouble equation[4];
        glGetClipPlane(plane, equation);
        AddValue(plane);
        AddValue(equation);
    }
}

bool Recording::Note(unsigned int mode, std::initializer_list<Bytes> arrays) {
    if (s_present == nullptr) return true;
    s_present->AddValue(mode);
    s_present->AddState();
    for (const Bytes& array : arrays) {
        s_present->AddValue(array.m_size);
        s_present->Add(array.m_data, array.m_size);
    }
    return s_present->m_effect == Draws;
}

void Recording::NoteTexture(int unit, uint64_t serial) {
    if (s_present == nullptr) return;
    s_present->AddValue(unit);
    s_present->AddValue(serial);
}

void Recording::NoteUnknown() {
    static uint64_t s_count = 0;
    if (s_present != nullptr) s_present->AddValue(++s_count);
}

}  // namespace rendering
