// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace Zorvane {

/// The XML Schema of the document, as it is written: a document that the schema accepts is read without loss.
std::string xmlSchema();

} // namespace Zorvane
