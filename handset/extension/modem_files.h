// The modem's EFS files and NV items, kept in the folder: efs/<subscription>/<path> and
// nv/<subscription>/<item>. A write is there as a whole or not at all, whenever the handset is killed.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "wire.h"

namespace handset {

class Folder;
class Section;

/// Results of the modem, as they stand in its answers.
enum ModemResult : int32_t {
    kModemOk = 0,
    kModemNoSuchFile = -2,
    kModemRefused = -13,
    kModemMalformed = -22,
    kModemNoRoom = -28,
};

struct EfsProfile {
    /// The longest file and the longest NV item; a longer one finds no room.
    uint32_t file_max = 102'409;
    /// Paths, with all below them, that may be read but neither written nor deleted.
    std::vector<std::string> read_only;
};

void read_profile(Section& section, EfsProfile& efs);

/// One EFS file or NV item by its name in the folder, "efs/0/nv/item_files/x".
struct ModemFileName {
    ModemResult result = kModemOk;
    std::string name;
};

class ModemFiles {
public:
    static constexpr unsigned kSubscriptions = 2;
    static constexpr unsigned kLastNvItem = 7232;

    ModemFiles(Folder& folder, const EfsProfile& profile) : folder_(folder), profile_(profile) {}

    /// The name of an EFS path as the modem hears it: with or without a leading slash, a terminating zero
    /// counted or not. A path that is empty or holds a zero inside is malformed; one that would leave the
    /// subscription's folder is refused.
    ModemFileName efs_name(unsigned subscription, std::string_view path) const;
    ModemFileName nv_name(unsigned subscription, unsigned item) const;

    ModemResult read(const std::string& name, wire::Bytes& content) const;
    ModemResult write(const std::string& name, wire::View content);
    ModemResult remove(const std::string& name);

    /// Whether a write of this length may begin; write() asks again.
    ModemResult may_write(const std::string& name, size_t length) const;

private:
    bool is_read_only(const std::string& name) const;

    Folder& folder_;
    const EfsProfile& profile_;
};

}  // namespace handset
