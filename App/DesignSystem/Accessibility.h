#pragma once

namespace vespra::accessibility {

/// Makes screen readers take the controls of ours that are none of Qt's for what they are. Every such control calls it.
void install();

} // namespace vespra::accessibility
