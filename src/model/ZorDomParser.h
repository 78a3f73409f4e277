// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "model/XmlNames.h"
#include "model/domNodes.h"

#include <cstddef>
#include <span>
#include <string>
#include <unordered_set>
#include <vector>

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
/// declared, expanded or fetched, bounds on the nesting and on the number of nodes, attributes and names, and
/// only code sets in which the attributes can be counted beforehand. A breach ends the parse like any other
/// fatal error. White space that only sets records and fields apart is not kept in the tree.
class ZorDomParser : public xercesc::XercesDOMParser {
  public:
    ZorDomParser();

    /// Parses one document; the bytes must outlive the call. Throws what the library and the error handler
    /// throw.
    void parseDocument(std::span<const unsigned char> bytes);

    void XMLDecl(const XMLCh* version, const XMLCh* encoding, const XMLCh* standalone,
                 const XMLCh* inForce) override;
    void doctypeDecl(const xercesc::DTDElementDecl& root, const XMLCh* publicId, const XMLCh* systemId,
                     bool hasIntSubset, bool hasExtSubset) override;
    void startDocument() override;
    void startElement(const xercesc::XMLElementDecl& element, unsigned int uriId, const XMLCh* prefix,
                      const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes, XMLSize_t attributeCount,
                      bool isEmpty, bool isRoot) override;
    void endElement(const xercesc::XMLElementDecl& element, unsigned int uriId, bool isRoot,
                    const XMLCh* prefix) override;
    void docCharacters(const XMLCh* chars, XMLSize_t length, bool isCData) override;
    void docComment(const XMLCh* comment) override;
    void docPI(const XMLCh* target, const XMLCh* data) override;

  private:
    using Attributes = xercesc::RefVectorOf<xercesc::XMLAttr>;

    /// What the library made of a name's first element: later ones take its strings, which the document keeps
    /// once.
    struct Model {
        xercesc::DOMElementNSImpl* element = nullptr;
        unsigned uriId = 0;
        xercesc::DOMAttrNSImpl* attribute = nullptr; ///< its only one, if it says nothing of namespaces
    };

    xercesc::DOMElementNSImpl* makeLike(const Model& model, unsigned int uriId, const Attributes& attributes,
                                        XMLSize_t attributeCount);
    void noteModel(Model& model, unsigned int uriId, const Attributes& attributes,
                   XMLSize_t attributeCount) const;
    void countNode();
    void countNames(const Attributes& attributes, XMLSize_t attributeCount);
    void noteAppended();
    void addText(const XMLCh* chars, XMLSize_t length, bool isCData);
    void keepBlanks();

    std::vector<OpenElement> m_open; ///< the elements whose end has not come yet
    XmlNames<Model, xercesc::XMLElementDecl> m_models;
    std::unordered_set<std::u16string> m_attributeNames; ///< of the elements that the library makes
    std::vector<std::size_t> m_declarations; ///< of namespaces: how deep their elements stand that are open
    std::size_t m_nodes = 0;
    bool m_isLarge = false;
    bool m_isWide = false;       ///< its first bytes are UTF-16
    std::vector<XMLCh> m_blanks; ///< white space not yet known to be of any use
};

} // namespace Zorvane
