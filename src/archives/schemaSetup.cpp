// SPDX-License-Identifier: Apache-2.0
// The XML library sets up its part for schemas whenever it is set up: tables of all Unicode categories,
// patterns, types. That is nearly all of its set-up, as long as the start of a program, and nothing here has
// a schema. So that part is set up when something first asks for it: for a table of a category, or for an
// object that validates by a schema.
#include <mutex>

// The library's functions and what is linked in their place; this folder's CMakeLists.txt has the list. The
// names are those of XMLInitializer's steps, of RangeTokenMap::instance and of SchemaValidator's constructor.
extern "C" {

void __real__ZN11xercesc_3_214XMLInitializer23initializeRangeTokenMapEv();
void __real__ZN11xercesc_3_214XMLInitializer27initializeRegularExpressionEv();
void __real__ZN11xercesc_3_214XMLInitializer34initializeDatatypeValidatorFactoryEv();
void __real__ZN11xercesc_3_214XMLInitializer31initializeGeneralAttributeCheckEv();
void* __real__ZN11xercesc_3_213RangeTokenMap8instanceEv();
void __real__ZN11xercesc_3_215SchemaValidatorC1EPNS_16XMLErrorReporterEPNS_13MemoryManagerE(void* made,
                                                                                            void* reporter,
                                                                                            void* memory);

void __wrap__ZN11xercesc_3_214XMLInitializer23initializeRangeTokenMapEv() {}
void __wrap__ZN11xercesc_3_214XMLInitializer27initializeRegularExpressionEv() {}
void __wrap__ZN11xercesc_3_214XMLInitializer34initializeDatatypeValidatorFactoryEv() {}
void __wrap__ZN11xercesc_3_214XMLInitializer31initializeGeneralAttributeCheckEv() {}

void* __wrap__ZN11xercesc_3_213RangeTokenMap8instanceEv() {
    static std::recursive_mutex lock; // the second step asks for what the first one has made
    const std::lock_guard guard(lock);
    if (void* made = __real__ZN11xercesc_3_213RangeTokenMap8instanceEv())
        return made;
    __real__ZN11xercesc_3_214XMLInitializer23initializeRangeTokenMapEv();
    __real__ZN11xercesc_3_214XMLInitializer27initializeRegularExpressionEv();
    return __real__ZN11xercesc_3_213RangeTokenMap8instanceEv();
}

void __wrap__ZN11xercesc_3_215SchemaValidatorC1EPNS_16XMLErrorReporterEPNS_13MemoryManagerE(void* made,
                                                                                            void* reporter,
                                                                                            void* memory) {
    static std::once_flag isSetUp;
    std::call_once(isSetUp, [] {
        __real__ZN11xercesc_3_214XMLInitializer34initializeDatatypeValidatorFactoryEv();
        __real__ZN11xercesc_3_214XMLInitializer31initializeGeneralAttributeCheckEv();
    });
    __real__ZN11xercesc_3_215SchemaValidatorC1EPNS_16XMLErrorReporterEPNS_13MemoryManagerE(made, reporter,
                                                                                           memory);
}

} // extern "C"
