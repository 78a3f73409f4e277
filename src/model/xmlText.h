// SPDX-License-Identifier: Apache-2.0
// Texts on their way between the process (native form) and the XML library (UTF-16).
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <xercesc/util/XercesDefs.hpp>

namespace Zorvane {

/// A zero-ended UTF-16 text made from a native one. Bytes that the locale's code set does not know count as
/// Latin-1, so that no text is ever lost on the way out.
void nativeToWide(std::string_view native, std::vector<XMLCh>& wide);
/// The native form of a UTF-16 text.
void wideToNative(const XMLCh* wide, std::string& native);

} // namespace Zorvane
