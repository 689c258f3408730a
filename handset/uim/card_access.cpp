// Reading and writing the card's files.
#include <algorithm>

#include "card.h"

namespace handset {
namespace {

constexpr uint8_t kShortIdMode =
    0x80;  // in P1 of a binary command: the file is named by its short identifier
constexpr uint8_t kShortIdBits = 0x1F;

enum RecordMode : uint8_t { kNextRecord = 2, kPreviousRecord = 3, kAbsoluteRecord = 4 };

constexpr size_t kExpectedAll = 256;

uint16_t right_length(size_t length) {
    return static_cast<uint16_t>(kSwWrongExpected | (length & 0xFF));
}

}  // namespace

// The administrator's keys are nobody's here.
bool Card::permitted(Access access) const {
    return access == Access::kAlways || (access == Access::kPin && pin_.satisfied());
}

uint16_t Card::check(size_t place, FileKind kind, bool update) const {
    const CardFile& file = files_.at(place);
    if (file.kind != kind)
        return kSwNotSelected;
    const AccessRule rule = access_rule(file.rule);
    return permitted(update ? rule.update : rule.read) ? kSwOk : kSwSecurity;
}

// The file that a binary command is about becomes the current one.
uint16_t Card::choose_binary(Channel& channel, const Apdu& apdu, size_t& offset) {
    offset = static_cast<size_t>(apdu.p1) << 8 | apdu.p2;
    if ((apdu.p1 & kShortIdMode) != 0) {
        if ((apdu.p1 & ~(kShortIdMode | kShortIdBits)) != 0)
            return kSwWrongParameters;
        const auto place = files_.by_short_id(channel.directory, apdu.p1 & kShortIdBits);
        if (!place)
            return kSwFileNotFound;
        enter(channel, *place);
        offset = apdu.p2;
    }
    return channel.file == kNoFile ? kSwNoCurrentFile : kSwOk;
}

CardAnswer Card::read_binary(uint8_t number, const Apdu& apdu) {
    Channel& channel = channels_[number];
    if (apdu.data.size != 0 || !apdu.expected)
        return kSwWrongLength;
    size_t offset = 0;
    uint16_t words = choose_binary(channel, apdu, offset);
    if (words == kSwOk)
        words = check(channel.file, FileKind::kTransparent, false);
    if (words != kSwOk)
        return words;
    const wire::Bytes& content = files_.at(channel.file).content;
    if (offset >= content.size())
        return kSwWrongOffset;
    const size_t left = content.size() - offset;
    const size_t count = *apdu.expected == kExpectedAll ? std::min(left, kExpectedAll) : *apdu.expected;
    if (count > left)
        return right_length(left);
    const auto start = content.begin() + static_cast<std::ptrdiff_t>(offset);
    return wire::Bytes(start, start + static_cast<std::ptrdiff_t>(count));
}

CardAnswer Card::update_binary(uint8_t number, const Apdu& apdu) {
    Channel& channel = channels_[number];
    if (apdu.data.size == 0)
        return kSwWrongLength;
    size_t offset = 0;
    uint16_t words = choose_binary(channel, apdu, offset);
    if (words == kSwOk)
        words = check(channel.file, FileKind::kTransparent, true);
    if (words != kSwOk)
        return words;
    const size_t size = files_.at(channel.file).content.size();
    if (offset >= size)
        return kSwWrongOffset;
    if (apdu.data.size > size - offset)
        return kSwWrongLength;
    files_.update(channel.file, offset, apdu.data);
    return kept(kSwOk);
}

uint16_t Card::choose_record(Channel& channel, const Apdu& apdu, size_t& record) {
    const auto short_id = static_cast<uint8_t>(apdu.p2 >> 3);
    if (short_id == kShortIdBits)
        return kSwWrongParameters;
    if (short_id != 0) {
        const auto place = files_.by_short_id(channel.directory, short_id);
        if (!place)
            return kSwFileNotFound;
        enter(channel, *place);
    }
    if (channel.file == kNoFile)
        return kSwNoCurrentFile;
    const CardFile& file = files_.at(channel.file);
    if (file.kind != FileKind::kLinearFixed)
        return kSwNotSelected;
    switch (apdu.p2 & 0x07) {
        case kNextRecord:
            record = channel.record + 1;
            break;
        case kPreviousRecord:
            record = channel.record == 0 ? file.records() : channel.record - 1;
            break;
        case kAbsoluteRecord:
            record = apdu.p1 == 0 ? channel.record : apdu.p1;
            break;
        default:
            return kSwWrongParameters;
    }
    return record == 0 || record > file.records() ? kSwRecordNotFound : kSwOk;
}

CardAnswer Card::read_record(uint8_t number, const Apdu& apdu) {
    Channel& channel = channels_[number];
    if (apdu.data.size != 0 || !apdu.expected)
        return kSwWrongLength;
    size_t record = 0;
    uint16_t words = choose_record(channel, apdu, record);
    if (words == kSwOk)
        words = check(channel.file, FileKind::kLinearFixed, false);
    if (words != kSwOk)
        return words;
    const CardFile& file = files_.at(channel.file);
    if (*apdu.expected != kExpectedAll && *apdu.expected != file.record_size)
        return right_length(file.record_size);
    if ((apdu.p2 & 0x07) != kAbsoluteRecord)
        channel.record = record;
    const auto start = file.content.begin() + static_cast<std::ptrdiff_t>((record - 1) * file.record_size);
    return wire::Bytes(start, start + file.record_size);
}

CardAnswer Card::update_record(uint8_t number, const Apdu& apdu) {
    Channel& channel = channels_[number];
    if (apdu.data.size == 0)
        return kSwWrongLength;
    size_t record = 0;
    uint16_t words = choose_record(channel, apdu, record);
    if (words == kSwOk)
        words = check(channel.file, FileKind::kLinearFixed, true);
    if (words != kSwOk)
        return words;
    const size_t size = files_.at(channel.file).record_size;
    if (apdu.data.size != size)
        return kSwWrongLength;
    if ((apdu.p2 & 0x07) != kAbsoluteRecord)
        channel.record = record;
    files_.update(channel.file, (record - 1) * size, apdu.data);
    return kept(kSwOk);
}

Card::Content Card::read_binary(const FilePath& path, size_t offset, size_t length) const {
    const auto place = files_.find(path);
    if (!place)
        return {kSwFileNotFound, {}};
    const uint16_t words = check(*place, FileKind::kTransparent, false);
    if (words != kSwOk)
        return {words, {}};
    const wire::Bytes& content = files_.at(*place).content;
    if (offset > content.size() || length > content.size() - offset)
        return {kSwWrongOffset, {}};
    return {kSwOk, {content.data() + offset, length == 0 ? content.size() - offset : length}};
}

Card::Content Card::read_record(const FilePath& path, size_t record) const {
    const auto place = files_.find(path);
    if (!place)
        return {kSwFileNotFound, {}};
    const uint16_t words = check(*place, FileKind::kLinearFixed, false);
    if (words != kSwOk)
        return {words, {}};
    const CardFile& file = files_.at(*place);
    if (record == 0 || record > file.records())
        return {kSwRecordNotFound, {}};
    return {kSwOk, {file.content.data() + (record - 1) * file.record_size, file.record_size}};
}

}  // namespace handset
