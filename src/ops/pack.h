// SPDX-License-Identifier: Apache-2.0
// The two field walkers behind every packet: fields on one side, bytes in network order on the other.
//
//   letter  wire form                                               field
//   c       1 byte                                                  std::uint8_t
//   s       2 bytes, big-endian                                     std::uint16_t
//   i       4 bytes, big-endian                                     std::int32_t or std::uint32_t
//   S       a text and its NUL                                      char*, a text or the slot for one
//   X       a run of texts, each with its NUL, and one more NUL     char*, the run or the place for one
//
// Nothing is aligned and nothing stands between the fields: only the format tells what a byte means.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>

namespace Zorvane {

/// The budget of a walk: the most bytes that one packet has, its header included.
inline constexpr std::size_t PACKET_SIZE = 4072;

/// The room behind a packet's bytes in memory. An `X` that ends exactly with the budget still writes its last
/// NUL, and a reader looks for one there.
inline constexpr std::size_t PACKET_BUFFER_SIZE = PACKET_SIZE + 1;

/// Where a field stands, and what it is.
class PacketField {
  public:
    PacketField(std::uint8_t* byte) noexcept : m_kind(Kind::Byte), m_address(byte) {}
    PacketField(std::uint16_t* word) noexcept : m_kind(Kind::Word), m_address(word) {}
    PacketField(std::int32_t* number) noexcept : m_kind(Kind::Number), m_address(number) {}
    PacketField(std::uint32_t* number) noexcept : m_kind(Kind::Number), m_address(number) {}
    /// A place to unpack into has room for PACKET_BUFFER_SIZE bytes, whatever its field's own bound is: a
    /// peer may fill the packet's whole budget with one text.
    PacketField(char* text) noexcept : m_kind(Kind::Text), m_address(text) {}

  private:
    friend class FieldWalk;
    enum class Kind : std::uint8_t { Byte, Word, Number, Text };

    Kind m_kind;
    void* m_address;
};

using PacketFields = std::initializer_list<PacketField>;

/// The common type of both walkers. The buffer has PACKET_BUFFER_SIZE bytes. `count` is for `X` alone, null
/// means 0: the least number of texts in the run, which goes on behind them until an empty text. The result
/// is the number of bytes written or read; -1 for a field beyond the budget, an unknown letter, or a field
/// that is not what its letter says; the fields before it are done by then.
using FieldWalker = int (*)(unsigned char* buffer, const std::uint16_t* count, const char* format,
                            PacketFields fields);

/// From fields to bytes. The fields are only read.
int Pack(unsigned char* buffer, const std::uint16_t* count, const char* format, PacketFields fields);
/// From bytes to fields. The result does not count the last NUL of an `X`, unlike Pack's.
int Unack(unsigned char* buffer, const std::uint16_t* count, const char* format, PacketFields fields);

} // namespace Zorvane
