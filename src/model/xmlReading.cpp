// SPDX-License-Identifier: Apache-2.0
// XmlParser: walking a parsed document and taking values out of it.
#include "logging/Trace.h"
#include "model/XmlParser.h"
#include "model/XmlParserImpl.h"
#include "model/xmlText.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <new>
#include <optional>
#include <type_traits>

#include <xercesc/util/Base64.hpp>

namespace Zorvane {

using namespace xercesc;

namespace {

void log(mrthLogDebugLevel_t level, const char* label, const char* text) {
    if (g_libLog)
        g_libLog->WriteDebugMsg(DEBUG_FLAGS, level, label, text);
}

DOMNode* skipTexts(DOMNode* node) {
    while (node && node->getNodeType() == DOMNode::TEXT_NODE)
        node = node->getNextSibling();
    return node;
}

// The name of an element. A node that is neither text nor element (a comment) ends a walk, and this stays so.
const XmlName* nameOf(const DOMNode* node) {
    if (!node || node->getNodeType() != DOMNode::ELEMENT_NODE)
        return nullptr;
    // Names are compared without their prefix.
    const XMLCh* local = node->getLocalName();
    return reinterpret_cast<const XmlName*>(local ? local : node->getNodeName());
}

char* copyForCaller(const std::string* tag) {
    return tag ? XMLString::replicate(tag->c_str()) : nullptr;
}

// The text of an element; null for an element without any.
const XMLCh* wideTextOf(const DOMNode* node) {
    const DOMNode* child = node ? node->getFirstChild() : nullptr;
    return child ? child->getNodeValue() : nullptr;
}

// Whether there is anything to take values from.
bool isReadable(const XmlParserImpl* impl) {
    if (!impl)
        log(LEVEL_FAILURE, "XmlParser:XmlParser::CopyNodeValue()",
            "Exiting, No Implementation for XmlParserImplementation for XmlParserImpl allocated.");
    return impl != nullptr;
}

// The text of the value cursor, or null.
const XMLCh* wideValue(const XmlParserImpl* impl) {
    return isReadable(impl) ? wideTextOf(impl->m_pCurrentValue) : nullptr;
}

const std::string* valueText(XmlParserImpl* impl) {
    const XMLCh* wide = wideValue(impl);
    if (!wide)
        return nullptr;
    wideToNative(wide, impl->m_text);
    return &impl->m_text;
}

// A number of digits alone, which is what documents hold; nothing for any other text and for large numbers.
std::optional<long> plainNumber(const XMLCh* text) {
    constexpr int digitsThatFit = 18;
    const bool isNegative = *text == '-';
    const XMLCh* const digits = text + (isNegative ? 1 : 0);
    long number = 0;
    const XMLCh* at = digits;
    for (; *at >= '0' && *at <= '9'; ++at) {
        if (at - digits == digitsThatFit)
            return std::nullopt;
        number = number * 10 + (*at - '0');
    }
    if (*at || at == digits)
        return std::nullopt;
    return isNegative ? -number : number;
}

template <class Number>
void copyNumber(XmlParserImpl* impl, Number* destination) {
    const XMLCh* text = wideValue(impl);
    if (!text)
        return;
    if (const auto number = plainNumber(text)) {
        *destination = static_cast<Number>(*number);
        return;
    }
    wideToNative(text, impl->m_text);
    if constexpr (std::is_signed_v<Number>)
        *destination = static_cast<Number>(std::strtol(impl->m_text.c_str(), nullptr, 10));
    else
        *destination = static_cast<Number>(std::strtoul(impl->m_text.c_str(), nullptr, 10));
}

// An attribute of the value element, or null.
const XMLCh* attributeOf(const XmlParserImpl& impl, const XMLCh* name) {
    if (!impl.m_pCurrentValue || impl.m_pCurrentValue->getNodeType() != DOMNode::ELEMENT_NODE)
        return nullptr;
    const DOMAttr* attribute = static_cast<const DOMElement*>(impl.m_pCurrentValue)->getAttributeNode(name);
    if (!attribute)
        return nullptr;
    // The usual single text is had without the library's detour.
    const DOMNode* text = attribute->getFirstChild();
    return text && !text->getNextSibling() ? text->getNodeValue() : attribute->getValue();
}

std::wstring wideTextOf(const XmlParserImpl& impl) {
    const XMLCh* unit = wideTextOf(impl.m_pCurrentValue);
    std::wstring wide;
    if (!unit)
        return wide;
    for (; *unit; ++unit) {
        const bool isPair = unit[0] >= 0xD800 && unit[0] < 0xDC00 && unit[1] >= 0xDC00 && unit[1] < 0xE000;
        if (isPair) {
            wide += static_cast<wchar_t>(0x10000 + ((unit[0] - 0xD800) << 10) + (unit[1] - 0xDC00));
            ++unit;
        } else {
            wide += static_cast<wchar_t>(*unit);
        }
    }
    return wide;
}

template <class Char>
void copyToNewArray(const Char* text, std::size_t length, Char** destination) {
    *destination = new (std::nothrow) Char[length + 1];
    if (!*destination) {
        log(LEVEL_FAILURE, "XmlParser:XmlParser::CopyNodeValue()",
            "Failed to allocate memory in CopyNodeValue.");
        return;
    }
    std::copy_n(text, length, *destination);
    (*destination)[length] = 0;
}

} // namespace

int XmlParser::initChildren() {
    constexpr const char* label = "XmlParser:XmlParser::initChildren()";
    const XmlParserImpl* impl = usable(label);
    if (!impl)
        return 1;
    if (!impl->m_pCurrentObject) {
        log(LEVEL_FINE, label, "Could not get DOMNOde. In initChildren()");
        return 1;
    }
    return 0;
}

const XmlName* XmlParser::firstObjectName() {
    constexpr const char* label = "XmlParser:XmlParser::getFirstObject()";
    XmlParserImpl* impl = usable(label);
    if (!impl)
        return nullptr;
    DOMNode* child = impl->m_pCurrentObject ? skipTexts(impl->m_pCurrentObject->getFirstChild()) : nullptr;
    impl->m_pCurrentObject = impl->m_pCurrentValue = child;
    if (!child)
        log(LEVEL_FAILURE, label, "Could not get next non TEXT_NODE Child in getFirstObject().");
    return nameOf(child);
}

const XmlName* XmlParser::nextObjectName() {
    constexpr const char* label = "XmlParser:XmlParser::getNextObject()";
    XmlParserImpl* impl = usable(label);
    if (!impl)
        return nullptr;
    if (!impl->m_pCurrentObject) {
        log(LEVEL_FAILURE, label, "Could not get DOMNOde. In getNextObject().");
        return nullptr;
    }
    impl->m_pCurrentObject = skipTexts(impl->m_pCurrentObject->getNextSibling());
    impl->m_pCurrentValue = impl->m_pCurrentObject;
    return nameOf(impl->m_pCurrentObject);
}

const XmlName* XmlParser::firstValueName() {
    constexpr const char* label = "XmlParser:XmlParser::getFirstValue()";
    XmlParserImpl* impl = usable(label);
    if (!impl)
        return nullptr;
    DOMNode* child = impl->m_pCurrentValue ? skipTexts(impl->m_pCurrentValue->getFirstChild()) : nullptr;
    impl->m_pCurrentValue = child;
    if (!child)
        log(LEVEL_FINE, label, "Could not get DOMNOde. In getFirstValue().");
    return nameOf(child);
}

const XmlName* XmlParser::nextValueName() {
    constexpr const char* label = "XmlParser:XmlParser::getNextValue()";
    XmlParserImpl* impl = usable(label);
    if (!impl)
        return nullptr;
    if (!impl->m_pCurrentValue) {
        log(LEVEL_FAILURE, label, "Could not get DOMNOde. In getNextValue().");
        return nullptr;
    }
    impl->m_pCurrentValue = skipTexts(impl->m_pCurrentValue->getNextSibling());
    return nameOf(impl->m_pCurrentValue);
}

const std::string& XmlParser::nameText(const XmlName* name) {
    std::string& text = m_pXmlParserImpl->m_tag;
    wideToNative(reinterpret_cast<const XMLCh*>(name), text);
    return text;
}

const std::string* XmlParser::textOrNull(const XmlName* name) {
    return name ? &nameText(name) : nullptr;
}

const std::string* XmlParser::firstObjectTag() {
    return textOrNull(firstObjectName());
}
const std::string* XmlParser::nextObjectTag() {
    return textOrNull(nextObjectName());
}
const std::string* XmlParser::firstValueTag() {
    return textOrNull(firstValueName());
}
const std::string* XmlParser::nextValueTag() {
    return textOrNull(nextValueName());
}

char* XmlParser::getFirstObject() {
    return copyForCaller(firstObjectTag());
}
char* XmlParser::getNextObject() {
    return copyForCaller(nextObjectTag());
}
char* XmlParser::getFirstValue() {
    return copyForCaller(firstValueTag());
}
char* XmlParser::getNextValue() {
    return copyForCaller(nextValueTag());
}

std::string XmlParser::getRootName() {
    const XmlParserImpl* impl = usable("XmlParser:XmlParser::getRootName()");
    const std::string* tag = textOrNull(impl ? nameOf(impl->m_pRootElement) : nullptr);
    return tag ? *tag : std::string();
}

XmlNode* XmlParser::getCurrentNode() {
    const XmlParserImpl* impl = usable("XmlParser:XmlParser::getCurrentNode()");
    return impl ? reinterpret_cast<XmlNode*>(impl->m_pCurrentObject) : nullptr;
}

void XmlParser::setCurrentNode(XmlNode* node) {
    if (XmlParserImpl* impl = usable("XmlParser:XmlParser::setCurrentNode()"))
        impl->m_pCurrentObject = impl->m_pCurrentValue = reinterpret_cast<DOMNode*>(node);
}

void XmlParser::CopyNode(std::string* destination) {
    XmlParserImpl* impl = usable("XmlParser:XmlParser::CopyNode()");
    if (!impl)
        return;
    if (const XMLCh* text = wideTextOf(impl->m_pCurrentObject))
        wideToNative(text, *destination);
}

void XmlParser::CopyNodeAttribute(std::string* destination, const std::string* name) {
    XmlParserImpl* impl = usable("XmlParser:XmlParser::CopyNodeAttribute()");
    if (!impl)
        return;
    nativeToWide(*name, impl->m_wideTag);
    if (const XMLCh* text = attributeOf(*impl, impl->m_wideTag.data()))
        wideToNative(text, *destination);
}

void XmlParser::CopyNodeValue(bool* destination) {
    long number = *destination ? 1 : 0;
    copyNumber(m_pXmlParserImpl.get(), &number);
    *destination = number != 0;
}

void XmlParser::CopyNodeValue(unsigned char* destination) {
    if (!isReadable(m_pXmlParserImpl.get()))
        return;
    const std::string* text = valueText(m_pXmlParserImpl.get());
    *destination = text && !text->empty() ? static_cast<unsigned char>(text->front()) : 0;
}

void XmlParser::CopyNodeValue(std::string* destination) {
    if (const XMLCh* text = wideValue(m_pXmlParserImpl.get()))
        wideToNative(text, *destination);
}

void XmlParser::CopyNodeValue(int* destination) {
    copyNumber(m_pXmlParserImpl.get(), destination);
}
void XmlParser::CopyNodeValue(long* destination) {
    copyNumber(m_pXmlParserImpl.get(), destination);
}
void XmlParser::CopyNodeValue(__int64* destination) {
    copyNumber(m_pXmlParserImpl.get(), destination);
}
void XmlParser::CopyNodeValue(unsigned int* destination) {
    copyNumber(m_pXmlParserImpl.get(), destination);
}
void XmlParser::CopyNodeValue(unsigned short* destination) {
    copyNumber(m_pXmlParserImpl.get(), destination);
}
void XmlParser::CopyNodeValue(unsigned long* destination) {
    copyNumber(m_pXmlParserImpl.get(), destination);
}

void XmlParser::CopyNodeValue(wchar_t* destination) {
    if (!isReadable(m_pXmlParserImpl.get()))
        return;
    const std::wstring text = wideTextOf(*m_pXmlParserImpl);
    *destination = text.empty() ? L'\0' : text.front();
}

void XmlParser::CopyNodeValue(wchar_t** destination) {
    if (!isReadable(m_pXmlParserImpl.get()))
        return;
    const std::wstring text = wideTextOf(*m_pXmlParserImpl);
    copyToNewArray(text.data(), text.size(), destination);
}

void XmlParser::CopyNodeValue(char** destination) {
    if (!isReadable(m_pXmlParserImpl.get()))
        return;
    const std::string* text = valueText(m_pXmlParserImpl.get());
    copyToNewArray(text ? text->data() : "", text ? text->size() : 0, destination);
}

void XmlParser::CopyNodeValue(unsigned char** destination) {
    if (!isReadable(m_pXmlParserImpl.get()))
        return;
    *destination = nullptr;
    const std::string* text = valueText(m_pXmlParserImpl.get());
    if (!text)
        return;
    XMLSize_t length = 0;
    *destination = Base64::decode(reinterpret_cast<const XMLByte*>(text->c_str()), &length);
    if (!*destination)
        log(LEVEL_FAILURE, "XmlParser:XmlParser::CopyNodeValue()", "FAILED TO DECODE XML HexBinary data.\n");
}

void XmlParser::CopyNodeValue(std::vector<unsigned char>* destination) {
    const std::string* text = valueText(m_pXmlParserImpl.get());
    if (!text)
        return;
    XMLSize_t length = 0;
    XMLByte* decoded = Base64::decode(reinterpret_cast<const XMLByte*>(text->c_str()), &length);
    if (!decoded) {
        log(LEVEL_FAILURE, "XmlParser:XmlParser::CopyNodeValue()", "FAILED TO DECODE XML HexBinary data.\n");
        destination->clear();
        return;
    }
    destination->assign(decoded, decoded + length);
    XMLPlatformUtils::fgMemoryManager->deallocate(decoded);
}

void XmlParser::CopyNodeValue(IDREF* destination, bool* fromDb) {
    XmlParserImpl* impl = m_pXmlParserImpl.get();
    copyNumber(impl, destination);
    static constexpr XMLCh attribute[] = {'f', 'r', 'o', 'm', 'D', 'b', 0};
    const XMLCh* flag = impl ? attributeOf(*impl, attribute) : nullptr;
    if (!flag)
        return;
    if (const auto number = plainNumber(flag)) {
        *fromDb = *number != 0;
        return;
    }
    wideToNative(flag, impl->m_text);
    *fromDb = std::strtol(impl->m_text.c_str(), nullptr, 10) != 0;
}

} // namespace Zorvane
