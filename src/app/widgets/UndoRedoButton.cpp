#include "app/widgets/UndoRedoButton.h"

#include "app/Language.h"
#include "app/history/Undoer.h"

namespace app {

UndoRedoBase::UndoRedoBase(const String& icon, const char* key, const char* shortcut)
    : IconButton(icon, "UndoRedoButton"), m_textKey(key), m_shortcut(shortcut) {
    SetKey(key);
}

void UndoRedoBase::Update(float dt) {
    IconButton::Update(dt);
    ShowStep();
}

void UndoRedoBase::ShowStep() {
    const char* const step = GetStepName();
    SetEnabled(step != nullptr);
    if (step == m_shownStep && !GetToolTip().empty()) return;
    m_shownStep = step;
    const String text =
        step == nullptr ? Translate(GetNothingKey()) : Translate(m_textKey) + ": " + Translate(step);
    SetToolTip(text + " (" + m_shortcut + ")");
}

void UndoRedoBase::OnPressed() {
    Step();
    IconButton::OnPressed();
}

UndoButton::UndoButton() : UndoRedoBase("tools/backward", "TipUndo", "ctrl+z") {}

const char* UndoButton::GetStepName() const {
    return Undoer::Instance().GetUndoName();
}

void UndoButton::Step() const {
    Undoer::Instance().Undo();
}

RedoButton::RedoButton() : UndoRedoBase("tools/forward", "TipRedo", "ctrl+y") {}

const char* RedoButton::GetStepName() const {
    return Undoer::Instance().GetRedoName();
}

void RedoButton::Step() const {
    Undoer::Instance().Redo();
}

}  // namespace app
