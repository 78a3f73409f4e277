// SPDX-License-Identifier: Apache-2.0
// What the commands of the backup catalogue take and tell, where their words don't say it by themselves.
#pragma once

#include <cstddef>
#include <cstdint>

namespace Zorvane {

inline constexpr std::int64_t CATALOGUE_END_OF_TIME = 32535212400; ///< its last date
inline constexpr int WINDOWS_CLIENT_TYPE = 13;
inline constexpr int OTHER_CLIENT_TYPE = 0;
/// The images may stand under the other client type.
inline constexpr int STATUS_WRONG_CLIENT_TYPE = 227;

/// Of a listing of images, and the fields of its lines.
inline constexpr std::size_t IMAGE_HEADER_LINES = 2;
inline constexpr unsigned IMAGE_DATE_FIELD = 1;
inline constexpr unsigned IMAGE_TIME_FIELD = 2;
inline constexpr unsigned IMAGE_SCHEDULE_TYPE_FIELD = 7;
inline constexpr unsigned IMAGE_POLICY_FIELD = 9;

} // namespace Zorvane
