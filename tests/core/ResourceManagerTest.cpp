#include "core/ResourceManager.h"
#include "support/SourceDir.h"

#include <gtest/gtest.h>

#include "rendering/Context.h"
#include "rendering/Gl.h"
#include "rendering/Renderer.h"
#include "rendering/ShaderManager.h"
#include "rendering/ShapePainter.h"
#include "rendering/TextureManager.h"
#include "support/LogCapture.h"
#include "support/gl/GlWindow.h"
#include "util/FileSystem.h"

namespace {

using core::ResourceManager;
using rendering::ShaderMentorPtr;
using rendering::Texture;
using rendering::TextureMentorPtr;

class ResourceManagerTest : public test::GlTest {
  protected:
    void SetUp() override {
        GlTest::SetUp();
        if (IsSkipped()) return;
        m_workDir = util::FileSystem::Instance().GetWorkDir();
        util::FileSystem::Instance().SetWorkDir(test::GetSourceDir() + "/");
        m_texture = rendering::TextureManager::Instance().Get("water");
        m_shader = rendering::ShaderManager::Instance().Get("water");
    }
    void TearDown() override {
        if (IsSkipped()) return;
        m_manager.m_shaders->Set(false);
        m_manager.DestroyAll();
        util::FileSystem::Instance().SetWorkDir(m_workDir);
    }

    ResourceManager& m_manager = ResourceManager::Instance();
    TextureMentorPtr m_texture;
    ShaderMentorPtr m_shader;
    String m_workDir;
};

TEST_F(ResourceManagerTest, ShadersAreCompiledWhenSwitchedOnAndStayWhenSwitchedOff) {
    test::LogCapture log;
    EXPECT_FALSE(m_shader->Get());
    m_manager.m_shaders->Set(true);
    EXPECT_TRUE(rendering::Context::UseShaders());
    EXPECT_TRUE(log.Contains("Resources.shaders changed value to true"));
    EXPECT_TRUE(log.Contains("LoadClass<Shader>"));
    const rendering::ShaderPtr shader = m_shader->Get();
    ASSERT_TRUE(shader);
    log.Clear();
    m_manager.m_shaders->Set(false);
    EXPECT_TRUE(log.Contains("Resources.shaders changed value to false"));
    EXPECT_FALSE(log.Contains("LoadClass<Shader>"));
    EXPECT_EQ(m_shader->Get(), shader);
}

TEST_F(ResourceManagerTest, LoadingReachesEveryMentorAndUnloadingToo) {
    test::LogCapture log;
    m_manager.LoadAll(false);
    EXPECT_TRUE(log.Contains("Loading the rest..."));
    EXPECT_TRUE(log.Contains(" resources loaded"));
    EXPECT_FALSE(log.Contains("Unloading the old"));
    const unsigned int usage = rendering::GraphicsResource::GetTotalMemoryUsage();
    EXPECT_GT(usage, 0u);
    const rendering::TexturePtr texture = m_texture->Get();
    m_manager.LoadAll(false);
    EXPECT_EQ(m_texture->Get(), texture);
    m_manager.LoadAll(true);
    EXPECT_TRUE(log.Contains("Unloading the old"));
    EXPECT_NE(m_texture->Get(), texture);
    m_manager.DestroyAll();
    EXPECT_TRUE(log.Contains("Destroying GL resources"));
    EXPECT_EQ(rendering::GraphicsResource::GetTotalMemoryUsage(), texture->MemoryUsage());
}

TEST_F(ResourceManagerTest, OneClassIsReloadedAlone) {
    m_manager.m_shaders->Set(true);
    m_manager.LoadAll(false);
    const rendering::TexturePtr texture = m_texture->Get();
    const rendering::ShaderPtr shader = m_shader->Get();
    m_manager.LoadClass(typeid(Texture), true);
    EXPECT_NE(m_texture->Get(), texture);
    EXPECT_EQ(m_shader->Get(), shader);
}

TEST_F(ResourceManagerTest, ANewWindowShowsTheSamePictureAndTakesTheSameMemory) {
    const auto picture = [this] {
        glClear(GL_COLOR_BUFFER_BIT);
        glEnable(GL_TEXTURE_2D);
        {
            const rendering::ScopedTexture water(m_texture->Get());
            rendering::Renderer::Instance().DrawQuad({-0.5f, -0.5f}, {0.5f, 0.5f});
        }
        rendering::ShapeView view;
        view.box = {{-1, -1}, {1, 1}};
        view.pixelSize = 2.0f / SIZE;
        view.borderWidth = 0.1f;
        rendering::ShapePainter::Instance().SetView(view);
        rendering::ShapePainter::Instance().DrawCircle({0, math::Vec2(0.3f, 0.3f)}, 0.5f, {1, 0.5f, 0});
        return ReadFrame();
    };
    for (const bool shaders : {false, true}) {
        m_manager.m_shaders->Set(shaders);
        picture();  // makes the painter with its mentors
        m_manager.LoadAll(false);
        rendering::Renderer::Instance().SetColor({1, 1, 0.5f, 1});
        const unsigned int usage = rendering::GraphicsResource::GetTotalMemoryUsage();
        const rendering::ImageRGBA32Ptr before = picture();
        m_manager.DestroyAll();
        Recreate();
        m_manager.LoadAll(false);
        rendering::Renderer::Instance().SetColor({1, 1, 0.5f, 1});
        EXPECT_EQ(GreatestDifference(*before, *picture()), 0);
        EXPECT_EQ(rendering::GraphicsResource::GetTotalMemoryUsage(), usage);
    }
}

}  // namespace
