#include <cmath>

#include "app/App.h"
#include "app/entities/Entity.h"
#include "gui/Input.h"
#include "rendering/Gl.h"
#include "rendering/Renderer.h"
#include "rendering/ShapePainter.h"
#include "util/Clock.h"
#include "util/ProfileTree.h"

namespace app {

void App::MakeDrawingResources() {}

void App::DrawComp() {
    PROFILE_SECTION("App::DrawComp");
    rendering::Renderer& renderer = rendering::Renderer::Instance();
    const math::Vec4 kept = renderer.GetColor();
    {
        const rendering::ScopedAttribs attribs;
        const rendering::ScopedMatrix matrix;
        glDisable(GL_DEPTH_TEST);
        glEnable(GL_TEXTURE_2D);
        glEnable(GL_BLEND);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        renderer.MultMatrix(m_worldToGUI);

        rendering::ShapeView view;
        view.box = GetViewBox();
        view.pixelSize = GetWorldPerGUI() / gui::Input::Instance().GetSettings().m_scale;
        view.borderWidth = m_borderWidth->Get() * GetCmToWorld();
        view.borders = m_borders->Get();
        rendering::ShapePainter::Instance().SetView(view);

        const float pulse = 1 + static_cast<float>(std::sin(util::Clock::Now() * 5)) * 0.5f;
        for (const EntityPtr& entity : m_entities) {
            if (!entity->GetBoundingBox().Overlaps(view.box)) continue;
            const bool selected = m_selection.Has(entity);
            const float tint = selected ? pulse : 1;
            entity->SetTint({tint, tint, tint});
            const math::Vec3 color = selected ? m_selectColor->Get() : math::Vec3(1, 1, 1);
            renderer.SetColor({color.x, color.y, color.z, 1});
            entity->Draw();
        }
    }
    renderer.SetColor(kept);
    renderer.RestoreColor();
}

}  // namespace app
