// SPDX-License-Identifier: Apache-2.0
// What peers wrote, into a masked bundle: a log, a lab's inventory or a document of rows. No name that is
// known is left in a log, and a masked file is one of its form still.
#include "bundle/documentNames.h"
#include "bundle/maskedForms.h"
#include "bundle/utf8.h"
#include "fuzz/fuzzing.h"

#include <clocale>

using namespace Zorvane;

namespace {

// Found inside of words as well, and in no stand-in.
constexpr std::pair<NameKind, std::string_view> NAMES[] = {
    {NameKind::Client, "quartz-otter"},
    {NameKind::Store, "o'hara & miller-stores"},
    {NameKind::Machine, "große-übung"},
};

// Of a name of two letters, "datacenter-" and its number.
constexpr std::size_t MOST_GROWTH = 16;

void requireMasked(const std::string& text, const std::string& masked) {
    Fuzz::require(masked.size() <= MOST_GROWTH * text.size());
    for (const auto& [kind, name] : NAMES)
        Fuzz::require(folded(masked).find(name) == std::string::npos);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::setlocale(LC_ALL, "C.UTF-8");
    Fuzz::Input input(data, size);
    constexpr Form FORMS[] = {Form::Log, Form::Toml, Form::Document};
    const Form form = FORMS[input.choice(3)];
    const std::string read = input.rest();
    const auto kept = form == Form::Document ? withoutSecrets(read) : toUtf8(read);
    if (!kept)
        return 0;
    const std::string text = form == Form::Log ? readableLog(*kept) : *kept;
    Mask mask;
    for (const auto& [kind, name] : NAMES)
        mask.learn(kind, name);
    learnFrom(form, text, mask);
    const auto masked = maskedFile(form, text, mask);
    if (form == Form::Log)
        requireMasked(text, *masked);
    else if (masked)
        Fuzz::require(maskedFile(form, *masked, mask).has_value());
    return 0;
}
