// SPDX-License-Identifier: Apache-2.0
#include "model/domNodes.h"

#include <xercesc/dom/impl/DOMAttrMapImpl.hpp>
#include <xercesc/dom/impl/DOMCasts.hpp>
#include <xercesc/util/XMLString.hpp>

namespace Zorvane {

using namespace xercesc;

namespace {

constexpr XMLCh NO_NAME[] = {0};

// Nodes with the strings of another one of the same document.
struct LikeElement : DOMElementNSImpl {
    LikeElement(DOMDocumentImpl* document, const DOMElementNSImpl& model)
        : DOMElementNSImpl(document, nullptr, nullptr, NO_NAME, NO_NAME) {
        fName = model.fName;
        fLocalName = model.getLocalName();
        fPrefix = model.getPrefix();
        fNamespaceURI = model.getNamespaceURI();
    }
};

struct LikeAttribute : DOMAttrNSImpl {
    LikeAttribute(DOMDocumentImpl* document, const DOMAttrNSImpl& model)
        : DOMAttrNSImpl(document, nullptr, nullptr, NO_NAME, NO_NAME) {
        fName = model.fName;
        fLocalName = model.getLocalName();
        fPrefix = model.getPrefix();
        fNamespaceURI = model.getNamespaceURI();
    }
};

} // namespace

void OpenElement::append(DOMNode& node, DOMNodeImpl& nodePart, DOMChildNode& childPart) {
    nodePart.fOwnerNode = m_element;
    nodePart.isOwned(true);
    if (m_first) {
        m_lastPart->nextSibling = &node;
        childPart.previousSibling = m_last;
    } else {
        m_element->fParent.fFirstChild = &node;
        nodePart.isFirstChild(true);
        m_first = &childPart;
    }
    m_first->previousSibling = &node; // the first child knows the last one
    m_last = &node;
    m_lastPart = &childPart;
}

void OpenElement::noteAppended() {
    m_last = m_element->getLastChild();
    if (!m_last)
        return;
    m_lastPart = castToChildImpl(m_last);
    m_first = castToChildImpl(m_element->getFirstChild());
}

DOMElementNSImpl* makeElementLike(DOMDocumentImpl& document, const DOMElementNSImpl& model) {
    return new (&document, DOMMemoryManager::ELEMENT_NS_OBJECT) LikeElement(&document, model);
}

DOMTextImpl* makeText(DOMDocumentImpl& document, const XMLCh* chars, XMLSize_t length) {
    // A text makes itself a buffer with room to grow, unless the document has one of its size to spare.
    document.releaseBuffer(new (&document) DOMBuffer(&document, length + 1));
    return new (&document, DOMMemoryManager::TEXT_OBJECT) DOMTextImpl(&document, chars, length);
}

void setAttributeLike(DOMElementNSImpl& element, const DOMAttrNSImpl& model, const XMLCh* value) {
    DOMDocumentImpl& document = *static_cast<DOMDocumentImpl*>(element.fParent.fOwnerDocument);
    auto* attribute = new (&document, DOMMemoryManager::ATTR_NS_OBJECT) LikeAttribute(&document, model);
    DOMTextImpl* text = makeText(document, value, XMLString::stringLen(value));
    text->fNode.fOwnerNode = attribute;
    text->fNode.isOwned(true);
    text->fNode.isFirstChild(true);
    text->fChild.previousSibling = text;
    attribute->fParent.fFirstChild = text;
    element.fAttributes->reserve(1);
    element.fAttributes->setNamedItemNSFast(attribute);
}

} // namespace Zorvane
