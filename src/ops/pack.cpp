// SPDX-License-Identifier: Apache-2.0
#include "ops/pack.h"

#include "logging/Trace.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace Zorvane {

namespace {

// Between this machine's order of bytes and the network's.
template <class Number>
Number swapped(Number value) {
    if constexpr (std::endian::native == std::endian::big || sizeof(Number) == 1)
        return value;
    else if constexpr (sizeof(Number) == 2)
        return __builtin_bswap16(value);
    else
        return __builtin_bswap32(value);
}

} // namespace

// One walk in either direction: the place in the buffer, what is left of the budget, the fields not yet done.
class FieldWalk {
  public:
    enum class Direction : std::uint8_t { ToBuffer, FromBuffer };

    FieldWalk(Direction direction, unsigned char* buffer, PacketFields fields)
        : m_direction(direction),
          m_start(buffer),
          m_place(buffer),
          m_next(fields.begin()),
          m_end(fields.end()) {}

    // False for a field that can't be done.
    bool step(char letter, unsigned count) {
        switch (letter) {
        case 'c':
            return number<std::uint8_t>(PacketField::Kind::Byte);
        case 's':
            return number<std::uint16_t>(PacketField::Kind::Word);
        case 'i':
            return number<std::uint32_t>(PacketField::Kind::Number);
        case 'S':
            return text();
        case 'X':
            return run(count);
        default:
            return false;
        }
    }

    [[nodiscard]] int length() const { return static_cast<int>(m_place - m_start); }

  private:
    void* take(PacketField::Kind kind) {
        return m_next != m_end && m_next->m_kind == kind ? (m_next++)->m_address : nullptr;
    }

    // What is left, but not below nothing: a run's last NUL may have overdrawn the budget.
    [[nodiscard]] std::size_t room() const { return static_cast<std::size_t>(std::max(m_budget, 0)); }

    void advance(std::size_t bytes) {
        m_place += bytes;
        m_budget -= static_cast<int>(bytes);
    }

    template <class Number>
    bool number(PacketField::Kind kind) {
        void* field = take(kind);
        if (!field || room() < sizeof(Number))
            return false;
        const bool isToBuffer = m_direction == Direction::ToBuffer;
        Number value;
        std::memcpy(&value, isToBuffer ? field : m_place, sizeof value);
        value = swapped(value);
        std::memcpy(isToBuffer ? m_place : field, &value, sizeof value);
        advance(sizeof value);
        return true;
    }

    // One text with its NUL, to where `field` stands in the record; 0 if it is beyond the budget.
    std::size_t copyText(char* field) {
        const char* from = m_direction == Direction::ToBuffer ? field : reinterpret_cast<char*>(m_place);
        const std::size_t size = ::strnlen(from, room()) + 1;
        if (size > room())
            return 0;
        if (m_direction == Direction::ToBuffer)
            std::memcpy(m_place, field, size);
        else
            std::memcpy(field, m_place, size);
        advance(size);
        return size;
    }

    bool text() {
        auto* field = static_cast<char*>(take(PacketField::Kind::Text));
        return field && copyText(field) != 0;
    }

    bool run(unsigned count) {
        auto* field = static_cast<char*>(take(PacketField::Kind::Text));
        if (!field)
            return false;
        const auto isAtText = [&] {
            return m_direction == Direction::ToBuffer ? *field != '\0' : room() != 0 && *m_place != 0;
        };
        for (; count > 0 || isAtText(); count -= count > 0 ? 1 : 0) {
            const std::size_t size = copyText(field);
            if (size == 0)
                return false;
            field += size;
        }
        // The last NUL is beyond the budget when the run ends exactly with it; buffers and slots have the
        // byte. Reading does not step over it, since nothing stands behind a run.
        if (m_direction == Direction::ToBuffer)
            *m_place++ = 0;
        else
            *field = '\0';
        --m_budget;
        return true;
    }

    Direction m_direction;
    unsigned char* m_start;
    unsigned char* m_place;
    int m_budget = PACKET_SIZE;
    const PacketField* m_next;
    const PacketField* m_end;
};

namespace {

int walk(FineTrace& trace, FieldWalk fields, const std::uint16_t* count, const char* format) {
    if (!format)
        return trace.leave(-1, ", return -1");
    for (; *format; ++format)
        if (!fields.step(*format, count ? *count : 0))
            return trace.leave(-1, ", return -1");
    return trace.leave(fields.length(), ", return nch=", fields.length());
}

} // namespace

int Pack(unsigned char* buffer, const std::uint16_t* count, const char* format, PacketFields fields) {
    FineTrace trace(g_libLog, "pack:Pack()", ", fmt=", orNull(format));
    return walk(trace, FieldWalk(FieldWalk::Direction::ToBuffer, buffer, fields), count, format);
}

int Unack(unsigned char* buffer, const std::uint16_t* count, const char* format, PacketFields fields) {
    FineTrace trace(g_libLog, "pack:Unack()", ", fmt=", orNull(format));
    return walk(trace, FieldWalk(FieldWalk::Direction::FromBuffer, buffer, fields), count, format);
}

} // namespace Zorvane
