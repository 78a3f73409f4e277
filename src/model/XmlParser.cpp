// SPDX-License-Identifier: Apache-2.0
#include "model/XmlParser.h"

#include "logging/Trace.h"
#include "model/XmlParserImpl.h"
#include "model/treeMemory.h"
#include "model/xmlText.h"

#include <new>

#include <xercesc/util/XMLUni.hpp>

namespace Zorvane {

using namespace xercesc;

namespace {

constexpr XMLSize_t INITIAL_CAPACITY = 1023;
constexpr XMLCh LOAD_AND_SAVE[] = {chLatin_L, chLatin_S, chNull};

std::string textOf(const XMLCh* wide) {
    std::string native;
    if (wide)
        wideToNative(wide, native);
    return native;
}

std::vector<XMLCh> wide(const char* native) {
    std::vector<XMLCh> made;
    nativeToWide(native, made);
    return made;
}

// The state that building and reading have in common.
std::unique_ptr<XmlParserImpl> makeImpl() {
    auto impl = std::make_unique<XmlParserImpl>();
    impl->m_pImplementation = DOMImplementationRegistry::getDOMImplementation(LOAD_AND_SAVE);
    impl->m_pParser = std::make_unique<ZorDomParser>();
    impl->m_pOutput.reset(impl->m_pImplementation->createLSOutput());
    impl->m_pTarget = std::make_unique<MemBufFormatTarget>(INITIAL_CAPACITY);
    return impl;
}

void createDocument(XmlParserImpl& impl) {
    impl.m_pBuiltDoc.reset(impl.m_pImplementation->createDocument(
        wide(ZOR_XML_NAMESPACE).data(), wide(ZOR_XML_ROOT).data(), nullptr, &treeMemory()));
    impl.m_pDoc = impl.m_pBuiltDoc.get();
    impl.m_pRootElement = impl.m_pDoc->getDocumentElement();
    impl.m_pCurrentObject = impl.m_pRootElement;
}

void logXmlException(Trace& trace, const XMLException& exception) {
    trace.write(LEVEL_FAILURE, "Caught unexpected error on line= ", exception.getSrcLine(),
                " error msg: ", textOf(exception.getMessage()));
}

// Of the exception that is being handled.
bool isLackOfMemory() {
    try {
        throw;
    } catch (const std::bad_alloc&) {
        return true;
    } catch (...) {
        return false;
    }
}

} // namespace

void XmlTextRelease::operator()(char* text) const {
    XMLString::release(&text);
}

// The document is serialised when its bytes are asked for, not already here: a reader never asks.
XmlParser::XmlParser() {
    Trace trace(g_libLog, "XmlParser:XmlParser::XmlParser()");
    try {
        m_pXmlParserImpl = makeImpl();
        createDocument(*m_pXmlParserImpl);
    } catch (const XMLException& exception) {
        logXmlException(trace, exception);
        m_pXmlParserImpl.reset();
    }
}

XmlParser::XmlParser(const unsigned char* buffer, int bufferLen) {
    Trace trace(g_libLog, "XmlParser:XmlParser::XmlParser()", ", bufferLen=", bufferLen);
    try {
        m_pXmlParserImpl = makeImpl();
    } catch (const XMLException& exception) {
        logXmlException(trace, exception);
        return;
    }
    if (parse(buffer, bufferLen) != 0 || !isWritable())
        m_pXmlParserImpl.reset();
}

// Whatever is read can be written again, but for characters that only a document of version 1.1 may hold.
bool XmlParser::isWritable() {
    const XMLCh* const version = m_pXmlParserImpl->m_pDoc->getXmlVersion();
    return !XMLString::equals(version, XMLUni::fgVersion1_1) || write() == 0;
}

XmlParser::~XmlParser() = default;

XmlParserImpl* XmlParser::usable(const char* label) const {
    if (!m_pXmlParserImpl && g_libLog)
        g_libLog->WriteDebugMsg(DEBUG_FLAGS, LEVEL_FAILURE, label,
                                "Exiting, No Implementation for XmlParserImpl allocated.");
    return m_pXmlParserImpl.get();
}

int XmlParser::parse(const unsigned char* inBuffer, int bufferLen) {
    Trace trace(g_libLog, "XmlParser:XmlParser::parse()", ", bufferLen=", bufferLen);
    if (!inBuffer) {
        trace.write(LEVEL_FAILURE, "Exiting, no inBuffer allocated.");
        return 1;
    }
    if (bufferLen <= 0) {
        trace.write(LEVEL_FAILURE, "Exiting, No buffer length, so nothing to do.");
        return 1;
    }
    XmlParserImpl* impl = usable(trace.label());
    if (!impl || !impl->m_pParser)
        return 1;
    if (bufferLen > XML_MAX_LENGTH) {
        trace.write(LEVEL_FAILURE, "Exiting, the document is longer than ", XML_MAX_LENGTH, " bytes.");
        impl->forgetDocument();
        impl->m_pParser.reset();
        return trace.leave(int{XML_NOT_WELL_FORMED}, ", return rc=", int{XML_NOT_WELL_FORMED});
    }

    int rc = 0;
    try {
        ZorXmlErrorHandler handler;
        impl->forgetDocument();
        impl->m_pParser->resetDocumentPool();
        impl->m_pParser->setErrorHandler(&handler);
        impl->m_pParser->parseDocument({inBuffer, static_cast<std::size_t>(bufferLen)});
        impl->m_pParser->setErrorHandler(nullptr);
        impl->m_pDoc = impl->m_pParser->getDocument();
        impl->m_pRootElement = impl->m_pDoc->getDocumentElement();
        impl->m_pCurrentObject = impl->m_pRootElement;
        impl->m_written = false;
    } catch (const XMLException& exception) {
        trace.write(LEVEL_FAILURE, "Exiting, Caught unexpected error on line= ", exception.getSrcLine(),
                    " error msg: ", textOf(exception.getMessage()));
        rc = XML_LIBRARY_FAILURE;
    } catch (const DOMException& exception) {
        trace.write(LEVEL_FAILURE, "Exiting, Caught unexpected error, DOMException code=", exception.code,
                    " error msg: ", textOf(exception.getMessage()));
        rc = XML_DOM_FAILURE;
    } catch (...) {
        m_lackedMemory = isLackOfMemory();
        trace.write(LEVEL_FAILURE, "Exiting, Caught unexpected error, ",
                    m_lackedMemory ? "memory was lacking for the document."
                                   : "the document could not be parsed.");
        rc = XML_NOT_WELL_FORMED;
    }
    if (rc != 0)
        impl->m_pParser.reset();
    return trace.leave(rc, ", return rc=", rc);
}

int XmlParser::write() {
    Trace trace(g_libLog, "XmlParser:XmlParser::write()");
    XmlParserImpl* impl = usable(trace.label());
    if (!impl)
        return 1;
    impl->m_pTarget->reset();
    impl->m_written = true;
    int rc = 0;
    try {
        const std::unique_ptr<DOMLSSerializer, DomRelease> serializer(
            impl->m_pImplementation->createLSSerializer());
        DOMConfiguration* configuration = serializer->getDomConfig();
        if (configuration->canSetParameter(XMLUni::fgDOMWRTFormatPrettyPrint, true))
            configuration->setParameter(XMLUni::fgDOMWRTFormatPrettyPrint, true);
        impl->m_pOutput->setByteStream(impl->m_pTarget.get());
        if (!impl->m_pDoc || !serializer->write(impl->m_pDoc, impl->m_pOutput.get())) {
            trace.write(LEVEL_FAILURE, "Unexpected error while writing the configuration");
            rc = XML_WRITE_FAILED;
        }
    } catch (const XMLException& exception) {
        // The object is of no use any more: every later call reports that it has no implementation.
        logXmlException(trace, exception);
        m_pXmlParserImpl.reset();
        rc = XML_WRITE_FAILED;
    } catch (const DOMException& exception) {
        trace.write(LEVEL_FAILURE, "Caught DOMException, code=", exception.code,
                    " error msg: ", textOf(exception.getMessage()));
        if (!impl->m_pBuiltDoc)
            impl->forgetDocument();
        impl->m_pParser.reset();
        rc = XML_DOM_FAILURE;
    } catch (...) {
        m_lackedMemory = isLackOfMemory();
        trace.write(LEVEL_FAILURE, "Caught wierd exception Here at line, ", __LINE__);
        rc = 1;
    }
    return trace.leave(rc, ", return rc=", rc);
}

const unsigned char* XmlParser::getBuffer() {
    if (m_pXmlParserImpl && !m_pXmlParserImpl->m_written)
        write();
    const XmlParserImpl* impl = usable("XmlParser:XmlParser::getBuffer()");
    return impl ? impl->m_pTarget->getRawBuffer() : nullptr;
}

int XmlParser::getBufferLen() {
    if (m_pXmlParserImpl && !m_pXmlParserImpl->m_written)
        write();
    const XmlParserImpl* impl = usable("XmlParser:XmlParser::getBufferLen()");
    return impl ? static_cast<int>(impl->m_pTarget->getLen()) : 0;
}

void XmlParser::releaseDocument() {
    if (XmlParserImpl* impl = usable("XmlParser:XmlParser::releaseDocument()"))
        impl->forgetDocument();
}

} // namespace Zorvane
