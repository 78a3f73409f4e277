// SPDX-License-Identifier: Apache-2.0
#include "suite/catalog.h"

#include "suite/configuration.h"
#include "suite/printable.h"
#include "suite/utf8.h"

#include <algorithm>
#include <cctype>
#include <clocale>
#include <cstring>
#include <filesystem>
#include <map>
#include <string_view>

#include <langinfo.h>
#include <nl_types.h>

namespace Zorvane::Suite {

namespace {

namespace fs = std::filesystem;

constexpr const char* STANDARD_DIRECTORY = "/usr/tarnv/share/locale";
constexpr const char* FALLBACK_LANGUAGE = "en";

// The platform's sets and numbers are int; its lookup multiplies them, so larger ones are not asked for.
constexpr std::uint64_t MAX_ID = 32'767;

class Catalog {
  public:
    explicit Catalog(const fs::path& file) : m_descriptor(::catopen(file.c_str(), 0)) {}
    Catalog(const Catalog&) = delete;
    Catalog& operator=(const Catalog&) = delete;
    ~Catalog() {
        if (isOpen())
            ::catclose(m_descriptor);
    }

    // NOLINTNEXTLINE(performance-no-int-to-ptr): catopen's failure
    [[nodiscard]] bool isOpen() const { return m_descriptor != reinterpret_cast<nl_catd>(-1); }

    /// The message, which lives as long as the catalogue, or null.
    [[nodiscard]] const char* find(std::uint64_t set, std::uint64_t number) const {
        return ::catgets(m_descriptor, static_cast<int>(set), static_cast<int>(number), nullptr);
    }

  private:
    nl_catd m_descriptor;
};

// The opened catalogues by file. A missing one is looked for again at the next message.
const Catalog* openCatalog(const fs::path& file) {
    static std::map<fs::path, Catalog> catalogs;
    const auto known = catalogs.try_emplace(file, file).first;
    if (known->second.isOpen())
        return &known->second;
    catalogs.erase(known);
    return nullptr;
}

// "de_AT.UTF-8@euro" speaks "de"; the portable locales speak English.
std::string language() {
    const char* locale = std::setlocale(LC_MESSAGES, nullptr);
    std::string letters;
    for (; locale && std::isalpha(static_cast<unsigned char>(*locale)); ++locale)
        letters += *locale;
    return letters.empty() || letters == "C" || letters == "POSIX" ? FALLBACK_LANGUAGE : letters;
}

fs::path directory() {
    if (const std::string& configured = configuration().catalogDirectory; !configured.empty())
        return configured;
    std::error_code error;
    if (fs::is_directory(STANDARD_DIRECTORY, error))
        return STANDARD_DIRECTORY;
    // A build tree, or a copy of it in any place: <somewhere>/bin beside <somewhere>/share. In the suite's
    // tree, when it stands in another place, share is one folder further up.
    const fs::path top = fs::read_symlink("/proc/self/exe", error).parent_path().parent_path();
    const fs::path beside = top / "share" / "locale";
    return fs::is_directory(beside, error) ? beside : top.parent_path() / "share" / "locale";
}

// A catalogue's text, which is UTF-8, in the code set of the process's locale; nothing if that can't write
// it.
std::optional<std::string> toNative(std::string_view text) {
    const std::string_view codeSet = ::nl_langinfo(CODESET);
    if (codeSet == "UTF-8" || std::ranges::all_of(text, [](unsigned char byte) { return byte < 0x80; }))
        return std::string(text);
    return inCodeSet(text, "UTF-8", codeSet.data());
}

// English is written in the characters that all code sets have, so that no message is lost to a code set.
std::optional<std::string> findMessage(std::uint64_t originator, std::uint64_t number) {
    if (originator > MAX_ID || number > MAX_ID)
        return std::nullopt;
    const fs::path base = directory();
    for (const std::string& name : {language(), std::string(FALLBACK_LANGUAGE)})
        if (const Catalog* catalog = openCatalog(base / name / "zorvane.cat"))
            if (const char* text = catalog->find(originator, number))
                if (auto native = toNative(text))
                    return native;
    return std::nullopt;
}

} // namespace

std::string argumentText(const mrthLisAny_t& argument) {
    if (argument.text)
        return argument.text;
    return argument.kind == 3 ? std::to_string(argument.number) : std::string();
}

std::optional<std::string> catalogText(std::uint64_t originator, std::uint64_t number,
                                       const mrthLisArgs_t* arguments) {
    const auto format = findMessage(originator, number);
    if (!format)
        return std::nullopt;
    std::string text;
    std::uint32_t next = 0;
    for (std::string_view rest = *format; !rest.empty();) {
        const std::size_t place = std::min(rest.find("%s"), rest.size());
        text += rest.substr(0, place);
        rest.remove_prefix(place);
        if (rest.empty())
            break;
        rest.remove_prefix(2);
        if (arguments && next < arguments->count)
            text += printable(argumentText(*arguments->cells[next++]));
    }
    return text;
}

} // namespace Zorvane::Suite

extern "C" std::int32_t xlatemsg(std::uint64_t originator, std::uint64_t number, char** text,
                                 const mrthLisArgs_t* arguments) {
    *text = nullptr;
    const auto found = Zorvane::Suite::catalogText(originator, number, arguments);
    if (!found)
        return MRTH_LIS_NO_MESSAGE;
    *text = ::strdup(found->c_str());
    return *text ? 0 : MRTH_LIS_NO_MEMORY;
}
