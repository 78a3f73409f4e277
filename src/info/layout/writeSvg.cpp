// SPDX-License-Identifier: Apache-2.0
#include "info/layout/BarPlan.h"
#include "info/layout/cellText.h"
#include "info/layout/labels.h"
#include "info/layout/palette.h"
#include "info/layout/renderers.h"
#include "info/layout/svgElements.h"

#include <algorithm>
#include <map>
#include <utility>

namespace Zorvane {

namespace {

constexpr double MARGIN = 24, LABELS = 210, BARS = 860, STORES = 190;
constexpr double ROW = 34, ROW_GAP = 2, NOTE = 14, BAR_GAP = 11, LEAST_BAR = 40, LEAST_BESIDE = 520;
constexpr double BIG = 18, NORMAL = 12, SMALL = 10.5;
constexpr std::size_t MOST_FACTS = 3, MOST_NOTES = 8; ///< lines
constexpr const char* BOLD = "font-weight=\"bold\"";
constexpr const char* QUIET = "fill=\"#495057\"";
constexpr const char* HATCH = "url(#hatch)";

// a, b, ... z, aa, ab, ...
std::string letterFor(std::size_t number) {
    std::string letters;
    for (++number; number > 0; number = (number - 1) / 26)
        letters.insert(letters.begin(), static_cast<char>('a' + (number - 1) % 26));
    return letters;
}

// Texts as lines of a width, none of them broken. The last of too many lines tells what is left out.
std::vector<std::string> wrapped(const std::vector<std::string>& texts, double width, double fontSize,
                                 std::size_t most) {
    std::vector<std::string> lines;
    std::size_t first = 0; // text of the last line
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const std::string whole = cut(texts[i], width, fontSize);
        if (!lines.empty() && widthOf(dotted({lines.back(), whole}), fontSize) <= width)
            lines.back() = dotted({lines.back(), whole});
        else if (lines.size() == most) {
            lines.back() = "and " + std::to_string(texts.size() - first) + " more";
            break;
        } else {
            lines.push_back(whole);
            first = i;
        }
    }
    return lines;
}

// A text as lines, broken at its blanks.
std::vector<std::string> wrapped(const std::string& text, double width, double fontSize) {
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find(' ', at), text.size());
        const std::string word = text.substr(at, end - at);
        if (!lines.empty() && widthOf(lines.back() + ' ' + word, fontSize) <= width)
            lines.back() += ' ' + word;
        else
            lines.push_back(cut(word, width, fontSize));
        at = end + 1;
    }
    return lines;
}

class Drawing {
  public:
    explicit Drawing(const Layout& layout)
        : m_layout(layout),
          m_boots(carriersOf(layout, LayoutFlag::Boots)),
          m_system(carriersOf(layout, LayoutFlag::System)) {}

    void draw(std::ostream& out) {
        const BarPlan plan = planBars(m_layout, BARS);
        head(plan);
        for (const BarSection& section : plan.sections) {
            heading(section.title);
            for (const Bar& bar : section.bars)
                drawBar(bar);
        }
        interfaces();
        stores();
        for (const std::string& remark : remarksOf(m_layout))
            line(remark);
        if (plan.missing > 0)
            line(std::to_string(plan.missing) + " more parts are not drawn.");
        m_svg.write(out, width(), m_y + MARGIN, headingOf(m_layout));
    }

  private:
    [[nodiscard]] double width() const { return MARGIN * 2 + LABELS + BARS + (m_layout.target ? STORES : 0); }

    void line(const std::string& text) {
        for (const std::string& part : wrapped(text, width() - 2 * MARGIN, NORMAL)) {
            m_svg.text(MARGIN, m_y + NORMAL, NORMAL, part);
            m_y += NORMAL * 1.5;
        }
    }

    void heading(const std::string& text) {
        m_svg.text(MARGIN, m_y + 14, 14, text, BOLD);
        m_y += 26;
    }

    void head(const BarPlan& plan) {
        m_svg.text(MARGIN, m_y + BIG, BIG, cut(headingOf(m_layout), width() - 2 * MARGIN, BIG, true), BOLD);
        m_y += BIG * 1.7;
        line(summaryOf(m_layout) +
             (plan.longest > 0
                  ? ". The bars are as long as the sizes; the longest is " + sizeText(plan.longest) + "."
                  : "."));
        line("Below a part stands what it holds. A thick line marks what boots. Parts without room for their "
             "text are "
             "told beside or under their bar, from left to right.");
        double x = MARGIN;
        for (std::size_t i = 0; i < LAYOUT_USES; ++i) {
            const auto use = static_cast<LayoutUse>(i);
            paint({x, m_y + 4, 22, 14}, use, false, "");
            m_svg.text(x + 28, m_y + 15, NORMAL, paintOf(use).name);
            x += 44 + widthOf(paintOf(use).name, NORMAL);
        }
        m_y += 38;
    }

    void paint(const SvgBox& box, LayoutUse use, bool isThick, const std::string& hint) {
        const LayoutPaint& own = paintOf(use);
        const char* dashes = use == LayoutUse::Free ? "stroke-dasharray=\"4 3\"" : "";
        // A narrow box would be all line.
        const bool isNarrow = box.width < MIN_CELL / 2;
        const double inset = !isThick ? 0 : isNarrow ? 0.2 : 0.7;
        m_svg.box({box.x + inset, box.y + inset, box.width - 2 * inset, box.height - 2 * inset}, own.fill,
                  isThick ? "#212529" : own.line,
                  std::string(!isThick   ? ""
                              : isNarrow ? "stroke-width=\"1.4\" "
                                         : "stroke-width=\"2.4\" ") +
                      dashes,
                  hint);
        // The pattern tells swap from the rest without colour.
        if (use == LayoutUse::Swap)
            m_svg.box(box, HATCH, "none", "pointer-events=\"none\"");
    }

    // What a cell has no room for.
    struct Note {
        std::string letter; ///< none: the cell has no room for that either
        std::string text;
        LayoutUse use;
    };

    void drawBar(const Bar& bar) {
        const LayoutNode& node = m_layout.nodes[bar.node];
        const double top = m_y, left = MARGIN + LABELS;
        const double bottom = top + bar.rows * (ROW + ROW_GAP);
        // Seen where the parts of a pool do not fill it.
        paint({left + 0.5, top + 0.5, bar.width - 1, ROW - 1},
              bar.cells.empty() ? LayoutUse::Free : LayoutUse::Holder, false, titleOf(node));
        std::vector<Note> notes;
        if (bar.cells.empty())
            notes.push_back({"", "nothing on it", LayoutUse::Free});
        for (const BarCell& cell : bar.cells)
            drawCell(cell, left, top, notes);
        const bool isBeside = BARS - bar.width - NOTE >= LEAST_BESIDE;
        const double shift = isBeside ? bar.width + NOTE : 0;
        const double notesBottom =
            drawNotes(notes, {left + shift, isBeside ? top + 2 : bottom, BARS - shift, 0});
        const double labelBottom = drawBarLabel(bar, node, top);
        if (m_layout.target && !node.dataStore.empty())
            drawStore(node, top);
        m_y = std::max({bottom, notesBottom, labelBottom, top + LEAST_BAR}) + BAR_GAP;
    }

    // One behind the other, each after a patch of its cell's paint; returns where the last line ends.
    double drawNotes(const std::vector<Note>& notes, const SvgBox& place) {
        constexpr double patch = 12, behind = 14;
        double x = place.x, y = place.y;
        std::size_t lines = 1;
        for (std::size_t i = 0; i < notes.size(); ++i) {
            const Note& note = notes[i];
            const std::string text = cut(note.text, place.width - patch - 4, SMALL);
            const double width = patch + 4 + widthOf(text, SMALL);
            if (x > place.x && x + width > place.x + place.width) {
                x = place.x;
                y += NOTE + 2;
                if (++lines > MOST_NOTES) {
                    m_svg.text(x, y + SMALL, SMALL, "and " + std::to_string(notes.size() - i) + " more",
                               QUIET);
                    break;
                }
            }
            paint({x + 0.5, y + 0.5, patch - 1, patch - 1}, note.use, false, "");
            m_svg.text(x + patch / 2, y + 9, 9, note.letter, "text-anchor=\"middle\"");
            m_svg.text(x + patch + 4, y + SMALL - 0.5, SMALL, text, QUIET);
            x += width + behind;
        }
        return notes.empty() ? place.y : y + NOTE + 2;
    }

    double drawBarLabel(const Bar& bar, const LayoutNode& node, double top) {
        constexpr double room = LABELS - 14;
        double y = top + NORMAL;
        m_svg.text(MARGIN, y, NORMAL, cut(titleOf(node), room, NORMAL, true), BOLD);
        std::vector<std::string> facts;
        if (node.size)
            facts.push_back(sizeText(node.size));
        else
            facts.emplace_back("size unknown");
        facts.push_back(sortOf(node));
        if (!flagsOf(node).empty())
            facts.push_back(flagsOf(node));
        if (!node.group.empty())
            facts.push_back("in " + shown(node.group));
        for (const std::string& place : node.mountedAt)
            facts.push_back("at " + shown(place));
        if (!bar.isToScale)
            facts.emplace_back("bar not to scale");
        for (const std::string& fact : wrapped(facts, room, SMALL, MOST_FACTS)) {
            y += NOTE;
            m_svg.text(MARGIN, y, SMALL, fact, QUIET);
        }
        return y + 4;
    }

    void drawStore(const LayoutNode& node, double top) {
        const double x = MARGIN + LABELS + BARS + 14;
        m_svg.text(x, top + NORMAL + 2, NORMAL,
                   "\xE2\x86\x92 " + cut(shown(node.dataStore), STORES - 34, NORMAL, true), BOLD);
        m_svg.text(x, top + NORMAL + 2 + NOTE, SMALL,
                   node.isDefaultStore ? "the default data store" : "data store", QUIET);
    }

    void drawCell(const BarCell& cell, double left, double top, std::vector<Note>& notes) {
        // Parts that are hardly wider than a line have no frame between them.
        const double frame = cell.width < MIN_CELL / 2 ? 0.25 : 0.5;
        const SvgBox box = {left + cell.x + frame, top + cell.row * (ROW + ROW_GAP) + 0.5,
                            cell.width - 2 * frame, ROW - 1};
        const CellText text = textOf(m_layout, cell);
        const auto [use, isThick] = paintOfCell(cell);
        paint(box, use, isThick, text.hint);
        constexpr double pad = 4, wide = 200;
        const double room = box.width - 2 * pad;
        const auto fits = [&](const std::string& words, double fontSize, bool isBold) {
            return widthOf(words, fontSize, isBold) <= room;
        };
        if (room < wide &&
            !(fits(text.title, NORMAL, true) && (text.facts.empty() || fits(text.facts[0], SMALL, false)))) {
            const std::string letter = letterFor(notes.size());
            const bool hasRoom = widthOf(letter, SMALL) + 4 <= box.width;
            if (hasRoom)
                m_svg.text(box.x + box.width / 2, box.y + ROW / 2 + 3, SMALL, letter,
                           "text-anchor=\"middle\"");
            notes.push_back({hasRoom ? letter : "", text.note, use});
            return;
        }
        const std::string title = cut(text.title, room, NORMAL, true);
        m_svg.text(box.x + pad, box.y + 14, NORMAL, title, use == LayoutUse::Free ? QUIET : BOLD);
        const double used = widthOf(title, NORMAL, true) + 10;
        m_svg.text(box.x + pad + used, box.y + 14, SMALL, fitting(text.names, room - used), QUIET);
        m_svg.text(box.x + pad, box.y + 28, SMALL, fitting(text.facts, room));
    }

    // What has a bar of its own is painted here by what lies there.
    [[nodiscard]] std::pair<LayoutUse, bool> paintOfCell(const BarCell& cell) const {
        if (cell.hidden > 0)
            return {LayoutUse::Holder, false};
        if (cell.chain.empty())
            return {LayoutUse::Free, false};
        const std::size_t top = cell.chain.back();
        const bool isThick = (cell.goesOn && m_boots[top]) ||
                             std::any_of(cell.chain.begin(), cell.chain.end(), [&](std::size_t node) {
                                 return m_layout.nodes[node].has(LayoutFlag::Boots);
                             });
        if (cell.goesOn && (m_boots[top] || m_system[top]))
            return {LayoutUse::System, isThick};
        return {useOf(m_layout, cell.chain, cell.isHolder || cell.goesOn), isThick};
    }

    // As many of the texts as have room, none of them cut.
    static std::string fitting(const std::vector<std::string>& texts, double room) {
        std::string made;
        for (const std::string& text : texts) {
            const std::string longer = dotted({made, text});
            if (widthOf(longer, SMALL) > room)
                break;
            made = longer;
        }
        return made;
    }

    void interfaces() {
        if (!m_layout.target || m_layout.interfaces.empty())
            return;
        heading("Interfaces");
        const std::string network =
            m_layout.target->network.empty() ? "no network" : shown(m_layout.target->network);
        for (const LayoutInterface& interface : m_layout.interfaces) {
            const double x = MARGIN + LABELS;
            m_svg.text(MARGIN, m_y + 20, NORMAL, cut(shown(interface.name), LABELS - 14, NORMAL, true), BOLD);
            m_svg.box({x, m_y, 420, 30}, "#f1f3f5", "#868e96");
            m_svg.text(x + 10, m_y + 19, NORMAL,
                       cut(dotted({shown(interface.mac), joined(interface.addresses)}), 400, NORMAL));
            m_svg.text(x + 434, m_y + 19, NORMAL, "\xE2\x86\x92");
            m_svg.box({x + 460, m_y, 260, 30}, "#f1f3f5", "#868e96");
            m_svg.text(x + 470, m_y + 19, NORMAL, cut(network, 240, NORMAL, true), BOLD);
            m_y += 38;
        }
        m_y += 8;
    }

    // How much each data store is given.
    void stores() {
        if (!m_layout.target)
            return;
        struct Sum {
            std::size_t disks = 0;
            std::int64_t bytes = 0;
        };
        std::map<std::string, Sum> sums;
        for (const LayoutNode& node : m_layout.nodes)
            if (node.kind == LayoutKind::Disk && !node.dataStore.empty()) {
                Sum& sum = sums[node.dataStore];
                ++sum.disks;
                sum.bytes = addSizes(sum.bytes, node.size.value_or(0));
            }
        if (sums.empty())
            return;
        heading("Data stores");
        for (const auto& [name, sum] : sums)
            line(shown(name, 80) + ": " + std::to_string(sum.disks) +
                 (sum.disks == 1 ? " disk, " : " disks, ") + sizeText(sum.bytes));
        m_y += 8;
    }

    const Layout& m_layout;
    const std::vector<bool> m_boots, m_system; ///< nodes that carry such
    SvgElements m_svg;
    double m_y = MARGIN;
};

} // namespace

void writeLayoutSvg(const Layout& layout, std::ostream& out) {
    Drawing(layout).draw(out);
}

} // namespace Zorvane
