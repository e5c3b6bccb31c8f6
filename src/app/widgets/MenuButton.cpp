#include "app/widgets/MenuButton.h"

#include <cmath>

#include "app/Language.h"
#include "gui/Focus.h"
#include "gui/LookAndFeel.h"
#include "gui/components/Images.h"
#include "rendering/TextureManager.h"

namespace app {
namespace {

constexpr float ICON_GAP = 6;  // GUI units, between picture and text
constexpr float TEXT_X = gui::TEXT_MARGIN + MENU_ICON_SIZE + ICON_GAP;
constexpr float END_MARGIN = 8;

}  // namespace

rendering::TextureMentorPtr GetIcon(const String& name) {
    return rendering::TextureManager::Instance().Get(name, rendering::Texture::ImageType::Icon());
}

MenuButton::MenuButton(const char* key, const String& icon, const String& suffix)
    : Button(Translate(key) + suffix, "MenuButton"), m_icon(GetIcon(icon)) {
    SetKey(key);
    MakeRoom();
}

MenuButton::MenuButton(const String& text, const String& icon, const std::function<void()>& run)
    : Button(text, "MenuButton"), m_icon(GetIcon(icon)) {
    MakeRoom();
    AddAction(run);
}

void MenuButton::MakeRoom() {
    m_label = gui::FormatText(GetTextFormat(), GetText());
    SetSize(TEXT_X + m_label.m_width + END_MARGIN, GetSize().y);
}

void MenuButton::DrawComp() {
    MultStateColor();
    Component::DrawComp();  // NOLINT(bugprone-parent-virtual-call): without a button's own label
    const float height = GetSize().y;
    const float iconY = std::floor((height - MENU_ICON_SIZE) / 2);
    gui::DrawImage(m_icon, {gui::TEXT_MARGIN, iconY},
                   {gui::TEXT_MARGIN + MENU_ICON_SIZE, iconY + MENU_ICON_SIZE});
    gui::DrawText(GetTextFormat(), TEXT_X, std::floor((height - m_label.m_height) / 2), m_label);
    gui::Focus::DrawRing(*this);
}

IconButton::IconButton(const String& icon, const String& name) : AbstractButton(name), m_icon(GetIcon(icon)) {
    SetBorder(gui::LookAndFeel::Get().GetButtonBorder());
    SetSize(ICON_SIZE, ICON_SIZE);
}

void IconButton::DrawIcon() const {
    const math::Vec2 corner = (GetSize() - math::Vec2(ICON_SIZE, ICON_SIZE)) * 0.5f;
    gui::DrawImage(m_icon, corner, corner + math::Vec2(ICON_SIZE, ICON_SIZE));
}

void IconButton::DrawComp() {
    MultStateColor();
    AbstractButton::DrawComp();
    DrawIcon();
    gui::Focus::DrawRing(*this);
}

}  // namespace app
