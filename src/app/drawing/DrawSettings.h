#pragma once

#include "math/Vector.h"
#include "script/Attributes.h"

namespace app {

// How the scene is drawn; in scripts these belong to "App".
struct DrawSettings {
    explicit DrawSettings(script::Reflected& owner);

    const script::AttribPtr<float> m_lineWidth;  // pixels
    const script::AttribPtr<float> m_pointSize;  // pixels
    const script::AttribPtr<bool> m_drawOBBs;
    const script::AttribPtr<bool> m_drawMapOBBs;
    const script::AttribPtr<bool> m_drawBCs;
    const script::AttribPtr<bool> m_drawVertices;
    const script::AttribPtr<bool> m_drawCollisions;
    const script::AttribPtr<bool> m_drawParticleCenters;
    const script::AttribPtr<bool> m_drawBodyCenters;
    const script::AttribPtr<bool> m_drawClouds;
    const script::AttribPtr<math::Vec2> m_polyTCFactor;  // without effect
    const script::AttribPtr<math::Vec3> m_selectColor;
    const script::AttribPtr<math::Vec3> m_fadeColor;
    const script::AttribPtr<math::Vec2> m_fadeScale;
    const script::AttribPtr<math::Vec2> m_fadeTranslate;
    const script::AttribPtr<float> m_fadeRotate;  // degrees
    const script::AttribPtr<float> m_waterElongation;
    const script::AttribPtr<float> m_waterMaxElongation;
    const script::AttribPtr<float> m_metaCutoff;
    const script::AttribPtr<float> m_borderWidth;  // cm on the screen
    const script::AttribPtr<math::Vec4> m_waterColor;
    const script::AttribPtr<bool> m_simpleWater;
    const script::AttribPtr<float> m_waterFanceyFactor;
    const script::AttribPtr<bool> m_borders;
};

}  // namespace app
