// SPDX-License-Identifier: Apache-2.0
// The lab's query clauses: columns and tables, a line each, and the condition. They read rows or are refused,
// in their time, and change nothing.
#include "fuzz/LabStore.h"

#include <array>
#include <chrono>

using namespace Zorvane;

namespace {

using namespace std::chrono_literals;

struct QueriedStore {
    Fuzz::LabStore store{{.clauseTime = 50ms}};
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Fuzz::Input input(data, size);
    Store& store = Fuzz::renewed<QueriedStore>().store.store();
    CZor request;
    auto* query = new CQueryRequest;
    query->setColumnClause(input.line());
    query->setTableClause(input.line());
    query->setWhereClause(input.rest());
    request.m_vQueryRequest.push_back(query);
    const std::string document = Test::documentOf(request, FOR_QUERY);
    const StoreResult result =
        store.query({reinterpret_cast<const unsigned char*>(document.data()), document.size()});

    static constexpr std::array ALLOWED = {STORE_OK, STORE_BAD_DOCUMENT, STORE_BAD_QUERY, STORE_TOO_MUCH};
    Fuzz::require(std::find(ALLOWED.begin(), ALLOWED.end(), result.status) != ALLOWED.end());
    Fuzz::require(store.configurations().size() == 1 && store.tasks().size() == 1 && store.findProfile(1));
    return 0;
}
