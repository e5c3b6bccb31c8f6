#include "rendering/Shader.h"
#include "support/SourceDir.h"

#include <gtest/gtest.h>

#include "rendering/Context.h"
#include "rendering/Gl.h"
#include "rendering/ShaderManager.h"
#include "support/FailureOf.h"
#include "support/LogCapture.h"
#include "support/gl/GlWindow.h"
#include "util/FileSystem.h"

namespace {

using rendering::Context;
using rendering::Shader;
using rendering::ShaderMentor;
using rendering::ShaderMentorPtr;
using rendering::ShaderPtr;
using rendering::Uniform;
using rendering::UniformPtr;

const char* const PAINT = "uniform vec4 Paint; void main() { gl_FragColor = Paint; }";

void DrawFrame() {
    glRectf(-1, -1, 1, 1);
}

class ShaderTest : public test::GlTest {
  protected:
    void TearDown() override { Context::SetUseShaders(false); }
};

TEST_F(ShaderTest, OneStageIsEnough) {
    EXPECT_NO_THROW(ShaderPtr(new Shader("void main() { gl_Position = ftransform(); }", "", "vertex only")));
    EXPECT_NO_THROW(ShaderPtr(new Shader("", PAINT, "fragment only")));
}

TEST_F(ShaderTest, BrokenSourcesFailWithWhatTheCompilerSays) {
    const test::LogCapture log;
    const auto make = [](const char* source, const char* name) {
        return test::FailureOf<BadDataException>([&] { ShaderPtr(new Shader("", source, name)); });
    };
    EXPECT_EQ(make("void main() { nonsense }", "broken"), "Failed to compile shader");
    EXPECT_TRUE(log.Contains("-- Compilation results for shader: broken"));
    EXPECT_EQ(make("void f(); void main() { f(); }", "unlinked"), "Failed to link shader");
    EXPECT_TRUE(log.Contains("-- Linking results for program: unlinked"));
    EXPECT_EQ(log.Count("Exception passed on at "), 2);
}

TEST_F(ShaderTest, UniformsSurviveAReload) {
    const ShaderMentorPtr mentor = new ShaderMentor([] { return new Shader("", PAINT, "paint"); });
    const UniformPtr paint = new Uniform(mentor, "Paint");
    for (int i = 0; i < 2; ++i) {
        {
            const rendering::ScopedShader bound(*mentor->Get());
            paint->Set(math::Vec4(1, 0, 0.2f * static_cast<float>(i), 1));
            DrawFrame();
        }
        EXPECT_EQ((*ReadFrame())(5, 5), rendering::RGBA32(255, 0, static_cast<unsigned char>(51 * i), 255));
        mentor->Unload();
    }
}

TEST_F(ShaderTest, MissingVariablesAreReportedAndHarmless) {
    const ShaderMentorPtr mentor = new ShaderMentor([] { return new Shader("", PAINT, "paint"); });
    const UniformPtr missing = new Uniform(mentor, "Nowhere");
    const test::LogCapture log;
    const rendering::ScopedShader bound(*mentor->Get());
    missing->Set(1.0f);
    missing->Set(2.0f);
    EXPECT_EQ(log.Count("Uniform \"Nowhere\" not found in shader"), 1);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(ShaderTest, SwitchedOffThereIsNoShaderAndNoMessage) {
    const ShaderMentorPtr mentor = rendering::ShaderManager::Instance().Get("water");
    EXPECT_EQ(mentor, rendering::ShaderManager::Instance().Get("water"));
    const test::LogCapture log;
    mentor->Load();
    EXPECT_FALSE(mentor->Get());
    EXPECT_TRUE(log.GetLines().empty());
}

TEST_F(ShaderTest, AMissingFileIsOneLineAndNoShader) {
    Context::SetUseShaders(true);
    const ShaderMentorPtr mentor = rendering::ShaderManager::Instance().Get("does_not_exist");
    const test::LogCapture log;
    for (int i = 0; i < 3; ++i) EXPECT_FALSE(mentor->Get());
    EXPECT_EQ(log.Count("!! ERROR: Failed to open file"), 1);
}

// A compiler drops uniforms that do not matter, and each of those would be reported as missing.
TEST_F(ShaderTest, TheShippedShadersUseEveryUniformThatTheProgramSets) {
    const std::pair<const char*, std::vector<const char*>> contracts[] = {
        {"water", {"Cutoff", "Color"}},
        {"polygon", {"DistSampler", "BorderSampler", "Color", "Width", "DistScale", "PixelSize"}},
        {"circle", {"BorderSampler", "Color", "Width", "PixelSize", "Radius"}},
        {"plane", {"BorderSampler", "Color", "Width", "PixelSize"}},
    };
    util::FileSystem& files = util::FileSystem::Instance();
    const String scratch = files.GetWorkDir();
    files.SetWorkDir(test::GetSourceDir() + "/");
    Context::SetUseShaders(true);
    for (const auto& contract : contracts) {
        const ShaderMentorPtr mentor = rendering::ShaderManager::Instance().Get(contract.first);
        mentor->Unload();
        mentor->Load();
        ASSERT_TRUE(mentor->Get()) << contract.first;
        for (const char* const name : contract.second) {
            EXPECT_GE(mentor->Get()->LookupUniform(name), 0) << contract.first << " " << name;
        }
        mentor->Unload();
    }
    files.SetWorkDir(scratch);
}

}  // namespace
