// SPDX-License-Identifier: Apache-2.0
// What the parts of a capture share: the machine's files, the rows so far and the list of what is left out.
#pragma once

#include "lab/capture.h"
#include "model/records.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string_view>

#include <nlohmann/json.hpp>

namespace Zorvane {

/// A block device. It may lie on several others, and several may lie on it.
struct BlockDevice {
    std::string kernelName;                           ///< "sda1", its name below /sys/class/block
    std::string type;                                 ///< "disk", "part", "lvm", "raid1" ...
    nlohmann::json values = nlohmann::json::object(); ///< its columns
    std::vector<BlockDevice*> parents{};              ///< what it lies on
    ID row = 0;                                       ///< in the table of its kind; 0 if it has none
    ID fileSystem = 0;

    [[nodiscard]] std::string text(const char* column) const;
    /// 0 without a value.
    [[nodiscard]] std::int64_t number(const char* column) const;
    [[nodiscard]] bool flag(const char* column) const;
    [[nodiscard]] std::string path() const { return text("path"); }
    [[nodiscard]] std::int64_t size() const { return number("size"); }
    /// "254:3" as two numbers.
    [[nodiscard]] std::pair<int, int> deviceNumber() const;
    [[nodiscard]] bool isMultiDevice() const { return type.starts_with("raid") || type == "linear"; }
};

// A value of a command's output. Older commands write numbers and flags as texts.
std::string jsonText(const nlohmann::json& object, const char* key);
std::int64_t jsonNumber(const nlohmann::json& object, const char* key);

struct MachineCapture {
    const MachineSources& machine;
    CZor& rows;
    std::vector<std::string> leftOut{};

    std::vector<std::unique_ptr<BlockDevice>> devices{}; ///< parents before their children
    ID config = 0;
    ID volumeInfo = 0;

    /// A new row, with the next number of its table.
    template <class Record>
    Record& add(RecordRows<Record>& table) {
        auto row = std::make_unique<Record>();
        row->setId(static_cast<ID>(table.records().size() + 1));
        table.push_back(row.get());
        return *row.release();
    }

    /// The value, with a line "thing: why it isn't told" among what is left out if it is empty or 0.
    template <class Value>
    Value told(Value value, std::string line) {
        if (value == Value{})
            leftOut.push_back(std::move(line));
        return value;
    }

    /// A small file below the root, without the line end behind it; empty if it can't be read.
    [[nodiscard]] std::string file(const std::string& name) const;
    [[nodiscard]] std::vector<std::string> lines(const std::string& name) const;
    [[nodiscard]] bool exists(const std::string& name) const;
    /// The number at the start of a file; 0 without one.
    [[nodiscard]] std::int64_t number(const std::string& name) const;
    /// The names in a folder, sorted.
    [[nodiscard]] std::vector<std::string> names(const std::string& folder) const;
    /// The value of a line "KEY=value" of a file, without its quotes.
    [[nodiscard]] std::string setting(const std::string& name, std::string_view key) const;

    /// The host's name, without its domain.
    [[nodiscard]] std::string hostName() const;
    [[nodiscard]] bool isUefi() const { return exists("sys/firmware/efi"); }
};

/// Blank-separated words.
std::vector<std::string> wordsOf(const std::string& text);
/// The number that a text begins with; 0 for none.
int leadingNumber(std::string_view text);

// The parts, in this order: each uses the rows of those before.
void captureSystem(MachineCapture& capture);
void captureNetwork(MachineCapture& capture);
void captureDisks(MachineCapture& capture);
void captureVolumes(MachineCapture& capture);
void captureFileSystems(MachineCapture& capture);
void captureBootLoader(MachineCapture& capture);

} // namespace Zorvane
