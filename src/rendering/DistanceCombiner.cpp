#include "rendering/DistanceCombiner.h"

#include <algorithm>

#include "rendering/Context.h"
#include "rendering/Gl.h"

namespace rendering {

namespace {

constexpr int MIN_UNITS = 4;
constexpr int MAX_UNITS = 5;    // slope 256: a shape of 3000 pixels
constexpr float UNIT_GAIN = 4;  // the greatest scale of a texture unit

void SelectUnit(int unit) {
    glActiveTextureARB(GL_TEXTURE0_ARB + static_cast<GLenum>(unit));
}

void SetEnv(GLenum name, GLint value) {
    glTexEnvi(GL_TEXTURE_ENV, name, value);
}

void SetConstant(float rgb, float alpha) {
    const GLfloat constant[4] = {rgb, rgb, rgb, alpha};
    glTexEnvfv(GL_TEXTURE_ENV, GL_TEXTURE_ENV_COLOR, constant);
}

void SetSources(GLint first, GLint second) {
    SetEnv(GL_SOURCE0_RGB, first);
    SetEnv(GL_SOURCE0_ALPHA, first);
    SetEnv(GL_SOURCE1_RGB, second);
    SetEnv(GL_SOURCE1_ALPHA, second);
    SetEnv(GL_OPERAND0_RGB, GL_SRC_COLOR);
    SetEnv(GL_OPERAND0_ALPHA, GL_SRC_ALPHA);
    SetEnv(GL_OPERAND1_RGB, GL_SRC_COLOR);
    SetEnv(GL_OPERAND1_ALPHA, GL_SRC_ALPHA);
}

void SetFunction(GLint function, GLfloat gain) {
    SetEnv(GL_TEXTURE_ENV_MODE, GL_COMBINE);
    SetEnv(GL_COMBINE_RGB, function);
    SetEnv(GL_COMBINE_ALPHA, function == GL_INTERPOLATE ? GL_MODULATE : function);
    glTexEnvf(GL_TEXTURE_ENV, GL_RGB_SCALE, gain);
    glTexEnvf(GL_TEXTURE_ENV, GL_ALPHA_SCALE, gain);
}

// 4 * (end - alpha of the texture), in all channels.
void SetUpDifference(float fillEnd, float outlineEnd) {
    SetFunction(GL_SUBTRACT, UNIT_GAIN);
    SetSources(GL_CONSTANT, GL_TEXTURE);
    SetEnv(GL_OPERAND1_RGB, GL_SRC_ALPHA);
    SetConstant(fillEnd, outlineEnd);
}

void SetUpGain(float fillGain, float outlineGain) {
    SetFunction(GL_MODULATE, UNIT_GAIN);
    SetSources(GL_PREVIOUS, GL_CONSTANT);
    SetConstant(fillGain / UNIT_GAIN, outlineGain / UNIT_GAIN);
}

// primary where the ramp is 1, rim where it is 0; alpha by the other ramp.
void SetUpMix(const math::Vec4& rim) {
    SetFunction(GL_INTERPOLATE, 1);
    SetSources(GL_PRIMARY_COLOR, GL_CONSTANT);
    SetEnv(GL_SOURCE1_ALPHA, GL_PREVIOUS);
    SetEnv(GL_SOURCE2_RGB, GL_PREVIOUS);
    SetEnv(GL_OPERAND2_RGB, GL_SRC_COLOR);
    glTexEnvfv(GL_TEXTURE_ENV, GL_TEXTURE_ENV_COLOR, &rim.x);
}

// Takes a factor of at most 4 out of the slope that is left.
float TakeGain(float& slope) {
    const float gain = std::clamp(slope, 1.0f, UNIT_GAIN);
    slope /= gain;
    return gain;
}

}  // namespace

bool ScopedDistanceCombiner::IsUsable() {
    return Context::GetTextureUnits() >= MIN_UNITS;
}

ScopedDistanceCombiner::ScopedDistanceCombiner(const TexturePtr& distances, DistanceRamp outline,
                                               DistanceRamp fill, const math::Vec4& rim)
    : m_distances(distances), m_nUnits(std::min(Context::GetTextureUnits(), MAX_UNITS)) {
    float fillSlope = 1 / fill.width / UNIT_GAIN, outlineSlope = 1 / outline.width / UNIT_GAIN;
    SetUpDifference(fill.center + fill.width / 2, outline.center + outline.width / 2);
    m_distances->Bind();
    for (int unit = 1; unit < m_nUnits; ++unit) {
        SelectUnit(unit);
        glEnable(GL_TEXTURE_2D);
        glBindTexture(GL_TEXTURE_2D, m_distances->GetId());  // a unit without a texture would be skipped
        if (unit == m_nUnits - 1) {
            SetUpMix(rim);
            break;
        }
        const float fillGain = TakeGain(fillSlope);
        SetUpGain(fillGain, TakeGain(outlineSlope));
    }
    SelectUnit(0);
}

ScopedDistanceCombiner::~ScopedDistanceCombiner() {
    for (int unit = m_nUnits - 1; unit > 0; --unit) {
        SelectUnit(unit);
        glBindTexture(GL_TEXTURE_2D, 0);
        glDisable(GL_TEXTURE_2D);
    }
    SelectUnit(0);
    SetEnv(GL_TEXTURE_ENV_MODE, GL_MODULATE);
    m_distances->Unbind();
}

}  // namespace rendering
