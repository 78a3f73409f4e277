// SPDX-License-Identifier: Apache-2.0
#include "info/layout/labels.h"

#include "suite/printable.h"
#include "suite/utf8.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <functional>

#include <wchar.h>

namespace Zorvane {

namespace {

constexpr std::string_view REPLACEMENT = "\xEF\xBF\xBD";
constexpr std::string_view ELLIPSIS = "\xE2\x80\xA6";

// "NTFS" is a name, "GPT_BASIC_DATA" is a word.
std::string detailOf(const LayoutNode& node) {
    std::string detail = shown(node.detail);
    if (node.kind != LayoutKind::FileSystem && node.kind != LayoutKind::Disk &&
        node.kind != LayoutKind::Hardware)
        for (char& letter : detail)
            letter =
                letter == '_' ? ' ' : static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    return detail;
}

} // namespace

std::string shown(std::string_view text, std::size_t limit) {
    // Longer than any cut: no need to look at all of a text of megabytes.
    const std::string clean = Suite::printable(text.substr(0, 4 * limit + 4));
    std::string made;
    std::size_t letters = 0, lastButOne = 0;
    for (std::size_t at = 0; at < clean.size(); ++letters) {
        if (letters == limit)
            return made.substr(0, lastButOne) + std::string(ELLIPSIS);
        lastButOne = made.size();
        const Suite::Utf8Character letter = Suite::utf8CharacterAt(clean, at);
        if (letter.isValid)
            made += clean.substr(at, letter.length);
        else
            made += REPLACEMENT;
        at += letter.length;
    }
    return made;
}

std::size_t lettersIn(std::string_view text) {
    return static_cast<std::size_t>(std::ranges::count_if(text, std::not_fn(Suite::isUtf8Continuation)));
}

std::size_t terminalColumns(std::string_view text) {
    std::size_t columns = 0;
    for (std::size_t at = 0; at < text.size();) {
        const Suite::Utf8Character letter = Suite::utf8CharacterAt(text, at);
        const int width = ::wcwidth(static_cast<wchar_t>(letter.code));
        columns += width < 0 ? 1 : static_cast<std::size_t>(width);
        at += letter.length;
    }
    return columns;
}

std::string shortened(std::string_view text, std::size_t columns) {
    if (terminalColumns(text) <= columns)
        return std::string(text);
    const std::size_t room = columns > 0 ? columns - 1 : 0;
    std::size_t head = 0, tail = text.size();
    for (std::size_t next = 0; terminalColumns(text.substr(0, next)) <= room / 2;
         next += Suite::utf8CharacterAt(text, next).length)
        head = next;
    while (terminalColumns(text.substr(tail)) < room - room / 2)
        do
            --tail;
        while (Suite::isUtf8Continuation(text[tail]));
    return std::string(text.substr(0, head)) + std::string(ELLIPSIS) + std::string(text.substr(tail));
}

std::string sizeText(std::int64_t bytes) {
    static constexpr std::array units = {"B", "KiB", "MiB", "GiB", "TiB", "PiB", "EiB"};
    double value = static_cast<double>(bytes);
    std::size_t unit = 0;
    // 1023.6 MiB would be shown as 1024.
    while (value >= 1023.5 && unit + 1 < units.size()) {
        value /= 1024;
        ++unit;
    }
    std::array<char, 32> text{};
    const bool isWhole = value >= 99.95 || value == static_cast<double>(static_cast<std::int64_t>(value));
    std::snprintf(text.data(), text.size(), isWhole ? "%.0f %s" : "%.1f %s", value, units[unit]);
    // A decimal of nothing says nothing.
    std::string made = text.data();
    if (const std::size_t zero = made.find(".0 "); zero != std::string::npos)
        made.erase(zero, 2);
    return made;
}

std::string sizeText(const std::optional<std::int64_t>& bytes) {
    return bytes ? sizeText(*bytes) : std::string();
}

std::int64_t addSizes(std::int64_t a, std::int64_t b) {
    std::int64_t sum = 0;
    return __builtin_add_overflow(a, b, &sum) ? INT64_MAX : sum;
}

std::string titleOf(const LayoutNode& node) {
    if (!node.name.empty())
        return shown(node.name);
    const std::string detail = detailOf(node);
    return detail.empty() ? node.sort : detail;
}

std::string sortOf(const LayoutNode& node) {
    const std::string detail = detailOf(node);
    if (node.kind == LayoutKind::FileSystem)
        return detail.empty() ? node.sort : detail;
    return detail.empty() ? node.sort : node.sort + ", " + detail;
}

std::string flagsOf(const LayoutNode& node) {
    std::vector<std::string> words;
    for (std::size_t i = 0; i < LAYOUT_FLAGS; ++i) {
        const auto flag = static_cast<LayoutFlag>(i);
        if (!node.has(flag) || flag == LayoutFlag::Free)
            continue;
        words.emplace_back(nameOf(flag));
        if (flag == LayoutFlag::Shared && !node.cluster.empty())
            words.back() += " by " + shown(node.cluster);
    }
    return joined(words);
}

std::string joined(const std::vector<std::string>& texts) {
    std::string made;
    for (const std::string& text : texts)
        made += (made.empty() ? "" : ", ") + text;
    return made;
}

std::string headingOf(const Layout& layout) {
    std::string heading = shown(layout.client);
    if (!layout.configuration.empty())
        heading += ", configuration " + shown(layout.configuration);
    if (!layout.system.empty())
        heading += " (" + shown(layout.system) + ")";
    return heading;
}

std::string summaryOf(const Layout& layout) {
    std::size_t disks = 0;
    std::int64_t bytes = 0;
    for (const LayoutNode& node : layout.nodes)
        if (node.kind == LayoutKind::Disk) {
            ++disks;
            bytes = addSizes(bytes, node.size.value_or(0));
        }
    std::string text = std::to_string(disks) + (disks == 1 ? " disk, " : " disks, ") + sizeText(bytes);
    constexpr std::size_t most = 4;
    std::vector<std::string> names;
    const auto booting = bootDisks(layout);
    for (const std::size_t disk : booting)
        if (names.size() < most)
            names.push_back(titleOf(layout.nodes[disk]));
    if (booting.size() > most)
        names.push_back(std::to_string(booting.size() - most) + " more");
    return text + (names.empty() ? "; nothing is marked to boot" : "; boots from " + joined(names));
}

std::vector<std::string> remarksOf(const Layout& layout) {
    std::vector<std::string> remarks;
    if (layout.leftOut > 0)
        remarks.push_back(std::to_string(layout.leftOut) + " more objects are left out.");
    if (layout.dangling > 0)
        remarks.push_back(std::to_string(layout.dangling) +
                          (layout.dangling == 1 ? " reference leads" : " references lead") +
                          " to no row: the configuration is not whole.");
    if (layout.target)
        for (const std::string& disk : layout.target->unknownDisks)
            remarks.push_back("The configuration file maps " + shown(disk) +
                              ", which the client does not have.");
    return remarks;
}

} // namespace Zorvane
