#pragma once
// What assistive programs see of the controls that Qt knows nothing of, or too little.

namespace zq {

/// Makes them known to Qt; once is enough.
void installAccessibleControls();

}  // namespace zq
