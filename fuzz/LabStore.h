// SPDX-License-Identifier: Apache-2.0
// The lab's database for a target: a client, a profile and a task, made anew now and then so that a run
// doesn't go on in what thousands before it have left.
#pragma once

#include "fuzz/fuzzing.h"
#include "lab/Store.h"
#include "model/documents.h"
#include "suite/Scratch.h"

#include <memory>

namespace Zorvane::Fuzz {

class LabStore {
  public:
    explicit LabStore(StoreLimits limits) : m_store(m_scratch.path("recovery.db"), limits) {
        CZor rows;
        require(Test::readInto(rows, Test::zorData(ROWS)) == 0 && m_store.load(rows).ok());
    }
    [[nodiscard]] Store& store() { return m_store; }
    [[nodiscard]] const Scratch& scratch() const { return m_scratch; }

    static constexpr int RUNS = 1000; ///< before the next one is made

  private:
    static constexpr const char* ROWS =
        "<Config><Id fromDb='0'>1</Id><Name>current</Name><ClientName>alpha</ClientName></Config>"
        "<System><Id fromDb='0'>1</Id><ConfigId fromDb='0'>1</ConfigId><OsLevel>10.0</OsLevel></System>"
        "<VmwareProfileOptions><Id fromDb='0'>1</Id><ProfileName>p</ProfileName></VmwareProfileOptions>"
        "<P2VRestoreTask><Id fromDb='0'>1</Id><ClientName>alpha</ClientName></P2VRestoreTask>";

    Scratch m_scratch;
    Store m_store;
};

/// The present one; `Made` is built from a fresh one of its own.
template <class Made>
Made& renewed() {
    static std::unique_ptr<Made> made;
    static int runs = 0;
    if (runs++ % LabStore::RUNS == 0) {
        made.reset();
        made = std::make_unique<Made>();
    }
    return *made;
}

} // namespace Zorvane::Fuzz
