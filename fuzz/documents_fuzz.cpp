// SPDX-License-Identifier: Apache-2.0
// Documents into the container, and out of it again. What was written once is read and written the same.
#include "fuzz/fuzzing.h"
#include "model/CZor.h"
#include "model/documents.h"

#include <clocale>
#include <sstream>

using namespace Zorvane;
using Test::documentOf;
using Test::readInto;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::setlocale(LC_ALL, "C.UTF-8");
    Fuzz::Input input(data, size);
    const auto filter = static_cast<int>(input.choice(FOR_TRANSACTION + 1));
    CZor first;
    readInto(first, input.rest(), filter);
    std::ostringstream out;
    first.dump(out);
    first.removeAfterRequest(filter);
    const std::string document = documentOf(first);
    CZor second;
    if (readInto(second, document) == 0)
        Fuzz::require(documentOf(second) == document);
    return 0;
}
