// SPDX-License-Identifier: Apache-2.0
// A layout as a tree, a picture, a graph and a document. None of them knows a platform.
#pragma once

#include "info/layout/Layout.h"

#include <iosfwd>

#include <nlohmann/json_fwd.hpp>

namespace Zorvane {

class Session;

/// A line for each object, under what it lies on; an object of several parts stands under the first of them
/// and is only named under the others.
void writeLayoutTree(const Layout& layout, const Session& session);

/// An SVG drawing: a bar for each disk, as long as its size, with its parts in proportion and what lies on
/// them underneath.
void writeLayoutSvg(const Layout& layout, std::ostream& out);

/// Graphviz source: a box for each object, an arrow from what lies under to what lies on it.
void writeLayoutDot(const Layout& layout, std::ostream& out);

/// The whole layout as share/schema/layout.schema.json has it.
nlohmann::ordered_json layoutDocument(const Layout& layout);

} // namespace Zorvane
