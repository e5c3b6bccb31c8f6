#pragma once

#include <vector>

#include "util/SharedPtr.h"
#include "util/WeakPtr.h"

// Names of the toolkit's classes and their counted pointers.
namespace gui {

class Component;
class Layout;
class ListLayout;
class WobbleComponent;
class Window;
class Draggable;
class Border;
class Font;
class LookAndFeel;
class GUI;
class AbstractButton;
class AbstractRadioButton;
class RadioGroup;
class Checkbox;
class Slider;
class LabeledSlider;
class TextField;
class ScrollArea;
class Button;
class Label;
class Icon;
class WindowHost;
struct TextFormat;
struct FormattedText;

using ComponentPtr = util::SharedPtr<Component>;
using ComponentWeakPtr = util::WeakPtr<Component>;
using ComponentList = std::vector<ComponentPtr>;  // in drawing order
using LayoutPtr = util::SharedPtr<Layout>;
using WindowPtr = util::SharedPtr<Window>;
using ButtonPtr = util::SharedPtr<Button>;
using LabelPtr = util::SharedPtr<Label>;
using IconPtr = util::SharedPtr<Icon>;
using RadioGroupPtr = util::SharedPtr<RadioGroup>;
using AbstractRadioButtonPtr = util::SharedPtr<AbstractRadioButton>;
using CheckboxPtr = util::SharedPtr<Checkbox>;
using SliderPtr = util::SharedPtr<Slider>;
using TextFieldPtr = util::SharedPtr<TextField>;
using ScrollAreaPtr = util::SharedPtr<ScrollArea>;

}  // namespace gui
