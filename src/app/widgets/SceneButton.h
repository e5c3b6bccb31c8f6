#pragma once

#include <functional>

#include "gui/components/Button.h"
#include "rendering/Texture.h"

namespace app {

// A scene file to choose: its picture, its title and when it was saved. A tile has the picture above the
// title, a row beside it.
class SceneButton : public gui::AbstractButton {
  public:
    enum class Shape { Tile, Row };

    SceneButton(const String& file, Shape shape, const std::function<void()>& choose);

    void DrawComp() override;
    const char* GetKind() const override { return "Button"; }
    String GetShownText() const override { return m_title.m_text; }

  private:
    math::Vec2 GetPictureSize() const;

    const Shape m_shape;
    const rendering::TextureMentorPtr m_picture;
    gui::FormattedText m_title;
    gui::FormattedText m_date;
};

// What a scene is called in a line: the translated title of one that ships, else its file's name without the
// ending, shortened when it is very long.
String GetSceneTitle(const String& file);
bool HasSceneTitle(const String& file);  // it ships
// In the order of their titles, whatever the case; what the program saves for itself comes first.
void SortByTitle(std::vector<String>& files);

}  // namespace app
