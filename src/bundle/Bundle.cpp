// SPDX-License-Identifier: Apache-2.0
#include "bundle/Bundle.h"

#include "bundle/NewFile.h"
#include "bundle/archive.h"
#include "bundle/documentNames.h"
#include "bundle/utf8.h"
#include "suite/descriptor.h"
#include "suite/printable.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <nlohmann/json.hpp>
#include <sys/stat.h>
#include <unistd.h>

namespace Zorvane {

namespace {

using Json = nlohmann::ordered_json;

// Of a log: what led to a failure stands in its last lines, and an archive is sent by mail.
constexpr std::size_t END_LINES = 2000;
constexpr off_t END_BYTES = off_t{1} << 20;
// Of any other file, and more than all of them have.
constexpr off_t MOST_BYTES = off_t{16} << 20;

struct Piece {
    std::string text{};
    bool isCut = false;
    int error = 0;
};

// Up to that many bytes from the end of a plain file. Neither a link nor a pipe is opened by a name that is
// not the user's: the folder of the logs may be others' to write.
Piece readEnd(const std::string& name, off_t most, int flags) {
    const Suite::Descriptor file(::open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY | flags));
    struct stat facts {};
    if (!file.isOpen() || ::fstat(file.get(), &facts) != 0)
        return {.error = errno};
    if (!S_ISREG(facts.st_mode))
        return {.error = S_ISDIR(facts.st_mode) ? EISDIR : EINVAL};
    Piece piece{.isCut = facts.st_size > most};
    off_t at = piece.isCut ? facts.st_size - most : 0;
    std::array<char, 65536> buffer;
    while (at < facts.st_size) {
        const auto wanted = std::min<off_t>(facts.st_size - at, buffer.size());
        const ssize_t count = ::pread(file.get(), buffer.data(), static_cast<std::size_t>(wanted), at);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return {.error = errno};
        if (count == 0)
            break;
        piece.text.append(buffer.data(), static_cast<std::size_t>(count));
        at += count;
    }
    return piece;
}

std::string lastLines(const Piece& piece) {
    std::string_view text = piece.text;
    if (piece.isCut) // the first line may have lost its beginning
        text.remove_prefix(text.find('\n') + 1);
    std::size_t end = text.size() - (text.ends_with('\n') ? 1 : 0);
    for (std::size_t lines = 0; lines < END_LINES && end != text.npos && end > 0; ++lines)
        end = text.rfind('\n', end - 1);
    return std::string(text.substr(end == text.npos || end == 0 ? 0 : end + 1));
}

std::string timeText(std::time_t time, const char* form) {
    std::tm fields{};
    std::array<char, 64> text{};
    ::gmtime_r(&time, &fields);
    std::strftime(text.data(), text.size(), form, &fields);
    return text.data();
}

std::string folderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == path.npos ? "." : path.substr(0, slash + 1);
}

bool isSameFile(const std::string& first, const std::string& second) {
    struct stat a {
    }, b{};
    return ::stat(folderOf(first).c_str(), &a) == 0 && ::stat(folderOf(second).c_str(), &b) == 0 &&
           a.st_dev == b.st_dev && a.st_ino == b.st_ino &&
           first.substr(first.rfind('/') + 1) == second.substr(second.rfind('/') + 1);
}

constexpr const char* UNREADABLE =
    "it is not in its form, so that what must not go along can't be told from the rest; it is left out";
constexpr const char* MASKED_NOTE =
    "Names and addresses are masked. The same name has the same stand-in everywhere: host-1, "
    "client-1.domain-1.\n"
    "Addresses became 0.x.x.x, 100::x and 02:00:00:x:x:x, which belong to nobody.\n"
    "Masked are the names that the configuration, the rows, the inventory and the logs tell of as such, and "
    "what\n"
    "looks like an address, a host with its domain, a mailbox or a user's folder. A name that stands in free "
    "text\n"
    "alone (a description, the path of a file) is as it was: look through the archive before it is sent.\n";
constexpr const char* PARTIAL_NOTE = "Not all names were known, for some of what tells them could not be had "
                                     "(it stands below): expect more of "
                                     "them here.\n";
constexpr const char* LEFT_OUT_NOTE =
    "Left out in any case: the contents of files that a client's configuration holds, whose sizes are 0, the "
    "values of\n"
    "it that are called passwords or secrets, and the values of keys in kvn.toml that the suite does not "
    "know.\n";

} // namespace

Bundle::Bundle(BundleOptions options) : m_options(std::move(options)), m_made(std::time(nullptr)) {
    m_folder = m_options.program + "-bundle-" + timeText(m_made, "%Y%m%d-%H%M%S");
    if (m_options.output.empty())
        m_options.output = m_folder + ".tar.gz";
    if (!m_options.legend.empty() && isSameFile(m_options.output, m_options.legend))
        throw BundleFailure("the legend and the archive can't be one file: " + m_options.legend);
    // A path where nothing can be made is told before the work, and nothing is left if that is interrupted.
    for (const std::string& path : {m_options.output, m_options.legend})
        if (!path.empty())
            NewFile(path, m_options.isReplacing);
}

void Bundle::add(const std::string& path, const std::string& what, Form form, const std::string& text) {
    const auto kept = form == Form::Document ? withoutSecrets(text) : toUtf8(text);
    if (kept)
        m_members.push_back({path, what, form, *kept});
    else
        missNames(what, UNREADABLE);
}

void Bundle::miss(const std::string& what, const std::string& why, bool isFailure) {
    m_missing.push_back({what, toUtf8(why), isFailure});
}

void Bundle::missNames(const std::string& what, const std::string& why) {
    m_isMaskPartial = true;
    miss(what, why, true);
}

// The path may name anything.
void Bundle::missFile(const std::string& what, const std::string& file, const std::string& why,
                      bool isFailure) {
    miss(what, m_options.isMasked ? why : file + ": " + why, isFailure);
}

void Bundle::addFile(const std::string& path, const std::string& what, Form form, const std::string& file,
                     std::optional<std::string> (*edit)(const std::string&)) {
    const Piece piece = readEnd(file, MOST_BYTES, 0);
    if (piece.error == 0 && !piece.isCut)
        if (const auto text = edit ? edit(piece.text) : piece.text)
            return add(path, what, form, *text);
    m_isMaskPartial = true;
    missFile(what, file,
             piece.error != 0 ? std::strerror(piece.error)
             : piece.isCut    ? "it is larger than any such file"
                              : UNREADABLE,
             piece.error != ENOENT);
}

void Bundle::addEnd(const std::string& path, const std::string& what, const std::string& file) {
    const Piece piece = readEnd(file, END_BYTES, O_NOFOLLOW);
    if (piece.error != 0)
        missFile(what, file, piece.error == ELOOP ? "it is a link" : std::strerror(piece.error), false);
    else
        add(path, what, Form::Log, lastLines(piece));
}

bool Bundle::hasFailures() const {
    return std::ranges::any_of(m_missing, &MissingMember::isFailure);
}

void Bundle::write() {
    NewFile archive(m_options.output, m_options.isReplacing);
    std::optional<NewFile> legend;
    if (!m_options.legend.empty())
        legend.emplace(m_options.legend, m_options.isReplacing);
    if (m_options.isMasked)
        maskMembers();
    addContents();
    TarGz tar(m_made);
    for (const BundleMember& member : m_members)
        tar.add(m_folder + "/" + member.path, member.text);
    const std::string packed = tar.finish();
    m_size = packed.size();
    archive.write(packed);
    if (legend) {
        legend->write(m_mask.legend());
        legend->commit();
    }
    archive.commit();
}

void Bundle::maskMembers() {
    for (BundleMember& member : m_members) {
        if (member.form == Form::Log)
            member.text = readableLog(member.text);
        learnFrom(member.form, member.text, m_mask);
    }
    for (const MissingMember& missing : m_missing)
        m_mask.survey(missing.why);
    std::erase_if(m_members, [&](BundleMember& member) {
        const auto masked = maskedFile(member.form, member.text, m_mask);
        if (masked)
            member.text = *masked;
        else
            missNames(member.what, UNREADABLE);
        return !masked;
    });
    for (MissingMember& missing : m_missing)
        missing.why = m_mask.masked(std::string_view(missing.why));
}

void Bundle::addContents() {
    const std::string made = timeText(m_made, "%Y-%m-%dT%H:%M:%SZ");
    Json members = Json::array(), missing = Json::array();
    std::string text =
        "Support bundle of " + m_options.program + " " + m_options.version + ", made " + made + ".\n\n" +
        (m_options.isMasked ? MASKED_NOTE : "Names and addresses are as they were; --mask masks them.\n") +
        (m_options.isMasked && m_isMaskPartial ? PARTIAL_NOTE : "") + LEFT_OUT_NOTE +
        "\nMembers, with their sizes in bytes:\n\n";
    for (const BundleMember& member : m_members) {
        text += "  " + member.path + "  (" + std::to_string(member.text.size()) + ")\n      " + member.what +
                "\n";
        members.push_back({{"path", member.path}, {"size", member.text.size()}, {"what", member.what}});
    }
    text += "  manifest.json\n      this list, for programs\n";
    text += m_missing.empty() ? "\nNothing is missing.\n" : "\nWhat could not be had, and why:\n\n";
    for (const MissingMember& each : m_missing) {
        text += "  " + each.what + "\n      " + each.why + "\n";
        missing.push_back({{"what", each.what}, {"why", each.why}});
    }
    m_members.insert(m_members.begin(), {"README.txt", "what this is, member by member", Form::Text, text});
    members.insert(members.begin(),
                   {{"path", "README.txt"}, {"size", text.size()}, {"what", m_members.front().what}});
    const Json manifest = {
        {"program", m_options.program},   {"version", m_options.version}, {"made", made},
        {"isMasked", m_options.isMasked}, {"members", members},           {"missing", missing}};
    m_members.push_back(
        {"manifest.json", "the list of members, for programs", Form::Json, jsonText(manifest)});
}

std::string Bundle::report() const {
    std::string text = m_options.output + ": " + std::to_string(m_members.size()) + " members, " +
                       std::to_string(m_size) + " bytes" + (m_options.isMasked ? ", masked" : "");
    std::vector<std::string> lines = {text};
    if (!m_options.legend.empty())
        lines.push_back(m_options.legend + ": what the stand-ins stand for; not to be sent");
    for (const MissingMember& each : m_missing)
        lines.push_back("  missing: " + each.what + ": " + each.why);
    text.clear();
    for (const std::string& line : lines)
        text += Suite::printable(line) + "\n";
    return text;
}

} // namespace Zorvane
