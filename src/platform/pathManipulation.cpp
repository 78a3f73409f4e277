// SPDX-License-Identifier: Apache-2.0
#include "platform/pathManipulation.h"

#include "logging/Trace.h"
#include "platform/fieldSplitting.h"
#include "platform/returnCodes.h"
#include "platform/stringManipulation.h"

#include <array>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

namespace Zorvane {

namespace {

char orSlash(char separator) {
    return separator ? separator : '/';
}

} // namespace

std::string NormalizePathSeparators(const std::string& path, char separator) {
    Trace trace(g_libLog, "pathManipulation:NormalizePathSeparators()");
    const std::string one(1, orSlash(separator));
    std::string normalized = path;
    StrReplace(normalized, one + one, one, true);
    return normalized == one ? normalized : StripTrailing(normalized, one);
}

std::string GetFileNameFromPath(const std::string& path, char separator) {
    Trace trace(g_libLog, "pathManipulation:GetFileNameFromPath()");
    return path.substr(path.rfind(orSlash(separator)) + 1); // npos + 1 is 0
}

std::string GetFileNameWithoutExtFromPath(const std::string& path, char separator) {
    Trace trace(g_libLog, "pathManipulation:GetFileNameWithoutExtFromPath()");
    const std::string name = GetFileNameFromPath(path, separator);
    return name.substr(0, name.rfind('.'));
}

std::string GetExtensionFromPath(const std::string& path, char separator) {
    Trace trace(g_libLog, "pathManipulation:GetExtensionFromPath()");
    const std::string name = GetFileNameFromPath(path, separator);
    const std::size_t dot = name.rfind('.');
    return dot == std::string::npos ? std::string() : name.substr(dot + 1);
}

std::string GetDirNameFromPath(const std::string& path, char separator) {
    Trace trace(g_libLog, "pathManipulation:GetDirNameFromPath()");
    const std::string normalized = NormalizePathSeparators(path, separator);
    const std::size_t last = normalized.rfind(orSlash(separator));
    if (last == std::string::npos)
        return ".";
    return last == 0 ? "/" : normalized.substr(0, last);
}

namespace {

bool exists(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0;
}

std::vector<std::string> resolved(const std::vector<std::string>& components) {
    std::vector<std::string> kept;
    for (const auto& component : components) {
        if (component == "..") {
            if (!kept.empty())
                kept.pop_back();
        } else if (component != ".") {
            kept.push_back(component);
        }
    }
    return kept;
}

} // namespace

int canonicalizePath(const std::string& path, std::string& canonical) {
    Trace trace(g_libLog, "pathManipulation:canonicalizePath()", ", path=", path);
    std::string full = path;
    canonical = path;
    if (full.empty())
        return trace.leave(ZOR_FAIL, ", return ZOR_FAIL");

    if (full.front() != '.' && full.front() != '/' && exists(full))
        full.insert(0, "./");
    if (full.front() == '.') {
        std::array<char, 1024> directory{};
        if (!getcwd(directory.data(), directory.size()))
            return trace.leave(ZOR_FAIL, "', could not detect current working directory");
        full = std::string(directory.data()) + "/" + full;
    }

    const bool absolute = full.front() == '/';
    std::vector<std::string> components;
    if (Split(full, "/", components, true) != ZOR_SUCCESS)
        return trace.leave(ZOR_FAIL, ", return ZOR_FAIL");
    const std::vector<std::string> kept = resolved(components);

    canonical.clear();
    for (const auto& component : kept) {
        if (absolute || !canonical.empty())
            canonical += '/';
        canonical += component;
    }
    if (!absolute && kept.size() == 1)
        canonical += '/';
    return trace.leave(ZOR_SUCCESS, ", return ZOR_SUCCESS");
}

int comparePaths(const std::string& first, const std::string& second) {
    Trace trace(g_libLog, "pathManipulation:comparePaths()", ", first=", first, ", second=", second);
    if (first.empty() != second.empty())
        return 0;
    std::string canonicalFirst;
    std::string canonicalSecond;
    if (canonicalizePath(first, canonicalFirst) != ZOR_SUCCESS ||
        canonicalizePath(second, canonicalSecond) != ZOR_SUCCESS)
        return first == second;
    return canonicalFirst == canonicalSecond;
}

} // namespace Zorvane
