// SPDX-License-Identifier: Apache-2.0
#include "suite/toml.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <new>
#include <sstream>
#include <string>

namespace Zorvane::Suite {

namespace {

// No line of a file is nearly as long; a key of endless parts nests as many tables, which would exhaust the
// stack.
constexpr std::size_t MAX_LINE_SIZE = 4096;

void refuseLongLines(std::string_view text, std::string_view file) {
    for (toml::source_index line = 1; !text.empty(); ++line) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        if (end > MAX_LINE_SIZE)
            throw toml::parse_error("the line is too long", {line, MAX_LINE_SIZE + 1},
                                    std::make_shared<const std::string>(file));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
}

// The parser can't bear a lack of memory: nearly all of it is declared to throw nothing, and ends the process
// instead. So it works with a reserve that is let go when memory runs out; the lack is told behind it.
class Reserve {
  public:
    explicit Reserve(std::size_t size) {
        s_memory = ::operator new(size);
        m_handler = std::set_new_handler(&letGo);
    }
    Reserve(const Reserve&) = delete;
    Reserve& operator=(const Reserve&) = delete;
    ~Reserve() {
        std::set_new_handler(m_handler);
        ::operator delete(s_memory.exchange(nullptr));
    }

    [[nodiscard]] static bool isGone() { return !s_memory; }

  private:
    static void letGo() {
        void* const memory = s_memory.exchange(nullptr);
        if (!memory)
            throw std::bad_alloc();
        ::operator delete(memory);
    }

    static inline std::atomic<void*> s_memory = nullptr;
    std::new_handler m_handler = nullptr;
};

// A parsed text takes some ten times its size.
constexpr std::size_t reserveFor(std::size_t textSize) {
    return (std::size_t{64} << 10) + 64 * textSize;
}

} // namespace

toml::table parseToml(std::string_view text, std::string_view file) {
    refuseLongLines(text, file);
    const Reserve reserve(reserveFor(text.size()));
    toml::table root = toml::parse(text, file);
    if (Reserve::isGone())
        throw std::bad_alloc();
    return root;
}

std::string tomlText(const toml::table& table) {
    // Of texts that hold lines or three quotes the library's other forms of strings make what can't be read.
    using Flags = toml::format_flags;
    toml::toml_formatter formatter(table,
                                   toml::toml_formatter::default_flags &
                                       ~(Flags::allow_literal_strings | Flags::allow_multi_line_strings));
    std::ostringstream text;
    text << formatter << '\n';
    return text.str();
}

} // namespace Zorvane::Suite
