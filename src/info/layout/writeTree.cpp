// SPDX-License-Identifier: Apache-2.0
#include "info/Session.h"
#include "info/asks/TextTable.h"
#include "info/layout/labels.h"
#include "info/layout/renderers.h"
#include "info/paragraphs.h"

#include <algorithm>
#include <optional>
#include <ostream>
#include <string_view>
#include <utility>

#include <langinfo.h>

namespace Zorvane {

namespace {

constexpr std::size_t GAP = 2;
constexpr std::size_t WIDEST_NAME = 60; ///< one that is longer does not push the other rows
constexpr std::size_t LEAST_NAME = 8, LEAST_FACTS = 24;

struct Row {
    std::string branch; ///< the lines in front of the name
    std::string below;  ///< the same for what the facts need of further lines
    std::string name, size;
    std::vector<std::string> facts; ///< with their commas; a line may end behind each
    const char* sgr = nullptr;
};

// The lines of a tree; plain ones where the terminal has no other.
struct Branches {
    const char *inner, *last, *passing, *none;
};
constexpr Branches DRAWN = {"├─ ", "└─ ", "│  ", "   "};
constexpr Branches PLAIN = {"|- ", "`- ", "|  ", "   "};

class Tree {
  public:
    explicit Tree(const Layout& layout, const Branches& branches)
        : m_layout(layout), m_branches(branches), m_isShown(layout.nodes.size()) {}

    void addDisks() {
        for (const std::size_t root : rootsOf(m_layout))
            if (isDisk(root))
                addRoot(root);
    }
    // Volumes whose parts are missing, and circles, which have no lowest object.
    void addRest() {
        for (const std::size_t root : rootsOf(m_layout))
            addRoot(root);
        for (std::size_t node = 0; node < m_layout.nodes.size(); ++node)
            if (!isTransparent(m_layout, node))
                addRoot(node);
    }
    std::vector<Row> takeRows() { return std::exchange(m_rows, {}); }

  private:
    [[nodiscard]] bool isDisk(std::size_t node) const {
        const LayoutKind kind = m_layout.nodes[node].kind;
        return kind == LayoutKind::Disk || kind == LayoutKind::Hardware;
    }

    void addRoot(std::size_t root) {
        if (!m_isShown[root])
            add({root, std::nullopt}, "", "", 0);
    }

    // The file system that a volume carries and nothing else stands on the volume's line.
    [[nodiscard]] const LayoutNode* onlyFileSystem(const std::vector<LayoutEdge>& uppers) const {
        if (uppers.size() != 1)
            return nullptr;
        const LayoutNode& upper = m_layout.nodes[uppers.front().node];
        return upper.kind == LayoutKind::FileSystem && upper.lower.size() == 1 && upper.upper.empty()
                   ? &upper
                   : nullptr;
    }

    void add(const LayoutEdge& edge, const std::string& branch, const std::string& below, unsigned depth) {
        const bool isAgain = m_isShown[edge.node];
        m_isShown[edge.node] = true;
        std::vector<LayoutEdge> uppers;
        if (!isAgain)
            uppers = shownUppers(m_layout, edge.node);
        const LayoutNode* fileSystem = onlyFileSystem(uppers);
        if (fileSystem) {
            m_isShown[uppers.front().node] = true;
            uppers.clear();
        }
        Row row = rowOf(edge, branch, isAgain, fileSystem);
        if (depth == MAX_LAYOUT_DEPTH && !uppers.empty()) {
            addFacts(row, {"what lies on it is shown below"});
            uppers.clear();
        }
        row.below = below + (uppers.empty() ? "" : m_branches.passing);
        m_rows.push_back(std::move(row));
        for (std::size_t i = 0; i < uppers.size(); ++i) {
            const bool isLast = i + 1 == uppers.size();
            add(uppers[i], below + (isLast ? m_branches.last : m_branches.inner),
                below + (isLast ? m_branches.none : m_branches.passing), depth + 1);
        }
    }

    [[nodiscard]] Row rowOf(const LayoutEdge& edge, const std::string& branch, bool isAgain,
                            const LayoutNode* fileSystem) const {
        const LayoutNode& node = m_layout.nodes[edge.node];
        Row row{branch, {}, titleOf(node), sizeText(node.size), {}, nullptr};
        row.sgr = isDisk(edge.node) ? color::BOLD : node.has(LayoutFlag::Free) ? color::DIM : nullptr;
        std::string what = node.kind == LayoutKind::FileSystem ? sortOfFileSystem(node) : sortOf(node);
        if (isAgain) {
            addFacts(row, {std::move(what)});
            addFacts(row, {"shown above"});
        } else {
            addFacts(row, withPlaces(std::move(what), node));
            if (fileSystem)
                addFacts(row, withPlaces(nameOf(*fileSystem, node), *fileSystem));
            addNotes(row, node, fileSystem);
        }
        if (edge.extent && node.size && *edge.extent < *node.size)
            addFacts(row, {sizeText(edge.extent) + " of it here"});
        return row;
    }

    static void addFacts(Row& row, const std::vector<std::string>& facts) {
        if (!row.facts.empty())
            row.facts.back() += ';';
        row.facts.insert(row.facts.end(), facts.begin(), facts.end());
    }

    static std::vector<std::string> withPlaces(std::string what, const LayoutNode& node) {
        std::vector<std::string> facts = {std::move(what)};
        for (const std::string& place : node.mountedAt) {
            if (facts.size() > 1)
                facts.back() += ',';
            facts.push_back((facts.size() > 1 ? "" : "at ") + shown(place));
        }
        return facts;
    }

    // "ZFS file system", "file system, NTFS".
    static std::string sortOfFileSystem(const LayoutNode& node) {
        return node.detail.empty() ? node.sort : node.sort + ", " + shown(node.detail);
    }

    static std::string nameOf(const LayoutNode& fileSystem, const LayoutNode& volume) {
        const auto& places = fileSystem.mountedAt;
        const bool isTold = fileSystem.name.empty() || fileSystem.name == volume.name ||
                            (places.size() == 1 && places.front() == fileSystem.name);
        return sortOf(fileSystem) + (isTold ? "" : " \"" + shown(fileSystem.name) + '"');
    }

    static void addNotes(Row& row, const LayoutNode& node, const LayoutNode* fileSystem) {
        LayoutNode both = node;
        for (const LayoutFlag flag : {LayoutFlag::Boots, LayoutFlag::System, LayoutFlag::Swap})
            if (fileSystem && fileSystem->has(flag))
                both.set(flag);
        if (const std::string flags = flagsOf(both); !flags.empty())
            addFacts(row, {flags});
        if (!node.group.empty() && node.kind != LayoutKind::Volume)
            addFacts(row, {"in " + shown(node.group)});
        if (!node.dataStore.empty())
            addFacts(row, {"goes to " + shown(node.dataStore) + (node.isDefaultStore ? " (default)" : "")});
    }

    const Layout& m_layout;
    const Branches& m_branches;
    std::vector<bool> m_isShown;
    std::vector<Row> m_rows;
};

// Where the columns of all rows stand, and what a terminal leaves of a name.
class Page {
  public:
    Page(const std::vector<Row>& rows, const Session& session)
        : m_session(session), m_width(session.width().value_or(TERMINAL_WIDTH)) {
        for (const Row& row : rows)
            m_size = std::max(m_size, terminalColumns(row.size));
        if (session.width()) {
            const std::size_t others = 2 * GAP + m_size + LEAST_FACTS;
            m_mostName = std::max(LEAST_NAME, m_width > others ? m_width - others : 0);
        }
        for (const Row& row : rows) {
            const std::size_t columns = terminalColumns(row.branch + nameOf(row));
            if (columns <= WIDEST_NAME)
                m_name = std::max(m_name, columns);
        }
    }

    void write(const std::vector<Row>& rows) const {
        for (const Row& row : rows)
            write(row);
    }

  private:
    [[nodiscard]] std::string nameOf(const Row& row) const {
        if (!m_mostName)
            return row.name;
        const std::size_t branch = terminalColumns(row.branch);
        return shortened(row.name, std::max(LEAST_NAME, *m_mostName > branch ? *m_mostName - branch : 0));
    }

    void write(const Row& row) const {
        const std::string name = nameOf(row);
        std::string line = row.branch + (row.sgr ? m_session.colored(name, row.sgr) : name);
        std::size_t at = terminalColumns(row.branch + name);
        const std::size_t sizeStart = m_name + GAP + m_size - terminalColumns(row.size);
        if (!row.size.empty())
            fill(line, at, sizeStart, row.size);
        const std::size_t start = m_name + GAP + m_size + GAP;
        const std::size_t room = std::max(LEAST_FACTS, m_width > start ? m_width - start : 0);
        std::size_t used = 0;
        for (std::string fact : row.facts) {
            if (m_session.width())
                fact = shortened(fact, room);
            const std::size_t columns = terminalColumns(fact);
            if (used > 0 && used + 1 + columns > room) {
                m_session.out() << line << '\n';
                line = row.below;
                at = terminalColumns(row.below);
                used = 0;
            }
            if (used == 0)
                fill(line, at, start, fact);
            else
                line += ' ' + fact;
            used += columns + (used > 0 ? 1 : 0);
        }
        m_session.out() << line << '\n';
    }

    // Blanks up to there, at least the gap, and the text.
    static void fill(std::string& line, std::size_t& at, std::size_t start, const std::string& text) {
        const std::size_t blanks = std::max(at == 0 ? 0 : GAP, start > at ? start - at : 0);
        line += std::string(blanks, ' ') + text;
        at += blanks + terminalColumns(text);
    }

    const Session& m_session;
    const std::size_t m_width;
    std::optional<std::size_t> m_mostName; ///< with its branch; none: no name is cut
    std::size_t m_name = 0, m_size = 0;
};

void writeInterfaces(const Layout& layout, const Session& session) {
    if (layout.interfaces.empty())
        return;
    const bool hasNetwork = layout.target && !layout.target->network.empty();
    std::vector<std::string> titles = {"INTERFACE", "MAC ADDRESS", "ADDRESSES"};
    if (hasNetwork)
        titles.insert(titles.begin() + 2, "GOES TO");
    TextTable table(titles);
    for (const LayoutInterface& interface : layout.interfaces) {
        std::vector<std::string> cells = {interface.name, interface.mac, joined(interface.addresses)};
        if (hasNetwork)
            cells.insert(cells.begin() + 2, layout.target->network);
        table.add(cells);
    }
    session.out() << '\n';
    table.write(session);
}

} // namespace

void writeLayoutTree(const Layout& layout, const Session& session) {
    const bool isUnicode = std::string_view(::nl_langinfo(CODESET)) == "UTF-8";
    Tree tree(layout, isUnicode ? DRAWN : PLAIN);
    tree.addDisks();
    const std::vector<Row> disks = tree.takeRows();
    tree.addRest();
    const std::vector<Row> rest = tree.takeRows();

    std::vector<Row> all = {Row{{}, {}, "NAME", "SIZE", {"WHAT"}, color::DIM}};
    all.insert(all.end(), disks.begin(), disks.end());
    all.insert(all.end(), rest.begin(), rest.end());
    const Page page(all, session);

    const std::string heading = headingOf(layout), summary = summaryOf(layout);
    const bool isOneLine = terminalColumns(heading + summary) + 3 <= session.width().value_or(TERMINAL_WIDTH);
    session.out() << session.colored(heading, color::BOLD) << (isOneLine ? ": " : ":\n") << summary
                  << ".\n\n";
    page.write(std::vector{all.front()});
    page.write(disks);
    if (!rest.empty()) {
        session.out() << "\nNot on any disk:\n";
        page.write(rest);
    }
    writeInterfaces(layout, session);
    for (const std::string& remark : remarksOf(layout))
        session.out() << '\n' << remark << '\n';
}

} // namespace Zorvane
