#pragma once

#include "gui/components/Button.h"
#include "rendering/Texture.h"

namespace app {

// The large button by which a newcomer starts the world. Its picture swells once when it is first seen.
class StartButton : public gui::AbstractButton {
  public:
    explicit StartButton(float side);  // GUI units, with its border

    void DrawComp() override;
    const char* GetKind() const override { return "Button"; }

  private:
    float GetPulse();  // 0 to 1

    const rendering::TextureMentorPtr m_picture;
    double m_firstDrawn = -1;  // seconds, of util::Clock; negative before that
};

}  // namespace app
