// SPDX-License-Identifier: Apache-2.0
#include "info/layout/BarPlan.h"

#include "info/layout/labels.h"

#include <algorithm>
#include <utility>

namespace Zorvane {

namespace {

using Node = std::size_t;

constexpr Node NONE = SIZE_MAX;
/// Less of a bar than this is alignment, not free space.
constexpr double LEAST_GAP = 4;
constexpr std::size_t MOST_LANES = 4;
/// A short bar shows so many parts, if each is as wide as this.
constexpr double FEW_CELLS = 6, SLIVER = 2.5;

enum class PartKind : std::uint8_t {
    Object,
    Free,
    Spacer, ///< keeps what stands behind it in its place; nothing is drawn
    Rest,   ///< stands for the parts that have no room
};

struct Part {
    PartKind kind = PartKind::Object;
    Node node = 0;
    std::optional<std::int64_t> start, length;
    double weight = 0;
    double width = 0;
    std::size_t hidden = 0;
};
using Parts = std::vector<Part>;

bool isGap(const Part& part) {
    return part.kind == PartKind::Free || part.kind == PartKind::Spacer;
}

Part gap(std::int64_t length, PartKind kind) {
    Part made;
    made.kind = kind;
    made.length = length;
    made.weight = static_cast<double>(length);
    return made;
}

// Widths in proportion, none below the least: what those take, the others give, but not more than half.
void share(Parts& parts, double width) {
    double weights = 0;
    for (const Part& part : parts)
        weights += part.weight;
    const double scale = weights > 0 ? width / weights : 0;
    std::erase_if(parts, [&](const Part& part) { return isGap(part) && part.weight * scale < LEAST_GAP; });
    const auto objects =
        std::count_if(parts.begin(), parts.end(), [](const Part& part) { return !isGap(part); });
    const double leastCell =
        std::min(MIN_CELL, width / static_cast<double>(2 * std::max<std::ptrdiff_t>(objects, 1)));
    std::vector<bool> isLeast(parts.size());
    for (bool isChanged = true; isChanged;) {
        isChanged = false;
        double rest = width, open = 0;
        for (std::size_t i = 0; i < parts.size(); ++i) {
            rest -= isLeast[i] ? parts[i].width : 0;
            open += isLeast[i] ? 0 : parts[i].weight;
        }
        for (std::size_t i = 0; i < parts.size(); ++i) {
            if (isLeast[i])
                continue;
            const double least = isGap(parts[i]) ? 0 : leastCell;
            parts[i].width = open > 0 ? rest * parts[i].weight / open : least;
            if (parts[i].width < least) {
                parts[i].width = least;
                isLeast[i] = isChanged = true;
            }
        }
    }
}

// Side by side by their places; what overlaps (logical partitions in the extended one) goes to another lane.
std::vector<Parts> inLanes(Parts parts) {
    std::stable_sort(parts.begin(), parts.end(), [](const Part& a, const Part& b) {
        return *a.start != *b.start ? *a.start < *b.start : *a.length > *b.length;
    });
    std::vector<Parts> lanes;
    for (const Part& part : parts) {
        const auto fits = std::find_if(lanes.begin(), lanes.end(), [&](const Parts& lane) {
            return addSizes(*lane.back().start, *lane.back().length) <= *part.start;
        });
        if (fits != lanes.end())
            fits->push_back(part);
        else
            lanes.push_back({part});
        if (lanes.size() > MOST_LANES)
            return {};
    }
    return lanes;
}

Parts withGaps(const Parts& lane, std::int64_t end, PartKind gapKind) {
    Parts made;
    std::int64_t at = 0;
    for (const Part& part : lane) {
        if (*part.start > at)
            made.push_back(gap(*part.start - at, gapKind));
        made.push_back(part);
        at = addSizes(*part.start, *part.length);
    }
    if (end > at)
        made.push_back(gap(end - at, gapKind));
    return made;
}

// One behind the other. A part of unknown size weighs as much as the others do.
Parts inSequence(Parts parts, std::optional<std::int64_t> whole, PartKind gapKind) {
    std::int64_t sum = 0;
    std::size_t known = 0;
    for (const Part& part : parts)
        if (part.length) {
            sum = addSizes(sum, *part.length);
            ++known;
        }
    for (Part& part : parts)
        if (!part.length)
            part.weight = known > 0 ? static_cast<double>(sum) / static_cast<double>(known) : 1;
    if (known == parts.size() && whole.value_or(0) > sum)
        parts.push_back(gap(*whole - sum, gapKind));
    return parts;
}

// What has no room at the least width becomes one part that tells how many it stands for.
void dropBeyond(Parts& lane, double width) {
    const auto room =
        static_cast<std::size_t>(std::max({1.0, width / MIN_CELL, std::min(FEW_CELLS, width / SLIVER)}));
    if (std::count_if(lane.begin(), lane.end(), [](const Part& part) { return !isGap(part); }) <=
        static_cast<std::ptrdiff_t>(room))
        return;
    std::erase_if(lane, isGap);
    Part rest;
    rest.kind = PartKind::Rest;
    rest.hidden = lane.size() - (room - 1);
    for (std::size_t i = room - 1; i < lane.size(); ++i)
        rest.weight += lane[i].weight;
    lane.resize(room - 1);
    lane.push_back(rest);
}

// Whether there is no place for two side by side: one alone, or one that takes the whole.
bool coverAll(const Parts& parts, std::int64_t whole) {
    if (parts.size() == 1)
        return !parts.front().length;
    return parts.size() <= MOST_LANES && std::any_of(parts.begin(), parts.end(), [&](const Part& part) {
               return part.length.value_or(0) >= whole;
           });
}

// Each over the whole; one of unknown size has as much as there is.
std::vector<Parts> oneOverTheOther(const Parts& parts, std::int64_t whole) {
    std::vector<Parts> lanes;
    for (Part part : parts) {
        part.length = std::min(part.length.value_or(whole), whole);
        part.weight = static_cast<double>(*part.length);
        lanes.push_back(inSequence({part}, whole, PartKind::Spacer));
    }
    return lanes;
}

class Planner {
  public:
    Planner(const Layout& layout, double width)
        : m_layout(layout),
          m_width(width),
          m_hasBar(layout.nodes.size()),
          m_isReached(layout.nodes.size()),
          m_lowerCount(layout.nodes.size()) {
        chooseBars();
        for (const Node root : rootsOf(layout))
            reach(root);
    }

    BarPlan make() {
        section("Disks", [&](Node node) { return is(node, LayoutKind::Disk); });
        section("Across several disks", [&](Node node) {
            return m_hasBar[node] && !is(node, LayoutKind::Disk) && m_isReached[node];
        });
        section("What the disks are made of", [&](Node node) {
            const auto uppers = shownUppers(m_layout, node);
            return is(node, LayoutKind::Hardware) &&
                   !(uppers.size() == 1 && is(uppers.front().node, LayoutKind::Disk));
        });
        section("Not on any disk", [&](Node node) {
            return m_layout.nodes[node].lower.empty() && !is(node, LayoutKind::Disk) &&
                   !is(node, LayoutKind::Hardware) && !m_hasBar[node];
        });
        section("In a circle", [&](Node node) {
            const bool isLeft = !m_isReached[node] && !isTransparent(m_layout, node);
            if (isLeft)
                reach(node);
            return isLeft;
        });
        return std::move(m_plan);
    }

  private:
    [[nodiscard]] bool is(Node node, LayoutKind kind) const { return m_layout.nodes[node].kind == kind; }

    void reach(Node node) {
        std::vector<Node> open = {node};
        while (!open.empty()) {
            const Node at = open.back();
            open.pop_back();
            if (m_isReached[at])
                continue;
            m_isReached[at] = true;
            for (const LayoutEdge& edge : m_layout.nodes[at].upper)
                open.push_back(edge.node);
        }
    }

    // Disks, and what spans several parts and holds several: under each of its parts, its own parts would be
    // drawn again, and again for each level of such.
    void chooseBars() {
        const std::size_t count = m_layout.nodes.size();
        std::vector<std::size_t> upperCount(count), onlyLower(count, NONE);
        for (Node node = 0; node < count; ++node)
            if (!isTransparent(m_layout, node)) {
                const auto uppers = shownUppers(m_layout, node);
                upperCount[node] = uppers.size();
                for (const LayoutEdge& edge : uppers) {
                    ++m_lowerCount[edge.node];
                    onlyLower[edge.node] = node;
                }
            }
        // A pool on one mirror spans what the mirror spans.
        const auto spans = [&](Node node) {
            for (unsigned steps = 0; steps < MAX_LAYOUT_DEPTH; ++steps) {
                if (m_lowerCount[node] != 1)
                    return m_lowerCount[node] > 1;
                node = onlyLower[node];
                if (upperCount[node] > 1 || is(node, LayoutKind::Disk))
                    return false;
            }
            return false;
        };
        for (Node node = 0; node < count; ++node) {
            m_hasBar[node] = is(node, LayoutKind::Disk) || (upperCount[node] > 1 && spans(node));
            if (m_hasBar[node] || is(node, LayoutKind::Hardware))
                m_plan.longest = std::max(m_plan.longest, m_layout.nodes[node].size.value_or(0));
        }
    }

    template <class Wanted>
    void section(const char* title, Wanted isWanted) {
        BarSection made{title, {}};
        for (Node node = 0; node < m_layout.nodes.size(); ++node)
            if (isWanted(node))
                made.bars.push_back(bar(node));
        if (!made.bars.empty())
            m_plan.sections.push_back(std::move(made));
    }

    Bar bar(Node node) {
        const auto& size = m_layout.nodes[node].size;
        const bool isKnown = size && m_plan.longest > 0;
        const double width = isKnown
                                 ? m_width * static_cast<double>(*size) / static_cast<double>(m_plan.longest)
                                 : m_width / 4;
        Bar made;
        made.node = node;
        made.width = std::clamp(width, MIN_BAR, m_width);
        made.isToScale = isKnown && width >= MIN_BAR && width <= m_width;
        made.rows = std::max(1U, addParts(made, node, size, 0, made.width, 0));
        return made;
    }

    // The parts of a node of that length, within its stretch of the bar. Returns the row below the lowest
    // cell.
    unsigned addParts(Bar& bar, Node node, std::optional<std::int64_t> length, double x, double width,
                      unsigned row) {
        const auto uppers = shownUppers(m_layout, node);
        if (uppers.empty() || m_open.size() == MAX_LAYOUT_DEPTH || isOpen(node))
            return row;
        m_open.push_back(node);
        for (Parts& lane : placed(node, length, uppers)) {
            dropBeyond(lane, width);
            share(lane, width);
            double at = x;
            unsigned below = row;
            for (const Part& part : lane) {
                if (part.kind != PartKind::Spacer)
                    below = std::max(below, addCell(bar, part, at, row));
                at += part.width;
            }
            row = below;
        }
        m_open.pop_back();
        return row;
    }

    unsigned addCell(Bar& bar, const Part& part, double x, unsigned row) {
        if (m_cells == MAX_BAR_CELLS) {
            ++m_plan.missing;
            return row;
        }
        ++m_cells;
        const std::size_t at = bar.cells.size();
        BarCell& cell = bar.cells.emplace_back();
        cell.x = x;
        cell.width = part.width;
        cell.row = row;
        cell.bytes = part.length;
        cell.hidden = part.hidden;
        if (part.kind != PartKind::Object)
            return row + 1;
        std::optional<std::int64_t> length = part.length;
        cell.chain = chainFrom(part.node, length, part.width);
        const Node top = cell.chain.back();
        cell.goesOn = m_hasBar[top];
        const unsigned below = cell.goesOn ? row + 1 : addParts(bar, top, length, x, part.width, row + 1);
        bar.cells[at].isHolder = below > row + 1;
        return below;
    }

    // The objects that cover the same bytes: up to where it branches, or to what is plainly smaller, or to a
    // bar of its own. The length becomes that of the last one.
    [[nodiscard]] std::vector<Node> chainFrom(Node node, std::optional<std::int64_t>& length,
                                              double width) const {
        std::vector<Node> chain = {node};
        while (!m_hasBar[chain.back()] && chain.size() < MAX_LAYOUT_DEPTH) {
            const auto uppers = shownUppers(m_layout, chain.back());
            if (uppers.size() != 1 ||
                std::find(chain.begin(), chain.end(), uppers.front().node) != chain.end())
                break;
            // A part of what spans several says nothing about the size of what lies on the whole.
            const std::optional<std::int64_t> upper = lengthOf(uppers.front());
            const std::int64_t below = m_layout.nodes[chain.back()].size.value_or(length.value_or(0));
            if (upper && length && below <= *length) {
                const double share = static_cast<double>(*upper) / static_cast<double>(*length);
                if ((1 - share) * width >= LEAST_GAP)
                    break;
                length = std::min(*upper, *length);
            }
            chain.push_back(uppers.front().node);
        }
        return chain;
    }

    // What the upper one takes of the lower one, where that is told.
    [[nodiscard]] std::optional<std::int64_t> lengthOf(const LayoutEdge& edge) const {
        return edge.extent || m_lowerCount[edge.node] > 1 ? edge.extent : m_layout.nodes[edge.node].size;
    }

    [[nodiscard]] bool isOpen(Node node) const {
        return std::find(m_open.begin(), m_open.end(), node) != m_open.end();
    }

    [[nodiscard]] std::vector<Parts> placed(Node node, std::optional<std::int64_t> length,
                                            const std::vector<LayoutEdge>& uppers) const {
        if (!length)
            length = m_layout.nodes[node].size;
        std::int64_t end = length.value_or(0);
        bool hasPlaces = true;
        Parts parts;
        for (const LayoutEdge& edge : uppers) {
            const LayoutNode& upper = m_layout.nodes[edge.node];
            Part part;
            part.node = edge.node;
            part.start = upper.offset;
            part.length = lengthOf(edge);
            if (upper.has(LayoutFlag::Free))
                part.kind = PartKind::Free;
            part.weight = static_cast<double>(part.length.value_or(0));
            if (part.start && part.length)
                end = std::max(end, addSizes(*part.start, *part.length));
            else
                hasPlaces = false;
            parts.push_back(part);
        }
        // The rest of a pool is not free as the rest of a disk is.
        const bool isPool = m_hasBar[node] && !is(node, LayoutKind::Disk);
        const PartKind gapKind = isPool ? PartKind::Spacer : PartKind::Free;
        std::vector<Parts> lanes = hasPlaces ? inLanes(parts) : std::vector<Parts>{};
        if (lanes.empty() && length && coverAll(parts, *length))
            return oneOverTheOther(parts, *length);
        if (lanes.empty())
            return {inSequence(parts, length, gapKind)};
        for (Parts& lane : lanes)
            lane = withGaps(lane, end, &lane == &lanes.front() ? gapKind : PartKind::Spacer);
        return lanes;
    }

    const Layout& m_layout;
    const double m_width;
    std::vector<bool> m_hasBar, m_isReached;
    std::vector<std::size_t> m_lowerCount; ///< lowers as shown
    std::vector<Node> m_open;              ///< the holders of the cell at hand
    std::size_t m_cells = 0;
    BarPlan m_plan;
};

} // namespace

BarPlan planBars(const Layout& layout, double width) {
    return Planner(layout, width).make();
}

} // namespace Zorvane
