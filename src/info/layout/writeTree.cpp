// SPDX-License-Identifier: Apache-2.0
#include "info/Session.h"
#include "info/layout/labels.h"
#include "info/layout/renderers.h"

#include <algorithm>
#include <array>
#include <ostream>
#include <string_view>
#include <utility>

#include <langinfo.h>

namespace Zorvane {

namespace {

enum Column : std::size_t { NAME, SIZE, WHAT, FILE_SYSTEM, MOUNTED_AT, NOTES, COLUMNS };
using Cells = std::array<std::string, COLUMNS>;

constexpr std::array<const char*, COLUMNS> TITLES = {"NAME",        "SIZE",       "WHAT",
                                                     "FILE SYSTEM", "MOUNTED AT", "NOTES"};
constexpr std::array<std::size_t, COLUMNS> LIMITS = {60, 10, 40, 40, 100, 120};

struct Row {
    std::string branch; ///< the lines in front of the name
    Cells cells;
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
        const LayoutNode& node = m_layout.nodes[edge.node];
        Row row = rowOf(edge, branch);
        const bool isAgain = m_isShown[edge.node];
        std::vector<LayoutEdge> uppers;
        if (isAgain) {
            row.cells[MOUNTED_AT].clear();
            row.cells[NOTES] = "shown above";
        } else
            uppers = shownUppers(m_layout, edge.node);
        m_isShown[edge.node] = true;
        if (const LayoutNode* fileSystem = isAgain ? nullptr : onlyFileSystem(uppers)) {
            m_isShown[uppers.front().node] = true;
            uppers.clear();
            fillFileSystem(row, node, *fileSystem);
        }
        if (depth == MAX_LAYOUT_DEPTH && !uppers.empty()) {
            row.cells[NOTES] = "what lies on it is shown below";
            uppers.clear();
        }
        m_rows.push_back(std::move(row));
        for (std::size_t i = 0; i < uppers.size(); ++i) {
            const bool isLast = i + 1 == uppers.size();
            add(uppers[i], below + (isLast ? m_branches.last : m_branches.inner),
                below + (isLast ? m_branches.none : m_branches.passing), depth + 1);
        }
    }

    [[nodiscard]] Row rowOf(const LayoutEdge& edge, const std::string& branch) const {
        const LayoutNode& node = m_layout.nodes[edge.node];
        Row row{branch, {}, nullptr};
        const bool isFileSystem = node.kind == LayoutKind::FileSystem;
        row.cells[NAME] = titleOf(node);
        row.cells[SIZE] = sizeText(node.size);
        row.cells[WHAT] = isFileSystem ? node.sort : sortOf(node);
        row.cells[FILE_SYSTEM] = isFileSystem ? shown(node.detail) : "";
        row.cells[MOUNTED_AT] = mounts(node);
        row.cells[NOTES] = notes(node);
        if (edge.extent && node.size && *edge.extent < *node.size)
            append(row.cells[NOTES], sizeText(edge.extent) + " of it here");
        row.sgr = isDisk(edge.node) ? color::BOLD : node.has(LayoutFlag::Free) ? color::DIM : nullptr;
        return row;
    }

    static void append(std::string& cell, const std::string& text) {
        if (!text.empty())
            cell += (cell.empty() ? "" : ", ") + text;
    }

    static void fillFileSystem(Row& row, const LayoutNode& volume, const LayoutNode& fileSystem) {
        row.cells[FILE_SYSTEM] = sortOf(fileSystem);
        if (!fileSystem.name.empty() && fileSystem.name != volume.name &&
            mounts(fileSystem) != fileSystem.name)
            row.cells[FILE_SYSTEM] += " \"" + shown(fileSystem.name) + '"';
        append(row.cells[MOUNTED_AT], mounts(fileSystem));
        LayoutNode both = volume;
        for (const LayoutFlag flag : {LayoutFlag::Boots, LayoutFlag::System, LayoutFlag::Swap})
            if (fileSystem.has(flag))
                both.set(flag);
        row.cells[NOTES] = notes(both);
    }

    static std::string mounts(const LayoutNode& node) {
        std::vector<std::string> places;
        for (const std::string& place : node.mountedAt)
            places.push_back(shown(place));
        return joined(places);
    }

    static std::string notes(const LayoutNode& node) {
        std::string text = flagsOf(node);
        if (!node.group.empty() && node.kind != LayoutKind::Volume)
            append(text, "in " + shown(node.group));
        if (!node.dataStore.empty())
            append(text, "goes to " + shown(node.dataStore) + (node.isDefaultStore ? " (default)" : ""));
        return text;
    }

    const Layout& m_layout;
    const Branches& m_branches;
    std::vector<bool> m_isShown;
    std::vector<Row> m_rows;
};

using Widths = std::array<std::size_t, COLUMNS>;

void widen(Widths& widths, const std::vector<Row>& rows) {
    for (const Row& row : rows)
        for (std::size_t column = 0; column < COLUMNS; ++column) {
            const std::size_t branch = column == NAME ? terminalColumns(row.branch) : 0;
            widths[column] =
                std::max(widths[column], branch + terminalColumns(shown(row.cells[column], LIMITS[column])));
        }
}

void writeRows(const std::vector<Row>& rows, const Widths& widths, const Session& session) {
    for (const Row& row : rows) {
        std::string line;
        std::size_t blanks = 0;
        for (std::size_t column = 0; column < COLUMNS; ++column) {
            std::string text = shown(row.cells[column], LIMITS[column]);
            std::size_t width = terminalColumns(text);
            if (column == NAME) {
                width += terminalColumns(row.branch);
                text = row.branch + (row.sgr ? session.colored(text, row.sgr) : text);
            }
            const std::size_t missing = widths[column] - width;
            // Sizes stand right; no line ends in blanks.
            if (column == SIZE)
                blanks += missing;
            if (!text.empty()) {
                line += std::string(blanks, ' ') + text;
                blanks = 0;
            }
            blanks += (column == SIZE ? 0 : missing) + (widths[column] > 0 ? 2 : 0);
        }
        session.out() << line << '\n';
    }
}

void writeInterfaces(const Layout& layout, const Session& session) {
    if (layout.interfaces.empty())
        return;
    session.out() << "\nInterfaces:\n";
    for (const LayoutInterface& interface : layout.interfaces) {
        session.out() << "  " << shown(interface.name) << "  " << shown(interface.mac) << "  "
                      << joined(interface.addresses);
        if (layout.target && !layout.target->network.empty())
            session.out() << "  goes to " << shown(layout.target->network);
        session.out() << '\n';
    }
}

} // namespace

void writeLayoutTree(const Layout& layout, const Session& session) {
    const bool isUnicode = std::string_view(::nl_langinfo(CODESET)) == "UTF-8";
    Tree tree(layout, isUnicode ? DRAWN : PLAIN);
    tree.addDisks();
    std::vector<Row> disks = tree.takeRows();
    tree.addRest();
    const std::vector<Row> rest = tree.takeRows();

    Row titles;
    for (std::size_t column = 0; column < COLUMNS; ++column)
        titles.cells[column] = TITLES[column];
    titles.sgr = color::DIM;
    disks.insert(disks.begin(), titles);
    Widths widths{};
    widen(widths, disks);
    widen(widths, rest);

    session.out() << session.colored(headingOf(layout), color::BOLD) << ": " << summaryOf(layout) << ".\n\n";
    writeRows(disks, widths, session);
    if (!rest.empty()) {
        session.out() << "\nNot on any disk:\n";
        writeRows(rest, widths, session);
    }
    writeInterfaces(layout, session);
    for (const std::string& remark : remarksOf(layout))
        session.out() << '\n' << remark << '\n';
}

} // namespace Zorvane
