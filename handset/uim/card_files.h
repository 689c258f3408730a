// The files of a card: a tree of directories with files of bytes or of records of one length. What a profile
// and its owner put in is kept apart from what was there, so that only that need be stored.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "wire.h"

namespace handset {

enum class FileKind : uint8_t { kDirectory, kTransparent, kLinearFixed };

/// Who may do something with a file.
enum class Access : uint8_t { kAlways, kPin, kAdministrator };

/// The access rules that files refer to, by their record in the file of rules, from 1.
struct AccessRule {
    Access read;
    Access update;
};
enum RuleRecord : uint8_t { kRuleFixed = 1, kRuleOwner = 2, kRuleSubscription = 3, kRuleOpen = 4 };
AccessRule access_rule(uint8_t record);
constexpr uint8_t kAccessRules = 4;

using FilePath = std::vector<uint16_t>;

constexpr uint16_t kIdMaster = 0x3F00;
constexpr uint16_t kIdApplication = 0x7FFF;  // the USIM, whatever its AID
constexpr uint16_t kIdDirectoryFile = 0x2F00;
constexpr uint16_t kIdIccid = 0x2FE2;
constexpr uint16_t kIdPreferredLanguages = 0x2F05;
constexpr uint16_t kIdMasterRules = 0x2F06;
constexpr uint16_t kIdApplicationRules = 0x6F06;

struct CardFile {
    uint16_t id = 0;
    FileKind kind = FileKind::kTransparent;
    uint8_t short_id = 0;     // 0: none
    uint8_t record_size = 0;  // of a linear fixed file
    uint8_t rule = kRuleOpen;
    wire::Bytes content;
    wire::Bytes name;  // the AID of an application's directory
    size_t parent = 0;
    bool changed = false;  // since it was made

    size_t records() const { return record_size == 0 ? 0 : content.size() / record_size; }
};

class CardFiles {
public:
    static constexpr size_t kMaster = 0;
    static constexpr size_t kContentMax = 32767;

    /// A master file with nothing in it.
    CardFiles();

    /// Files are known by their place, which stays while the object lives.
    size_t add(size_t directory, CardFile file);
    const CardFile& at(size_t place) const { return files_[place]; }

    std::optional<size_t> child(size_t directory, uint16_t id) const;
    std::optional<size_t> by_short_id(size_t directory, uint8_t short_id) const;

    /// The application whose AID begins with the name, which has 5 to 16 bytes.
    std::optional<size_t> application(wire::View name) const;
    std::optional<size_t> application() const;

    /// From the master file, which is the first.
    std::optional<size_t> find(const FilePath& path) const;
    FilePath path_of(size_t place) const;

    /// The content of an elementary file, or nothing.
    std::optional<wire::View> content(const FilePath& path) const;

    /// Overwrites a part that lies within the file.
    void update(size_t place, size_t offset, wire::View bytes);

    /// Gives a file its whole content: a file of records keeps their length and is filled up with FF; where
    /// there is no file, one of bytes is made, and the directories above it. False when that is no place for
    /// a file.
    bool put(const FilePath& path, wire::View bytes);

    /// What has changed, and the same applied again. False when the bytes are none of that.
    void write_changes(wire::Writer& writer) const;
    bool apply_change(wire::View change);

private:
    std::vector<CardFile> files_;
};

/// "3F00/7FFF/6F46", or nothing.
std::optional<FilePath> parse_path(const std::string& text);

}  // namespace handset
