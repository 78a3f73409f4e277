// SPDX-License-Identifier: Apache-2.0
// Notices that a file may have changed, at the cost of reading one number.
#pragma once

#include "suite/descriptor.h"

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

namespace Zorvane::Suite {

/// Watches a file by its path: what is written to it, a file renamed over it, its removal and its coming, and
/// changes of the folders and links on its way. The kernel notes them in an inotify queue and signals the
/// queue (SIGURG, which programs ignore unless they ask for it); the signal's handler counts. Interrupted
/// system calls are restarted. Children of fork watch on their own; those that execute a program inherit
/// nothing.
///
/// What the kernel can't tell is left to the caller, who must look at the file now and then: a write through
/// a mapping until the writer lets go of it, new permissions of a folder on the way, and a file system mounted
/// over one. A file of a kind of file system on which others write unseen (the network's) is not watched at
/// all, nor is one where the system's limits or the process's own use of the signal leave no room. One object
/// a process; not for use by several threads.
class FileWatch {
  public:
    /// The state of a file that is not watched. No watched file is ever in it.
    static constexpr std::uint32_t NotWatched = 0;

    FileWatch();
    FileWatch(const FileWatch&) = delete;
    FileWatch& operator=(const FileWatch&) = delete;
    ~FileWatch();

    /// A number for the file's state, which stays the same until something happens to the file. Costs a load.
    [[nodiscard]] static std::uint32_t state() noexcept { return s_state.load(std::memory_order_relaxed); }

    /// Watches this file from now on and gives its state, or NotWatched. To be called before a look at the
    /// file: what happens after the call is another state. A path that can't be watched is not tried again.
    [[nodiscard]] std::uint32_t follow(const std::string& path);

    /// Notes a change that the caller has found by himself, and starts to watch anew.
    void noteChange() noexcept;

    /// Sees to it that the watch goes on if somebody has closed its descriptor.
    void check() noexcept;

  private:
    struct Step {
        int watch;
        std::string name; ///< what matters in a watched folder; empty for the file itself
    };

    static void countChange(int) noexcept;
    static void startOverInChild() noexcept;

    [[nodiscard]] bool isOpen() const noexcept;
    [[nodiscard]] bool open();
    void close() noexcept;
    [[nodiscard]] bool takeEvents();
    [[nodiscard]] bool watchSteps();
    [[nodiscard]] bool addStep(std::vector<Step>& steps, const std::string& path, std::uint32_t events,
                               const std::string& name) const;

    static std::atomic<std::uint32_t> s_state;
    static FileWatch* s_watch;

    std::string m_path;
    bool m_isHopeless = false;
    int m_queue = -1; ///< not a Descriptor: whoever closed it may have opened another under its number
    std::vector<Step> m_steps;
};

} // namespace Zorvane::Suite
