// SPDX-License-Identifier: Apache-2.0
// The listings of the request daemon: which part of an inventory each one is, and its document.
#pragma once

#include "lab/Inventory.h"

#include <string>

namespace Zorvane {

/// The five arguments of a listing request.
struct ListingRequest {
    std::string proxy;
    long listing = 0;
    long reserved = 0;
    std::string place; ///< an ESX host; for folders a data center; "_NONE_" where the listing needs none
    std::string server;
};

/// The statuses that a listing can end with.
enum ListingStatus : int {
    LISTING_DONE = 0,
    LISTING_UNKNOWN = 20, ///< no listing of that number
    LISTING_NO_SERVER = 48,
    LISTING_NO_PLACE = 49, ///< the server knows no such host or data center
};

struct ListingReply {
    int status = LISTING_DONE;
    std::string document; ///< lines, each with its line feed
};

/// Any proxy will do: all see the same inventory.
[[nodiscard]] ListingReply makeListing(const Inventory& inventory, const ListingRequest& request);

} // namespace Zorvane
