// SPDX-License-Identifier: Apache-2.0
// The bridge to the message catalogue: originator and number in, text out.
#pragma once

#include "suite/quul.h"

#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>

namespace Zorvane {

/// The texts that stand in for a message whose lookup failed.
inline constexpr const char* MESSAGE_CATALOG_ERROR = "Message catalog error!";
inline constexpr const char* UNEXPECTED_CATALOG_ERROR = "Unexpected message catalog error!";

/// A message could not be had from the catalogue.
class CatalogFailure : public std::runtime_error {
  public:
    CatalogFailure() : std::runtime_error("message catalog failure") {}
};

/// The last step of a lookup: `status` is what mrthLis returned for the arguments, which are freed here.
/// Throws CatalogFailure when the message can't be had.
std::string GetQuULMessageBottom(std::uint64_t originator, std::uint64_t number, std::int32_t status,
                                 mrthLisArgs_t& arguments);

/// The catalogue's text with up to five parameters filled in. Throws as GetQuULMessageBottom does.
std::string getMessage(std::uint64_t originator, std::uint64_t number,
                       std::span<const std::string> parameters = {});

} // namespace Zorvane
