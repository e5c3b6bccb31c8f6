#pragma once

#include "math/Vector.h"
#include "rendering/GraphicsResource.h"
#include "util/Mentor.h"
#include "util/SharedPtr.h"
#include "util/StackedBind.h"
#include "util/String.h"

namespace rendering {

// A GLSL program. Bind it through ScopedShader, which nests: the outer program comes back at its end.
//
// Callers hold a mentor. Its value is empty while shaders are switched off or when the program does not
// compile, and they take their fixed-function path then.
class Shader : public GraphicsResource, public util::StackedBind<Shader> {
  public:
    // An empty source leaves out that stage; `name` is for messages. Throws FatalException when the system
    // has no shaders, BadDataException when the sources are wrong.
    Shader(const String& vertexSource, const String& fragmentSource, const String& name);
    ~Shader() noexcept(false) override;

    unsigned int MemoryUsage() const override { return 0; }  // next to nothing, and GL does not tell

    void DoBind() const override;
    void DoUnbind() const override;

    // A location, negative with a line at Error when there is no such variable.
    int LookupUniform(const String& name) const;

    const String& GetName() const { return m_name; }

  private:
    void AttachStage(int type, const String& source);
    void Link();
    void Delete();

    unsigned int m_program = 0;
    uint32_t m_generation = 0;  // of the context that m_program belongs to
    String m_name;
};
using ShaderPtr = util::SharedPtr<Shader>;
using ShaderMentor = util::Mentor<Shader>;
using ShaderMentorPtr = util::SharedPtr<ShaderMentor>;
using ScopedShader = util::ScopedBind<Shader>;

// Compiles one stage (GL_VERTEX_SHADER or GL_FRAGMENT_SHADER) and gives its GL handle. Throws
// BadDataException; what the compiler says goes to the log.
unsigned int LoadShader(int type, const String& source, const String& name);

// A variable of a shader, set while that is bound. Finds its location on first use and again after a reload.
class Uniform : public util::Pointee {
  public:
    Uniform(const ShaderMentorPtr& shader, const String& name);

    // A program keeps its values, so one that has been set already does not reach the driver again.
    void Set(int value);  // also the unit of a sampler
    void Set(float value);
    void Set(const math::Vec2& value);
    void Set(const math::Vec4& value);

  private:
    bool Resolve();
    bool Change(const math::Vec4& value);
    void Invalidate();

    ShaderMentorPtr m_shader;
    String m_name;
    int32_t m_location = -1;  // -1 while unknown
    math::Vec4 m_last;        // what the program has, widened
    bool m_isSet = false;     // whether m_last says so
};
using UniformPtr = util::SharedPtr<Uniform>;

}  // namespace rendering
