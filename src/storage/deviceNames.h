// SPDX-License-Identifier: Apache-2.0
// Rules over the names of a client's disks and partitions, and over size texts.
#pragma once

#include <cstdint>
#include <string>

namespace Zorvane {

class CZor;

/// 1 if the name is of the family, else 0.
int IsScsiDeviceName(const std::string& name);
int IsIdeDeviceName(const std::string& name);
int IsCcissDeviceName(const std::string& name);

/// The two parts of a partition's name: "/dev/sda" and "1", or "/dev/cciss/c0d0" and "p1". Both are empty for
/// a name of another family. A disk's name is a disk part as a whole; it has no partition part, and asking
/// for one throws std::out_of_range.
std::string GetDiskPartOfDeviceName(const std::string& name);
std::string GetPartitionPartOfDeviceName(const std::string& name);

/// Reads a size such as "512", "2m" or "1.5K": a suffix of K, M, G, T, P or E in either case multiplies by a
/// power of 1024, and one decimal is allowed in front of it. 0, or 1 for any other text. A size beyond 64
/// bits wraps.
int ParseSizeString(const std::string& text, std::uint64_t& number);

/// The device name under which the restored system will know a multipath disk or partition of this client;
/// the name itself if no Linux disk of the client belongs to it.
std::string GenerateLinuxDeviceNameByDMPName(const CZor& container, const std::string& name);

} // namespace Zorvane
