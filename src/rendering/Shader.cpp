#include "rendering/Shader.h"

#include <vector>

#include "logging/Log.h"
#include "rendering/Context.h"
#include "rendering/Gl.h"
#include "rendering/Recording.h"
#include "util/Exception.h"

namespace rendering {

namespace {

// What the compiler or linker says, at a level that shows it only when it says something.
void LogResults(GLhandleARB object, const String& firstLine) {
    GLint length = 0;
    glGetObjectParameterivARB(object, GL_OBJECT_INFO_LOG_LENGTH_ARB, &length);
    std::vector<GLcharARB> text(static_cast<size_t>(length) + 1, '\0');
    glGetInfoLogARB(object, static_cast<GLsizei>(text.size()), nullptr, text.data());
    const String log = text.data();
    const auto level = log.empty() ? logging::Trace : logging::Info;
    Log(level, firstLine);
    Log(level, log);
    Log(level, "--");
}

bool HasSucceeded(GLhandleARB object, GLenum status) {
    GLint succeeded = 0;
    glGetObjectParameterivARB(object, status, &succeeded);
    return succeeded != 0;
}

bool HasAllEntryPoints() {
    return glGetObjectParameterivARB && glGetInfoLogARB && glCreateShaderObjectARB && glShaderSourceARB &&
           glCompileShaderARB && glCreateProgramObjectARB && glAttachObjectARB && glLinkProgramARB &&
           glDeleteObjectARB && glGetUniformLocationARB && glGetAttribLocationARB && glUseProgramObjectARB &&
           glGetActiveUniformARB;
}

void RequireShaderSupport() {
    if (!Context::Exists()) THROW(FatalException, "Tried to create shader when GL wasn't loaded");
    if (!HasShaderPrograms()) {
        THROW(FatalException,
              "This system doesn't support shaders. Please update your graphics driver and try again");
    }
    if (!HasAllEntryPoints()) THROW(FatalException, "NULL-function in Shader::Shader");
}

}  // namespace

unsigned int LoadShader(int type, const String& source, const String& name) {
    const GLhandleARB shader = glCreateShaderObjectARB(static_cast<GLenum>(type));
    if (shader == 0) THROW(BadDataException, "CreateShader returned 0");
    const GLcharARB* text = source.c_str();
    glShaderSourceARB(shader, 1, &text, nullptr);
    glCompileShaderARB(shader);
    LogResults(shader, "-- Compilation results for shader: " + name);
    if (!HasSucceeded(shader, GL_OBJECT_COMPILE_STATUS_ARB)) {
        glDeleteObjectARB(shader);
        THROW(BadDataException, "Failed to compile shader");
    }
    return shader;
}

// ---- Shader -------------------------------------------------------------------------------------------

Shader::Shader(const String& vertexSource, const String& fragmentSource, const String& name) : m_name(name) {
    RequireShaderSupport();
    m_program = glCreateProgramObjectARB();
    m_generation = Context::GetGeneration();
    if (m_program == 0) THROW(FatalException, "CreateProgram returned 0");
    try {
        if (!vertexSource.empty()) AttachStage(GL_VERTEX_SHADER, vertexSource);
        if (!fragmentSource.empty()) AttachStage(GL_FRAGMENT_SHADER, fragmentSource);
        Link();
    } catch (...) {
        util::LogPassedOn(WHERE);
        Delete();
        throw;
    }
}

Shader::~Shader() noexcept(false) {
    Delete();
}

void Shader::Delete() {
    // In a later context the name may belong to another program.
    if (m_program != 0 && m_generation == Context::GetGeneration()) glDeleteObjectARB(m_program);
    m_program = 0;
}

void Shader::AttachStage(int type, const String& source) {
    const GLhandleARB stage = LoadShader(type, source, m_name);
    glAttachObjectARB(m_program, stage);
    glDeleteObjectARB(stage);  // goes with the program
}

void Shader::Link() {
    glLinkProgramARB(m_program);
    LogResults(m_program, "-- Linking results for program: " + m_name);
    if (!HasSucceeded(m_program, GL_OBJECT_LINK_STATUS_ARB)) {
        THROW(BadDataException, "Failed to link shader");
    }
}

void Shader::DoBind() const {
    Recording::NoteUnknown();
    glUseProgramObjectARB(m_program);
}

void Shader::DoUnbind() const {
    glUseProgramObjectARB(0);
}

int Shader::LookupUniform(const String& name) const {
    const int location = glGetUniformLocationARB(m_program, name.c_str());
    if (location < 0) Log(logging::Error, "Uniform \"" + name + "\" not found in shader");
    return location;
}

// ---- Uniform ------------------------------------------------------------------------------------------

Uniform::Uniform(const ShaderMentorPtr& shader, const String& name) : m_shader(shader), m_name(name) {
    if (!m_shader) return;
    m_shader->GetOnUnload().Add(new util::Callback([this] { Invalidate(); }, this));
}

void Uniform::Invalidate() {
    m_location = -1;
    m_isSet = false;
}

// Whether the location is known or found. A missing variable is asked for again each time, which is where it
// is reported.
bool Uniform::Resolve() {
    if (m_location < 0 && m_shader && m_shader->Get()) m_location = m_shader->Get()->LookupUniform(m_name);
    return m_location >= 0;
}

// Whether the program has another value.
bool Uniform::Change(const math::Vec4& value) {
    if (!Resolve() || (m_isSet && m_last == value)) return false;
    m_last = value;
    m_isSet = true;
    return true;
}

void Uniform::Set(int value) {
    if (Change({static_cast<float>(value), 0, 0, 0})) glUniform1iARB(m_location, value);
}

void Uniform::Set(float value) {
    if (Change({value, 0, 0, 0})) glUniform1fARB(m_location, value);
}

void Uniform::Set(const math::Vec2& value) {
    if (Change({value.x, value.y, 0, 0})) glUniform2fvARB(m_location, 1, &value.x);
}

void Uniform::Set(const math::Vec4& value) {
    if (Change(value)) glUniform4fvARB(m_location, 1, &value.x);
}

}  // namespace rendering
