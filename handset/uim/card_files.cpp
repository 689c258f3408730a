#include "card_files.h"

#include <algorithm>

#include "hex_text.h"

namespace handset {
namespace {

constexpr size_t kNameMin = 5;
constexpr size_t kPathMax = 8;
constexpr uint8_t kTlvChange = 0x10;

constexpr AccessRule kRules[kAccessRules] = {
    {Access::kAlways, Access::kAdministrator},
    {Access::kPin, Access::kPin},
    {Access::kPin, Access::kAdministrator},
    {Access::kAlways, Access::kPin},
};

}  // namespace

AccessRule access_rule(uint8_t record) {
    return kRules[record - 1];
}

CardFiles::CardFiles() {
    CardFile master;
    master.id = kIdMaster;
    master.kind = FileKind::kDirectory;
    master.rule = kRuleFixed;
    files_.push_back(master);
}

size_t CardFiles::add(size_t directory, CardFile file) {
    file.parent = directory;
    files_.push_back(std::move(file));
    return files_.size() - 1;
}

std::optional<size_t> CardFiles::child(size_t directory, uint16_t id) const {
    for (size_t place = 1; place < files_.size(); ++place) {
        if (files_[place].parent == directory && files_[place].id == id)
            return place;
    }
    return std::nullopt;
}

std::optional<size_t> CardFiles::by_short_id(size_t directory, uint8_t short_id) const {
    for (size_t place = 1; place < files_.size(); ++place) {
        if (files_[place].parent == directory && files_[place].short_id == short_id && short_id != 0)
            return place;
    }
    return std::nullopt;
}

std::optional<size_t> CardFiles::application(wire::View name) const {
    for (size_t place = 1; place < files_.size(); ++place) {
        const wire::Bytes& whole = files_[place].name;
        if (name.size >= kNameMin && name.size <= whole.size() &&
            std::equal(name.data, name.data + name.size, whole.begin()))
            return place;
    }
    return std::nullopt;
}

std::optional<size_t> CardFiles::application() const {
    return child(kMaster, kIdApplication);
}

std::optional<size_t> CardFiles::find(const FilePath& path) const {
    if (path.empty() || path.front() != kIdMaster)
        return std::nullopt;
    std::optional<size_t> place = kMaster;
    for (size_t i = 1; i < path.size() && place; ++i)
        place = child(*place, path[i]);
    return place;
}

FilePath CardFiles::path_of(size_t place) const {
    FilePath path;
    for (; place != kMaster; place = files_[place].parent)
        path.insert(path.begin(), files_[place].id);
    path.insert(path.begin(), kIdMaster);
    return path;
}

std::optional<wire::View> CardFiles::content(const FilePath& path) const {
    const auto place = find(path);
    if (!place || files_[*place].kind == FileKind::kDirectory)
        return std::nullopt;
    return files_[*place].content;
}

void CardFiles::update(size_t place, size_t offset, wire::View bytes) {
    CardFile& file = files_[place];
    std::copy_n(bytes.data, bytes.size, file.content.begin() + static_cast<std::ptrdiff_t>(offset));
    file.changed = true;
}

bool CardFiles::put(const FilePath& path, wire::View bytes) {
    if (path.size() < 2 || path.size() > kPathMax || path.front() != kIdMaster || bytes.size > kContentMax)
        return false;
    size_t directory = kMaster;
    for (size_t i = 1; i + 1 < path.size(); ++i) {
        const auto next = child(directory, path[i]);
        if (!next) {
            CardFile made;
            made.id = path[i];
            made.kind = FileKind::kDirectory;
            directory = add(directory, std::move(made));
        } else if (files_[*next].kind == FileKind::kDirectory) {
            directory = *next;
        } else {
            return false;
        }
    }
    auto place = child(directory, path.back());
    if (!place) {
        if (path.back() == kIdMaster || path.back() == kIdApplication)
            return false;
        CardFile made;
        made.id = path.back();
        place = add(directory, std::move(made));
    }
    CardFile& file = files_[*place];
    if (file.kind == FileKind::kDirectory)
        return false;
    file.content = bytes.copy();
    while (file.record_size != 0 && file.content.size() % file.record_size != 0)
        file.content.push_back(0xFF);
    return true;
}

void CardFiles::write_changes(wire::Writer& writer) const {
    for (size_t place = 1; place < files_.size(); ++place) {
        if (!files_[place].changed)
            continue;
        const FilePath path = path_of(place);
        wire::Writer change;
        change.u8(static_cast<uint8_t>(path.size()));
        for (const uint16_t id : path)
            change.u16(id);
        change.bytes(files_[place].content);
        writer.tlv(kTlvChange, change.data());
    }
}

bool CardFiles::apply_change(wire::View change) {
    wire::Reader reader(change);
    FilePath path(reader.u8());
    for (uint16_t& id : path)
        id = reader.u16();
    const wire::View content = reader.rest();
    const auto place = reader.ok() ? find(path) : std::nullopt;
    if (!place || files_[*place].content.size() != content.size)
        return false;
    update(*place, 0, content);
    return true;
}

std::optional<FilePath> parse_path(const std::string& text) {
    FilePath path;
    for (size_t start = 0; start <= text.size(); start += 5) {
        const auto id = parse_hex(text.substr(start, 4));
        if (!id || id->size() != 2 || (start + 4 < text.size() && text[start + 4] != '/'))
            return std::nullopt;
        path.push_back(static_cast<uint16_t>(id->at(0) << 8 | id->at(1)));
    }
    if (path.size() < 2 || path.size() > kPathMax || path.front() != kIdMaster)
        return std::nullopt;
    return path;
}

}  // namespace handset
