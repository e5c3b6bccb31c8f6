#include "app/drawing/DrawSettings.h"

#include "script/Reflected.h"

namespace app {

using math::Vec2;
using math::Vec3;
using math::Vec4;
using script::DeclareAttrib;

DrawSettings::DrawSettings(script::Reflected& owner)
    : m_lineWidth(DeclareAttrib(owner, "lineWidth", 4.0f)),
      m_pointSize(DeclareAttrib(owner, "pointSize", 4.0f)),
      m_drawOBBs(DeclareAttrib(owner, "drawOBBs", false)),
      m_drawMapOBBs(DeclareAttrib(owner, "drawMapOBBs", false)),
      m_drawBCs(DeclareAttrib(owner, "drawBCs", false)),
      m_drawVertices(DeclareAttrib(owner, "drawVertices", false)),
      m_drawCollisions(DeclareAttrib(owner, "drawCollisions", false)),
      m_drawParticleCenters(DeclareAttrib(owner, "drawParticleCenters", false)),
      m_drawBodyCenters(DeclareAttrib(owner, "drawBodyCenters", false)),
      m_drawClouds(DeclareAttrib(owner, "drawClouds", true)),
      m_polyTCFactor(DeclareAttrib(owner, "polyTCFactor", Vec2(10, 10))),
      m_selectColor(DeclareAttrib(owner, "selectColor", Vec3(1, 0.5f, 0.5f))),
      m_fadeColor(DeclareAttrib(owner, "fadeColor", Vec3(0, 0, 0))),
      m_fadeScale(DeclareAttrib(owner, "fadeScale", Vec2(0.95f, 0.95f))),
      m_fadeTranslate(DeclareAttrib(owner, "fadeTranslate", Vec2(0, 0))),
      m_fadeRotate(DeclareAttrib(owner, "fadeRotate", 0.0f)),
      m_waterElongation(DeclareAttrib(owner, "waterElongation", 0.05f)),
      m_waterMaxElongation(DeclareAttrib(owner, "waterMaxElongation", 2.0f)),
      m_metaCutoff(DeclareAttrib(owner, "metaCutoff", 0.5f)),
      m_borderWidth(DeclareAttrib(owner, "borderWidth", 0.1f)),
      m_waterColor(DeclareAttrib(owner, "waterColor", Vec4(0.1f, 0.1f, 1, 0.7f))),
      m_simpleWater(DeclareAttrib(owner, "simpleWater", false)),
      m_waterFanceyFactor(DeclareAttrib(owner, "waterFanceyFactor", 10.0f)),
      m_borders(DeclareAttrib(owner, "borders", true)) {}

}  // namespace app
