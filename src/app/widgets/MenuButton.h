#pragma once

#include <functional>

#include "gui/components/Button.h"
#include "rendering/Texture.h"

namespace app {

// A row of a menu: a picture and a text, left aligned; as wide as the menu.
class MenuButton : public gui::Button {
  public:
    // `key` is that of the text in the language files, `suffix` stands behind it.
    MenuButton(const char* key, const String& icon, const String& suffix = String());
    // With a text of its own.
    MenuButton(const String& text, const String& icon, const std::function<void()>& run);

    void DrawComp() override;
    const char* GetKind() const override { return "Button"; }

  private:
    void MakeRoom();

    const rendering::TextureMentorPtr m_icon;
    gui::FormattedText m_label;
};

// A button with a picture instead of a text.
class IconButton : public gui::AbstractButton {
  public:
    explicit IconButton(const String& icon, const String& name = "IconButton");

    void DrawComp() override;

  protected:
    void DrawIcon() const;

  private:
    const rendering::TextureMentorPtr m_icon;
};

// A picture below Data/Textures/ as icons are sampled.
rendering::TextureMentorPtr GetIcon(const String& name);

constexpr float ICON_SIZE = 24;       // GUI units; of tools
constexpr float MENU_ICON_SIZE = 16;  // GUI units; in menus

}  // namespace app
