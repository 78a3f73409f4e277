// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace Zorvane {

/// The client's share of the suite's security negotiation, between connecting and the first packet. 0 if the
/// connection may be used, else the code of what failed; the socket stays open.
int ZorcAuthenticate(int descriptor);

} // namespace Zorvane
