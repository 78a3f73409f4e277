// SPDX-License-Identifier: Apache-2.0
// XmlParser: building a document.
#include "logging/Trace.h"
#include "model/XmlParser.h"
#include "model/XmlParserImpl.h"
#include "model/treeMemory.h"
#include "model/xmlText.h"

#include <algorithm>
#include <charconv>

#include <xercesc/util/Base64.hpp>

namespace Zorvane {

using namespace xercesc;

namespace {

constexpr const char* LABEL = "XmlParser:XmlParser::AppendValue()";
constexpr const char* NULL_VALUE = "Unexpected NULL value in AppendValue.";
constexpr const char* NO_IMPL_DOCUMENT = "m_pXmlParserImpl->m_pDoc must be initialized to append a node.";

// A document of so many records is worth memory in large blocks.
constexpr std::size_t MANY_RECORDS = 1000;

// A DOS end-of-file byte would end the document early for old readers.
constexpr XMLCh DOS_END_OF_FILE = 0x1A;

int refuse(int rc, const char* label, const char* why) {
    if (g_libLog)
        g_libLog->WriteDebugMsg(DEBUG_FLAGS, LEVEL_FAILURE, label, why);
    return rc;
}

DOMDocumentImpl& documentOf(XmlParserImpl& impl) {
    return *static_cast<DOMDocumentImpl*>(impl.m_pDoc);
}

// Whether an element bears the tag, which is plain ASCII in all that asks often.
bool isNamed(const DOMElementNSImpl& element, const char* tag) {
    const XMLCh* name = element.fName;
    for (; *tag && static_cast<unsigned char>(*tag) == *name; ++tag)
        ++name;
    return *tag == '\0' && *name == 0;
}

// Elements bear the root's namespace, so that it is declared once, at the root. Tags are known by their
// place, which the table descriptions never change; another caller's might.
DOMElementNSImpl* makeElement(XmlParserImpl& impl, const char* tag) {
    impl.m_written = false;
    DOMElementNSImpl*& model = impl.m_models.of(tag, [](DOMElementNSImpl*&) {});
    if (model && isNamed(*model, tag))
        return makeElementLike(documentOf(impl), *model);
    nativeToWide(tag, impl.m_wideTag);
    // Made with a namespace, it is of this class.
    model = static_cast<DOMElementNSImpl*>(
        impl.m_pDoc->createElementNS(impl.m_pRootElement->getNamespaceURI(), impl.m_wideTag.data()));
    return model;
}

DOMElementNSImpl& appendTo(XmlParserImpl& impl, const char* tag) {
    DOMElementNSImpl* element = makeElement(impl, tag);
    impl.m_openRecord.append(*element);
    return *element;
}

// The text of an element that has none yet; zero-ended.
void appendText(XmlParserImpl& impl, DOMElementNSImpl& element, const std::vector<XMLCh>& text) {
    OpenElement(&element).append(*makeText(documentOf(impl), text.data(), text.size() - 1));
}

// The value's element with its text, for the texts of the process.
DOMElementNSImpl& appendNative(XmlParserImpl& impl, const char* tag, std::string_view value) {
    DOMElementNSImpl& element = appendTo(impl, tag);
    nativeToWide(value, impl.m_wideText);
    std::replace(impl.m_wideText.begin(), impl.m_wideText.end(), DOS_END_OF_FILE, XMLCh{'_'});
    appendText(impl, element, impl.m_wideText);
    return element;
}

template <class Number>
int appendNumber(XmlParser& parser, const char* tag, Number value) {
    char buffer[32];
    *std::to_chars(buffer, buffer + sizeof buffer - 1, value).ptr = '\0';
    return parser.AppendValue(tag, static_cast<const char*>(buffer));
}

// What stands against appending a value, or 0. The wide and binary forms word a missing document otherwise.
int checkNative(const XmlParserImpl* impl, const char* tag) {
    if (!impl)
        return 1;
    if (!impl->m_pDoc)
        return refuse(1, LABEL, "document must be initialized to append a node.");
    if (!impl->m_pCurrentElement || !tag)
        return refuse(1, LABEL, NULL_VALUE);
    return 0;
}

int checkWide(const XmlParserImpl* impl, const char* tag) {
    if (!impl)
        return 1;
    if (!impl->m_pDoc)
        return refuse(XML_BAD_STATE, LABEL, NO_IMPL_DOCUMENT);
    if (!impl->m_pCurrentElement || !tag)
        return refuse(XML_BAD_STATE, LABEL, NULL_VALUE);
    return 0;
}

// UTF-32 units to UTF-16; what is no character becomes the replacement character.
std::vector<XMLCh> utf16(const wchar_t* text) {
    constexpr XMLCh replacement = 0xFFFD;
    std::vector<XMLCh> units;
    for (; *text; ++text) {
        // NOLINTNEXTLINE(bugprone-signed-char-misuse,cert-str34-c): wchar_t is taken for a char
        const auto code = static_cast<std::uint32_t>(*text);
        const bool isSurrogate = code >= 0xD800 && code < 0xE000;
        if (code >= 0x110000 || isSurrogate) {
            units.push_back(replacement);
        } else if (code >= 0x10000) {
            units.push_back(static_cast<XMLCh>(0xD800 + ((code - 0x10000) >> 10)));
            units.push_back(static_cast<XMLCh>(0xDC00 + ((code - 0x10000) & 0x3FF)));
        } else {
            units.push_back(static_cast<XMLCh>(code));
        }
    }
    units.push_back(0);
    return units;
}

} // namespace

int XmlParser::AppendElement(const char* tag) {
    constexpr const char* label = "XmlParser:XmlParser::AppendElement()";
    XmlParserImpl* impl = usable(label);
    if (!impl)
        return 1;
    if (!impl->m_pRootElement)
        return refuse(1, label, "DOMElement is NULL in AppendElement().");
    if (!impl->m_pDoc)
        return refuse(1, label, NO_IMPL_DOCUMENT);
    if (!tag)
        return refuse(1, label, NULL_VALUE);
    DOMElementNSImpl* element = makeElement(*impl, tag);
    if (!element)
        return refuse(1, label, "Failed to create new element.");
    if (impl->m_openRoot.element() != impl->m_pRootElement) {
        impl->m_openRoot = OpenElement(static_cast<DOMElementNSImpl*>(impl->m_pRootElement));
        impl->m_openRoot.noteAppended();
    }
    impl->m_openRoot.append(*element);
    impl->m_openRecord = OpenElement(element);
    impl->m_pCurrentElement = element;
    if (++impl->m_recordCount == MANY_RECORDS)
        documentOf(*impl).setMemoryAllocationBlockSize(TREE_BLOCK);
    return 0;
}

int XmlParser::AppendValue(const char* tag, IDREF value, bool fromDb) {
    XmlParserImpl* impl = usable(LABEL);
    if (const int rc = checkNative(impl, tag))
        return rc;
    if (!impl->m_pFlagModel) {
        static constexpr XMLCh attribute[] = {'f', 'r', 'o', 'm', 'D', 'b', 0};
        impl->m_pFlagModel = static_cast<DOMAttrNSImpl*>(impl->m_pDoc->createAttributeNS(nullptr, attribute));
    }
    const XMLCh flag[] = {static_cast<XMLCh>(fromDb ? '1' : '0'), 0};
    char digits[16];
    const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    setAttributeLike(appendNative(*impl, tag, std::string_view(digits, end)), *impl->m_pFlagModel, flag);
    return 0;
}

int XmlParser::AppendValue(const char* tag, const char* value) {
    XmlParserImpl* impl = usable(LABEL);
    if (const int rc = checkNative(impl, tag))
        return rc;
    if (value)
        appendNative(*impl, tag, value);
    else
        appendTo(*impl, tag);
    return 0;
}

int XmlParser::AppendValue(const char* tag, const std::string* value) {
    return AppendValue(tag, value ? value->c_str() : "");
}

int XmlParser::AppendValue(const char* tag, const std::string& value) {
    return AppendValue(tag, value.c_str());
}

int XmlParser::AppendValue(const char* tag, char value) {
    const char text[] = {value, '\0'};
    return AppendValue(tag, static_cast<const char*>(text));
}

int XmlParser::AppendValue(const char* tag, int value) {
    return appendNumber(*this, tag, value);
}
int XmlParser::AppendValue(const char* tag, bool value) {
    return appendNumber(*this, tag, value ? 1 : 0);
}
int XmlParser::AppendValue(const char* tag, unsigned int value) {
    return appendNumber(*this, tag, value);
}
int XmlParser::AppendValue(const char* tag, long value) {
    return appendNumber(*this, tag, value);
}
int XmlParser::AppendValue(const char* tag, unsigned long value) {
    return appendNumber(*this, tag, value);
}
int XmlParser::AppendValue(const char* tag, __int64 value) {
    return appendNumber(*this, tag, value);
}

int XmlParser::AppendValue(const char* tag, const wchar_t* value) {
    XmlParserImpl* impl = usable(LABEL);
    if (const int rc = checkWide(impl, tag))
        return rc;
    DOMElementNSImpl& element = appendTo(*impl, tag);
    if (value)
        appendText(*impl, element, utf16(value));
    return 0;
}

int XmlParser::AppendValue(const char* tag, wchar_t value) {
    const wchar_t text[] = {value, L'\0'};
    return AppendValue(tag, static_cast<const wchar_t*>(text));
}

int XmlParser::AppendValue(const char* tag, const unsigned char* value, unsigned int length) {
    XmlParserImpl* impl = usable(LABEL);
    if (const int rc = checkWide(impl, tag))
        return rc;
    DOMElementNSImpl& element = appendTo(*impl, tag);
    if (!value || length == 0)
        return 0;
    XMLSize_t encodedLength = 0;
    XMLByte* encoded = Base64::encode(value, length, &encodedLength);
    if (!encoded)
        return refuse(XML_BAD_STATE, LABEL, "Failed to encode XML HexBinary data.");
    impl->m_wideText.assign(encoded, encoded + encodedLength);
    impl->m_wideText.push_back(0);
    XMLPlatformUtils::fgMemoryManager->deallocate(encoded);
    appendText(*impl, element, impl->m_wideText);
    return 0;
}

} // namespace Zorvane
