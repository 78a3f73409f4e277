// SPDX-License-Identifier: Apache-2.0
#include "model/ZorDomParser.h"

#include "logging/Trace.h"
#include "model/XmlParser.h"
#include "model/xmlText.h"

#include <xercesc/sax/SAXParseException.hpp>

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
    throw FATAL_ERROR;
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

ZorDomParser::ZorDomParser() {
    setValidationScheme(Val_Never);
    setDoNamespaces(true);
    setLoadExternalDTD(false);
    setSkipDTDValidation(true);
    setDisableDefaultEntityResolution(true);
}

void ZorDomParser::doctypeDecl(const xercesc::DTDElementDecl&, const XMLCh*, const XMLCh*, bool, bool) {
    refuse("a document type declaration is not accepted");
}

void ZorDomParser::startElement(const xercesc::XMLElementDecl& element, unsigned int uriId,
                                const XMLCh* prefix, const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                                XMLSize_t attributeCount, bool isEmpty, bool isRoot) {
    if (isRoot)
        m_depth = 0;
    if (++m_depth > XML_MAX_DEPTH)
        refuse("the elements are nested too deep");
    XercesDOMParser::startElement(element, uriId, prefix, attributes, attributeCount, isEmpty, isRoot);
}

void ZorDomParser::endElement(const xercesc::XMLElementDecl& element, unsigned int uriId, bool isRoot,
                              const XMLCh* prefix) {
    --m_depth;
    XercesDOMParser::endElement(element, uriId, isRoot, prefix);
}

} // namespace Zorvane
