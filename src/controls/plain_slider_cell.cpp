#include "controls/plain_slider_cell.h"

#include "controls/slider.h"

namespace zq {

bool PlainSliderCell::startTrackingInView(const ZQAccurateSlider& view) {
  return view.isSliderDown();
}

}  // namespace zq
