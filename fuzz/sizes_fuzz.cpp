// SPDX-License-Identifier: Apache-2.0
// Size texts, device names, hexadecimal bytes, addresses and dates.
#include "fuzz/fuzzing.h"
#include "model/CZor.h"
#include "platform/ipConvert.h"
#include "platform/valueConversion.h"
#include "platform/zorTimeFuncs.h"
#include "storage/deviceNames.h"

#include <memory>
#include <stdexcept>

using namespace Zorvane;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = Fuzz::Input(data, size).rest();
    std::uint64_t number = 0;
    ParseSizeString(text, number);

    const std::string disk = GetDiskPartOfDeviceName(text);
    try {
        const std::string partition = GetPartitionPartOfDeviceName(text);
        Fuzz::require(disk + partition == (disk.empty() && partition.empty() ? "" : text));
    } catch (const std::out_of_range&) {
        // As told in the header.
    }
    GenerateLinuxDeviceNameByDMPName(CZor(), text);

    unsigned count = 0;
    const std::unique_ptr<unsigned char[]> bytes(StringToBinary(text, count));
    Fuzz::require(BinaryToString(bytes.get(), count).size() == std::size_t{2} * count);
    StringToUlong(text);
    ConvertIp2HexString(text);
    DateToEpoch2(text);
    TimeStringToTicks(text.c_str(), nullptr, 0);
    TimeStringToTicks(text.c_str(), text.c_str(), TIME_LOCALE_FORM);
    return 0;
}
