#pragma once

#include "gui/Component.h"
#include "rendering/Texture.h"

namespace gui {

// A picture over the whole content box; at first of the picture's own size.
class Icon : public Component {
  public:
    explicit Icon(const String& image, const String& name = "Icon");  // as the texture manager knows it

    void DrawComp() override;

    const char* GetKind() const override { return "Icon"; }

    void SetImage(const String& image);  // keeps the size

  private:
    rendering::TextureMentorPtr m_image;
};

}  // namespace gui
