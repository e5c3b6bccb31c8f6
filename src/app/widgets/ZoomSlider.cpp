#include "app/widgets/ZoomSlider.h"

#include "app/scene/View.h"

namespace app {

ZoomSlider::ZoomSlider(View& view)
    : Slider(View::GetMinZoom(), View::GetMaxZoom(), "ZoomSlider"), m_view(view) {
    SetKey("Zoom");
    SetLogarithmic(true);
    SetDefault(View::GetDefaultZoom());
    SetValueSilent(m_view.GetZoom());
}

void ZoomSlider::Update(float dt) {
    Slider::Update(dt);
    if (!IsDragging()) SetValueSilent(m_view.GetZoom());
}

void ZoomSlider::FireChange() {
    m_view.SetZoom(static_cast<float>(GetValue()), false);
    Slider::FireChange();
}

}  // namespace app
