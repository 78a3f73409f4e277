// SPDX-License-Identifier: Apache-2.0
// Each of the XML library's parsers first makes itself a scanner that knows everything, schemas included, and
// drops it when the parser is told which one to use. The parsers here use the scanner for well-formed
// documents alone, so they get it from the start.
#include <xercesc/internal/XMLScannerResolver.hpp>
#include <xercesc/util/XMLUni.hpp>

using namespace xercesc;

// In the place of XMLScannerResolver::getDefaultScanner; see the list in this folder's CMakeLists.txt.
extern "C" XMLScanner*
__wrap__ZN11xercesc_3_218XMLScannerResolver17getDefaultScannerEPNS_12XMLValidatorEPNS_15GrammarResolverEPNS_13MemoryManagerE(
    XMLValidator* validator, GrammarResolver* grammars, MemoryManager* memory) {
    return XMLScannerResolver::resolveScanner(XMLUni::fgWFXMLScanner, validator, grammars, memory);
}
