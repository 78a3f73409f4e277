// SPDX-License-Identifier: Apache-2.0
#include "model/ZorDomParser.h"

#include "logging/Trace.h"
#include "model/XmlParser.h"
#include "model/treeMemory.h"
#include "model/xmlText.h"

#include <algorithm>
#include <ctime>
#include <string_view>

#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/framework/XMLRecognizer.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace Zorvane {

namespace {

constexpr const char* FATAL_ERROR = "Fatal Error occured during parsing XML buffer.";

std::string textOf(const xercesc::SAXParseException& exception) {
    std::string text;
    wideToNative(exception.getMessage(), text);
    return text + " (line " + std::to_string(exception.getLineNumber()) + ", column " +
           std::to_string(exception.getColumnNumber()) + ")";
}

void log(mrthLogDebugLevel_t level, const char* label, const char* what, const std::string& text) {
    if (g_libLog)
        g_libLog->WriteDebugMsg(DEBUG_FLAGS, level, label, what, text);
}

[[noreturn]] void refuse(const char* reason) {
    log(LEVEL_FAILURE, "XmlParser:ZorXmlErrorHandler::fatalError()",
        "ErrorHandler- fatalError message: ", reason);
    throw FATAL_ERROR; // NOLINT(cert-err09-cpp,cert-err61-cpp): a text is what the parser's users catch
}

// What the names of code sets begin with in which the bytes of ASCII mean nothing else, whatever stands
// before them.
constexpr const XMLCh* ASCII_CODE_SETS[] = {
    u"UTF-8",       u"UTF8",  u"US-ASCII", u"ASCII", u"ISO-8859-", u"ISO8859-", u"ISO_8859-", u"LATIN",
    u"WINDOWS-125", u"CP125", u"KOI8-",    u"EUC-",  u"GB",        u"BIG5",     u"SHIFT_JIS", u"SJIS"};

// The walk over a document passes over the texts between records and between their fields.
constexpr unsigned RECORD_DEPTH = 2;

// A document whose tree is worth blocks of that size, in bytes.
constexpr std::size_t LARGE = TREE_BLOCK / 2;

bool isBlank(const XMLCh* chars, XMLSize_t length) {
    return std::all_of(chars, chars + length,
                       [](XMLCh c) { return c == ' ' || c == '\n' || c == '\t' || c == '\r'; });
}

void skipBlanks(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
}

// Takes off a construct of the prolog, if it is next.
bool skipConstruct(std::string_view& text, std::string_view start, std::string_view end) {
    if (!text.starts_with(start))
        return false;
    const auto place = text.find(end, start.size());
    text.remove_prefix(place == std::string_view::npos ? text.size() : place + end.size());
    return true;
}

// Whether a declaration names no code set but the one in which the bytes are looked at here.
bool isInUtf8(std::string_view declaration) {
    return declaration.find("encoding") == std::string_view::npos ||
           declaration.find("encoding=\"UTF-8\"") != std::string_view::npos ||
           declaration.find("encoding=\"utf-8\"") != std::string_view::npos;
}

bool startsName(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' ||
           static_cast<unsigned char>(c) >= 0x80;
}

// Whether a document certainly has no document type: what stands before its first element is in plain sight.
bool startsWithItsRoot(std::string_view text) {
    skipConstruct(text, "\xef\xbb\xbf", "");
    if (text.starts_with("<?xml") && !isInUtf8(text.substr(0, text.find("?>"))))
        return false;
    do
        skipBlanks(text);
    while (skipConstruct(text, "<?", "?>") || skipConstruct(text, "<!--", "-->"));
    return text.size() > 1 && text[0] == '<' && startsName(text[1]);
}

// How many attributes the tag at the front of a text has at most: the equals signs outside of its values.
std::size_t attributesOf(std::string_view tag) {
    std::size_t count = 0;
    char quote = 0;
    for (const char c : tag) {
        if (quote != 0)
            quote = c == quote ? '\0' : quote;
        else if (c == '>')
            break;
        else if (c == '"' || c == '\'')
            quote = c;
        else
            count += c == '=' ? 1 : 0;
    }
    return count;
}

// Whether an element has too many attributes, which the library would tell only after hours. No tag has
// another one's start in it, so that a short one needs no look; text that is long and looks like such a tag
// stands in no document.
bool hasTooManyAttributes(std::string_view text) {
    constexpr std::size_t shortest = 5 * XML_MAX_ATTRIBUTES; // ` a=""`
    for (std::size_t tag = text.find('<'); tag != text.npos;) {
        const std::size_t next = text.find('<', tag + 1);
        const std::string_view rest = text.substr(tag, next == text.npos ? next : next - tag);
        if (rest.size() > shortest && attributesOf(rest) > XML_MAX_ATTRIBUTES)
            return true;
        tag = next;
    }
    return false;
}

// Of a text in UTF-16 its characters of ASCII, and a sign of no meaning for each other one.
std::string asciiOf(std::string_view text, bool isBigEndian) {
    std::string ascii(text.size() / 2, '?');
    for (std::size_t i = 0; i < ascii.size(); ++i) {
        const char low = text[2 * i + (isBigEndian ? 1 : 0)], high = text[2 * i + (isBigEndian ? 0 : 1)];
        if (high == 0 && low > 0)
            ascii[i] = low;
    }
    return ascii;
}

// The same in either order of the bytes: the declaration may stand in one, and what is behind it in the
// other.
bool hasTooManyAttributesWide(std::string_view text) {
    return hasTooManyAttributes(asciiOf(text, false)) || hasTooManyAttributes(asciiOf(text, true));
}

} // namespace

void ZorXmlErrorHandler::warning(const xercesc::SAXParseException& exception) {
    log(LEVEL_FINE, "XmlParser:ZorXmlErrorHandler::warning()",
        "ErrorHandler- warning message: ", textOf(exception));
}

void ZorXmlErrorHandler::error(const xercesc::SAXParseException& exception) {
    log(LEVEL_FAILURE, "XmlParser:ZorXmlErrorHandler::error()",
        "ErrorHandler- error message: ", textOf(exception));
    throw "Error occured during parsing XML buffer.";
}

void ZorXmlErrorHandler::fatalError(const xercesc::SAXParseException& exception) {
    refuse(textOf(exception).c_str());
}

void ZorXmlErrorHandler::resetErrors() {
    log(LEVEL_FINE, "XmlParser:ZorXmlErrorHandler::resetErrors()", "ErrorHandler- resetErrors message: ", {});
}

ZorDomParser::ZorDomParser() : XercesDOMParser(nullptr, &treeMemory()) {
    setValidationScheme(Val_Never);
    setDoNamespaces(true);
    setLoadExternalDTD(false);
    setSkipDTDValidation(true);
    setDisableDefaultEntityResolution(true);
}

// The scanner that only looks at well-formedness is the fastest by far, but it passes over a document type
// without a word: it gets the documents that have none, and the full one refuses the others.
void ZorDomParser::parseDocument(std::span<const unsigned char> bytes) {
    using namespace xercesc;
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const auto family = XMLRecognizer::basicEncodingProbe(bytes.data(), bytes.size());
    m_isWide = family == XMLRecognizer::UTF_16B || family == XMLRecognizer::UTF_16L;
    if (m_isWide ? hasTooManyAttributesWide(text) : hasTooManyAttributes(text))
        refuse("an element has too many attributes");
    useScanner(startsWithItsRoot(text) ? XMLUni::fgWFXMLScanner : XMLUni::fgIGXMLScanner);
    // The library wants every source to have a name; this one is read by nobody.
    const std::string id = "fakeID" + std::to_string(std::time(nullptr)) + "\n";
    m_models.clear();
    m_attributeNames.clear();
    m_declarations.clear();
    m_nodes = 0;
    m_open.clear();
    m_blanks.clear();
    m_isLarge = bytes.size() >= LARGE;
    parse(MemBufInputSource(bytes.data(), bytes.size(), id.c_str(), false));
}

// The look at the attributes has to know what the bytes mean. `inForce` is the code set of what follows,
// whatever the declaration says; a document without one is in UTF-8, or in UTF-16 by its first bytes.
void ZorDomParser::XMLDecl(const XMLCh* version, const XMLCh* encoding, const XMLCh* standalone,
                           const XMLCh* inForce) {
    using xercesc::XMLString;
    const auto isNamed = [&](const XMLCh* name) { return XMLString::startsWithI(inForce, name); };
    if (m_isWide ? !isNamed(u"UTF-16") : std::ranges::none_of(ASCII_CODE_SETS, isNamed))
        refuse("its code set is not accepted");
    XercesDOMParser::XMLDecl(version, encoding, standalone, inForce);
}

void ZorDomParser::doctypeDecl(const xercesc::DTDElementDecl&, const XMLCh*, const XMLCh*, bool, bool) {
    refuse("a document type declaration is not accepted");
}

void ZorDomParser::startDocument() {
    XercesDOMParser::startDocument();
    if (m_isLarge)
        fDocument->setMemoryAllocationBlockSize(TREE_BLOCK);
}

void ZorDomParser::startElement(const xercesc::XMLElementDecl& element, unsigned int uriId,
                                const XMLCh* prefix, const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                                XMLSize_t attributeCount, bool isEmpty, bool isRoot) {
    if (m_open.size() >= XML_MAX_DEPTH)
        refuse("the elements are nested too deep");
    countNode();
    m_blanks.clear();
    Model& model = m_models.of(&element, [](Model&) {});
    if (m_models.size() > XML_MAX_NAMES)
        refuse("there are too many different names");
    if (auto* made = isRoot ? nullptr : makeLike(model, uriId, attributes, attributeCount)) {
        m_open.back().append(*made);
        fCurrentParent = fCurrentNode = made;
        m_open.emplace_back(made);
    } else {
        countNames(attributes, attributeCount);
        XercesDOMParser::startElement(element, uriId, prefix, attributes, attributeCount, false, isRoot);
        noteAppended();
        noteModel(model, uriId, attributes, attributeCount);
        m_open.emplace_back(model.element);
    }
    if (isEmpty)
        endElement(element, uriId, isRoot, prefix);
}

void ZorDomParser::endElement(const xercesc::XMLElementDecl&, unsigned int, bool isRoot, const XMLCh*) {
    // White space alone is a text; behind an element it is none.
    if (!m_open.back().hasChildren())
        keepBlanks();
    m_blanks.clear();
    m_open.pop_back();
    while (!m_declarations.empty() && m_declarations.back() >= m_open.size())
        m_declarations.pop_back();
    fCurrentNode = fCurrentParent;
    fCurrentParent = isRoot ? static_cast<xercesc::DOMNode*>(fDocument) : m_open.back().element();
    fWithinElement = !isRoot;
}

// An element of a name that was met before, with the same attribute or none; null for any other. The
// document's pool of names is asked nothing, and nobody is asked for his parts.
xercesc::DOMElementNSImpl* ZorDomParser::makeLike(const Model& model, unsigned int uriId,
                                                  const Attributes& attributes, XMLSize_t attributeCount) {
    using namespace xercesc;
    if (!model.element || model.uriId != uriId || attributeCount > 1)
        return nullptr;
    const XMLAttr* read = attributeCount == 1 ? attributes.elementAt(0) : nullptr;
    if (read && (!model.attribute || !XMLString::equals(read->getQName(), model.attribute->fName)))
        return nullptr;

    DOMElementNSImpl* element = makeElementLike(*fDocument, *model.element);
    if (read)
        setAttributeLike(*element, *model.attribute, read->getValue());
    return element;
}

// The current element, which the library made, becomes the model of its name.
void ZorDomParser::noteModel(Model& model, unsigned int uriId, const Attributes& attributes,
                             XMLSize_t attributeCount) const {
    // With namespaces there is no other kind.
    model.element = static_cast<xercesc::DOMElementNSImpl*>(fCurrentNode);
    model.uriId = uriId;
    model.attribute = nullptr;
    if (attributeCount != 1)
        return;
    const XMLCh* const name = attributes.elementAt(0)->getQName();
    if (!xercesc::XMLString::equals(name, xercesc::XMLUni::fgXMLNSString) &&
        xercesc::XMLString::indexOf(name, ':') == -1)
        model.attribute = static_cast<xercesc::DOMAttrNSImpl*>(model.element->getAttributeNode(name));
}

void ZorDomParser::countNode() {
    if (++m_nodes > XML_MAX_NODES)
        refuse("there are too many elements");
}

void ZorDomParser::countNames(const Attributes& attributes, XMLSize_t attributeCount) {
    for (XMLSize_t i = 0; i < attributeCount; ++i) {
        const std::u16string_view name = attributes.elementAt(i)->getQName();
        m_attributeNames.emplace(name);
        if (name.starts_with(u"xmlns"))
            m_declarations.push_back(m_open.size());
    }
    if (m_attributeNames.size() > XML_MAX_NAMES)
        refuse("there are too many different names");
    if (m_declarations.size() > XML_MAX_NAMESPACES)
        refuse("there are too many namespaces");
}

void ZorDomParser::noteAppended() {
    if (!m_open.empty())
        m_open.back().noteAppended();
}

void ZorDomParser::docCharacters(const XMLCh* chars, XMLSize_t length, bool isCData) {
    if (m_open.size() <= RECORD_DEPTH && !isCData && fWithinElement &&
        fCurrentNode->getNodeType() != xercesc::DOMNode::TEXT_NODE && isBlank(chars, length)) {
        m_blanks.insert(m_blanks.end(), chars, chars + length);
        return;
    }
    keepBlanks();
    addText(chars, length, isCData);
}

void ZorDomParser::addText(const XMLCh* chars, XMLSize_t length, bool isCData) {
    if (isCData || !fWithinElement || fCurrentNode->getNodeType() == xercesc::DOMNode::TEXT_NODE) {
        XercesDOMParser::docCharacters(chars, length, isCData);
        noteAppended();
        return;
    }
    xercesc::DOMTextImpl* text = makeText(*fDocument, chars, length);
    m_open.back().append(*text);
    fCurrentNode = text;
}

void ZorDomParser::docComment(const XMLCh* comment) {
    countNode();
    keepBlanks();
    XercesDOMParser::docComment(comment);
    noteAppended();
}

void ZorDomParser::docPI(const XMLCh* target, const XMLCh* data) {
    countNode();
    keepBlanks();
    XercesDOMParser::docPI(target, data);
    noteAppended();
}

void ZorDomParser::keepBlanks() {
    if (!m_blanks.empty())
        addText(m_blanks.data(), m_blanks.size(), false);
    m_blanks.clear();
}

} // namespace Zorvane
