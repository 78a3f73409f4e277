// SPDX-License-Identifier: Apache-2.0
#include "model/xmlText.h"

#include "platform/codeSetCommon.h"

#include <algorithm>
#include <memory>

#include <xercesc/framework/XMLRecognizer.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/TransService.hpp>
#include <xercesc/util/XMLString.hpp>

namespace Zorvane {

namespace {

using namespace xercesc;

bool isAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

void widenBytes(std::string_view bytes, std::vector<XMLCh>& wide) {
    wide.resize(bytes.size() + 1);
    std::transform(bytes.begin(), bytes.end(), wide.begin(),
                   [](char c) { return static_cast<XMLCh>(static_cast<unsigned char>(c)); });
    wide.back() = 0;
}

} // namespace

void nativeToWide(std::string_view native, std::vector<XMLCh>& wide) {
    if (isAscii(native)) {
        widenBytes(native, wide);
        return;
    }
    const std::string utf8 = ZorMbsToDbCommon(std::string(native));
    try {
        const TranscodeFromStr transcoded(reinterpret_cast<const XMLByte*>(utf8.data()), utf8.size(),
                                          "UTF-8");
        wide.assign(transcoded.str(), transcoded.str() + transcoded.length());
        wide.push_back(0);
    } catch (const XMLException&) {
        widenBytes(native, wide);
    }
}

void wideToNative(const XMLCh* wide, std::string& native) {
    XMLSize_t length = 0;
    unsigned seen = 0; // every bit of every character
    for (; wide[length]; ++length)
        seen |= wide[length];
    if (seen < 0x80) {
        native.resize(length);
        std::transform(wide, wide + length, native.begin(), [](XMLCh c) { return static_cast<char>(c); });
        return;
    }
    try {
        const TranscodeToStr transcoded(wide, length, "UTF-8");
        native = ZorDbToMbsCommon(
            std::string(reinterpret_cast<const char*>(transcoded.str()), transcoded.length()));
    } catch (const XMLException&) {
        // A lone surrogate has no UTF-8 form; the characters around it are kept.
        native.clear();
        for (XMLSize_t i = 0; i < length; ++i)
            native += wide[i] < 0x80 ? static_cast<char>(wide[i]) : '?';
    }
}

} // namespace Zorvane
