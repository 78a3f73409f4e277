// SPDX-License-Identifier: Apache-2.0
// The parser's state, apart so that the XML library's types stay out of XmlParser.h.
#pragma once

#include "model/XmlNames.h"
#include "model/ZorDomParser.h"
#include "model/domNodes.h"
#include "model/xmlLibrary.h"

#include <memory>
#include <string>
#include <vector>

#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufFormatTarget.hpp>

namespace Zorvane {

/// For objects of the library that are given back with release().
struct DomRelease {
    template <class Object>
    void operator()(Object* object) const {
        object->release();
    }
};

class XmlParserImpl {
  public:
    XmlLibraryHold m_library; // first: it goes last
    xercesc::DOMNode* m_pCurrentObject = nullptr;
    xercesc::DOMNode* m_pCurrentValue = nullptr;
    xercesc::DOMElement* m_pRootElement = nullptr;
    xercesc::DOMElement* m_pCurrentElement = nullptr; ///< the record that AppendValue appends to
    std::unique_ptr<ZorDomParser> m_pParser;
    std::unique_ptr<xercesc::DOMDocument, DomRelease> m_pBuiltDoc; ///< owned here when it was built here
    xercesc::DOMDocument* m_pDoc = nullptr;
    xercesc::DOMImplementation* m_pImplementation = nullptr;
    std::unique_ptr<xercesc::MemBufFormatTarget> m_pTarget;
    std::unique_ptr<xercesc::DOMLSOutput, DomRelease> m_pOutput;

    // Building: the ends of the root and of the current record, and an element of each tag.
    OpenElement m_openRoot;
    OpenElement m_openRecord;
    XmlNames<xercesc::DOMElementNSImpl*, char> m_models;
    xercesc::DOMAttrNSImpl* m_pFlagModel = nullptr; ///< an attribute that tells where an identifier is from
    std::size_t m_recordCount = 0;

    std::string m_tag;             ///< the tag of the last step of a walk
    std::string m_text;            ///< the last value taken out
    std::vector<XMLCh> m_wideTag;  ///< scratch
    std::vector<XMLCh> m_wideText; ///< scratch
    bool m_written = false;        ///< the target holds the document as it stands

    /// Lets go of the document and of all that points into it.
    void forgetDocument() {
        m_pCurrentObject = m_pCurrentValue = nullptr;
        m_pRootElement = m_pCurrentElement = nullptr;
        m_openRoot = m_openRecord = OpenElement();
        m_models.clear();
        m_pFlagModel = nullptr;
        m_pDoc = nullptr;
        m_pBuiltDoc.reset();
    }
};

} // namespace Zorvane
