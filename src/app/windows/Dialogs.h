#pragma once

#include <functional>

#include "app/windows/Desk.h"
#include "gui/Window.h"
#include "util/String.h"

namespace app {

using NameFunction = std::function<void(const String&)>;
using SaveFunction = std::function<bool(const String&)>;  // false: it has failed

// Asks for a name to save the scene under. Another scene of that name is replaced only at a second press.
// It stays, with the name that was typed, when saving fails.
class SaveDialog : public gui::Window {
  public:
    // `name` is what the field shows at first: a file name or a path.
    SaveDialog(const Scene& scene, const String& name, const SaveFunction& save);
    ~SaveDialog() noexcept(false) override;

    void TakeFocus() override;  // for the name

  private:
    void Save();
    bool IsOtherScene(const String& file) const;

    const Scene& m_scene;
    const String m_path;  // of the name at first
    const SaveFunction m_save;
    gui::LabelPtr m_question;
    gui::TextFieldPtr m_name;
    gui::ButtonPtr m_saveButton;
    String m_asked;  // the file that the user has been asked about; empty for none
};

// All scenes as a list. `titleKey` is "Load" or "Import".
gui::WindowPtr MakeSceneDialog(const Desk& desk, const char* titleKey, const NameFunction& choose);

// The scenes that ship, as tiles.
gui::WindowPtr MakeGallery(const Desk& desk, const NameFunction& choose);

gui::WindowPtr MakeLanguageDialog(const NameFunction& choose);

// A text to read, wrapped and scrolled as far as there is no room for it.
gui::WindowPtr MakeTextDialog(const Desk& desk, const char* titleKey, const String& text);

// The help text below pictures of the gestures.
gui::WindowPtr MakeHelpDialog(const Desk& desk, const String& text);

// Frame rate, state of the world, video memory.
gui::WindowPtr MakeInfoWindow();

}  // namespace app
