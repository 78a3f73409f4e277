// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "logging/LogValue.h"
#include "suite/quul.h"

#include <span>

namespace Zorvane {

/// A second sink for the catalogue messages of a channel. It is a place kept free: its writes are empty.
class LogMirror {
  public:
    static constexpr mrthLogResult_t NotWritten = 1;

    mrthLogResult_t WriteDiagMsg(mrthLogFlags_t, mrthLogDebugLevel_t, const char*, std::uint64_t,
                                 std::span<const Mirathi::L10N::LogValue>) noexcept {
        return NotWritten;
    }
    mrthLogResult_t WriteAppMsg(mrthLogFlags_t, std::int32_t, std::uint64_t,
                                std::span<const Mirathi::L10N::LogValue>) noexcept {
        return NotWritten;
    }
};

} // namespace Zorvane
