#pragma once

#include "app/widgets/MenuButton.h"

namespace app {

// Steps in the history. Dark while there is nothing to step to; its tool tip names the step.
class UndoRedoBase : public IconButton {
  public:
    void Update(float dt) override;
    void OnPressed() override;

  protected:
    UndoRedoBase(const String& icon, const char* key, const char* shortcut);

  private:
    virtual const char* GetStepName() const = 0;  // a language key; null for none
    virtual const char* GetNothingKey() const = 0;
    virtual void Step() const = 0;
    void ShowStep();

    const char* const m_textKey;
    const char* const m_shortcut;
    const char* m_shownStep = nullptr;
};

class UndoButton : public UndoRedoBase {
  public:
    UndoButton();

  private:
    const char* GetStepName() const override;
    const char* GetNothingKey() const override { return "TipNothingToUndo"; }
    void Step() const override;
};

class RedoButton : public UndoRedoBase {
  public:
    RedoButton();

  private:
    const char* GetStepName() const override;
    const char* GetNothingKey() const override { return "TipNothingToRedo"; }
    void Step() const override;
};

}  // namespace app
