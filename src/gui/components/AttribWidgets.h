#pragma once

#include <functional>
#include <vector>

#include "gui/components/Checkbox.h"
#include "gui/components/Slider.h"
#include "script/Attributes.h"

// Controls that are a view on script attributes: they read them each frame and write them as a script would.
namespace gui {

// The attributes of several things that one control edits together. Holds none of them: one that dies with
// its owner leaves the list by itself.
template <class T>
class AttribGroup {
  public:
    using Attribs = std::vector<script::TAttribPtr<T>>;

    explicit AttribGroup(const Attribs& attribs);

    void DropDead();
    bool IsEmpty() const { return m_attribs.empty(); }
    T GetFirst() const { return m_attribs.front().Get()->Get(); }  // of a group that is not empty
    bool AreAll(const T& value) const;                             // true for an empty group
    void Write(const T& value);

  private:
    std::vector<util::WeakPtr<script::TAttrib<T>>> m_attribs;
};

// A slider over a number that lives elsewhere, which is not read again while the knob is held.
class BoundSlider : public Slider {
  public:
    void Update(float dt) override;
    void FireChange() override;

    // The slider shows the number over this, as 2 pi / 60 for revolutions per minute of a number in 1/s.
    void SetFactor(double factor);

  protected:
    using Slider::Slider;

    virtual double Read() = 0;  // NaN for no one value
    virtual void Write(double value) = 0;
    void Refresh();  // to be called at the end of each constructor

  private:
    double m_factor = 1;
};

// Over whatever the two functions say.
class FunctionSlider : public BoundSlider {
  public:
    using Getter = std::function<double()>;
    using Setter = std::function<void(double)>;

    FunctionSlider(double min, double max, const Getter& getter, const Setter& setter,
                   const String& name = "FunctionSlider");

  protected:
    double Read() override { return m_getter(); }
    void Write(double value) override { m_setter(value); }

  private:
    const Getter m_getter;
    const Setter m_setter;
};

class AttribSlider : public BoundSlider {
  public:
    AttribSlider(double min, double max, const script::TAttribPtr<float>& attrib,
                 const String& name = "AttribSlider");

  protected:
    double Read() override { return m_attrib->Get(); }
    void Write(double value) override;

  private:
    const script::TAttribPtr<float> m_attrib;
};

// Has no value while the attributes differ, and none once all are gone.
class MultiAttribSlider : public BoundSlider {
  public:
    MultiAttribSlider(double min, double max, const AttribGroup<float>::Attribs& attribs,
                      const String& name = "MultiAttribSlider");

  protected:
    double Read() override;
    void Write(double value) override { m_group.Write(static_cast<float>(value)); }

  private:
    AttribGroup<float> m_group;
};

class AttribCheckbox : public Checkbox {
  public:
    AttribCheckbox(const String& text, const script::TAttribPtr<bool>& attrib,
                   const String& name = "AttribCheckbox");

    void Update(float dt) override;
    void SetState(State state) override;

  private:
    const script::TAttribPtr<bool> m_attrib;
};

// Unknown while the attributes differ, and once all are gone.
class MultiAttribCheckbox : public Checkbox {
  public:
    MultiAttribCheckbox(const String& text, const AttribGroup<bool>::Attribs& attribs,
                        const String& name = "MultiAttribCheckbox");

    void Update(float dt) override;
    void SetState(State state) override;

  private:
    void Refresh();

    AttribGroup<bool> m_group;
};

extern template class AttribGroup<bool>;
extern template class AttribGroup<float>;

}  // namespace gui
