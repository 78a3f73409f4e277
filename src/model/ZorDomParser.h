// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/ErrorHandler.hpp>

namespace Zorvane {

/// Logs what the parser reports. Errors end the parse by throwing a C string.
class ZorXmlErrorHandler : public xercesc::ErrorHandler {
  public:
    void warning(const xercesc::SAXParseException& exception) override;
    void error(const xercesc::SAXParseException& exception) override;
    void fatalError(const xercesc::SAXParseException& exception) override;
    void resetErrors() override;
};

/// The library's parser, made safe for what a peer may send: no document type, so that no entity is ever
/// declared, expanded or fetched, and a bound on the nesting. A breach ends the parse like any other fatal
/// error.
class ZorDomParser : public xercesc::XercesDOMParser {
  public:
    ZorDomParser();

    void doctypeDecl(const xercesc::DTDElementDecl& root, const XMLCh* publicId, const XMLCh* systemId,
                     bool hasIntSubset, bool hasExtSubset) override;
    void startElement(const xercesc::XMLElementDecl& element, unsigned int uriId, const XMLCh* prefix,
                      const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes, XMLSize_t attributeCount,
                      bool isEmpty, bool isRoot) override;
    void endElement(const xercesc::XMLElementDecl& element, unsigned int uriId, bool isRoot,
                    const XMLCh* prefix) override;

  private:
    unsigned m_depth = 0;
};

} // namespace Zorvane
