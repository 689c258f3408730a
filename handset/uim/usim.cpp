#include "usim.h"

#include <algorithm>

namespace handset {
namespace {

constexpr uint8_t kUsim[] = {0xA0, 0x00, 0x00, 0x00, 0x87, 0x10, 0x02, 0xFF,
                             0xFF, 0xFF, 0xFF, 0x89, 0x00, 0x00, 0x01, 0x00};

constexpr uint16_t kIdAccessClass = 0x6F78;
constexpr uint16_t kIdAdministrative = 0x6FAD;
constexpr uint16_t kIdImsi = 0x6F07;
constexpr uint16_t kIdMsisdn = 0x6F40;
constexpr uint16_t kIdServiceTable = 0x6F38;
constexpr uint16_t kIdServiceProvider = 0x6F46;

constexpr size_t kIccidSize = 10;
constexpr uint8_t kDirectoryRecord = 32;
constexpr uint8_t kRulesRecord = 24;
constexpr uint8_t kMsisdnRecord = 28;
constexpr size_t kProviderSize = 17;
constexpr size_t kServiceTableSize = 17;
constexpr unsigned kServiceProviderName = 19;
constexpr unsigned kServiceMsisdn = 21;

CardFile transparent(uint16_t id, uint8_t short_id, uint8_t rule, wire::Bytes content) {
    CardFile file;
    file.id = id;
    file.short_id = short_id;
    file.rule = rule;
    file.content = std::move(content);
    return file;
}

CardFile linear_fixed(uint16_t id, uint8_t short_id, uint8_t rule, uint8_t record_size, size_t records) {
    CardFile file = transparent(id, short_id, rule, wire::Bytes(record_size * records, 0xFF));
    file.kind = FileKind::kLinearFixed;
    file.record_size = record_size;
    return file;
}

// Two digits a byte, the first in the low half; an odd number of digits ends with F.
wire::Bytes swapped_digits(const std::string& digits) {
    wire::Bytes bytes;
    for (size_t i = 0; i < digits.size(); i += 2) {
        const int high = i + 1 < digits.size() ? digits[i + 1] - '0' : 0xF;
        bytes.push_back(static_cast<uint8_t>(high << 4 | (digits[i] - '0')));
    }
    return bytes;
}

std::string swapped_text(wire::View bytes) {
    std::string text;
    for (size_t i = 0; i < bytes.size; ++i) {
        for (const int digit : {bytes.data[i] & 0xF, bytes.data[i] >> 4}) {
            if (digit < 10)
                text += static_cast<char>('0' + digit);
        }
    }
    return text;
}

void append_condition(wire::Writer& writer, Access access) {
    const uint8_t reference = access == Access::kPin ? 0x01 : 0x0A;
    if (access == Access::kAlways)
        writer.u8(0x90).u8(0);
    else
        writer.u8(0xA4).u8(6).u8(0x83).u8(1).u8(reference).u8(0x95).u8(1).u8(0x08);
}

// Each record says who may read, then who may do the rest.
CardFile rules_file(uint16_t id, uint8_t short_id) {
    CardFile file = linear_fixed(id, short_id, kRuleFixed, kRulesRecord, kAccessRules);
    for (uint8_t record = 1; record <= kAccessRules; ++record) {
        wire::Writer writer;
        writer.u8(0x80).u8(1).u8(0x01);
        append_condition(writer, access_rule(record).read);
        writer.u8(0x80).u8(1).u8(0x1A);
        append_condition(writer, access_rule(record).update);
        std::copy(writer.data().begin(), writer.data().end(),
                  file.content.begin() + (record - 1) * kRulesRecord);
    }
    return file;
}

CardFile directory_file() {
    CardFile file = linear_fixed(kIdDirectoryFile, 0x1E, kRuleFixed, kDirectoryRecord, 1);
    const std::string label = "USIM";
    wire::Writer entry;
    entry.u8(0x61).u8(static_cast<uint8_t>(2 + sizeof kUsim + 2 + label.size()));
    entry.u8(0x4F).u8(sizeof kUsim).bytes(usim_aid());
    entry.u8(0x50).u8(static_cast<uint8_t>(label.size())).bytes({label.data(), label.size()});
    std::copy(entry.data().begin(), entry.data().end(), file.content.begin());
    return file;
}

wire::Bytes imsi_bytes(const std::string& imsi) {
    wire::Bytes bytes = swapped_digits("9" + imsi);  // the first half byte: an odd number of digits
    bytes.insert(bytes.begin(), static_cast<uint8_t>(bytes.size()));
    return bytes;
}

wire::Bytes provider_bytes(const std::string& provider) {
    wire::Bytes bytes(kProviderSize, 0xFF);
    bytes[0] = 0x01;  // to be shown beside the registered network
    std::copy_n(provider.begin(), std::min(provider.size(), bytes.size() - 1), bytes.begin() + 1);
    return bytes;
}

wire::Bytes service_table() {
    wire::Bytes table(kServiceTableSize);
    for (const unsigned service : {kServiceProviderName, kServiceMsisdn})
        table[(service - 1) / 8] |= static_cast<uint8_t>(1U << (service - 1) % 8);
    return table;
}

}  // namespace

wire::View usim_aid() {
    return {kUsim, sizeof kUsim};
}

CardFiles usim_files(const std::string& iccid, const std::string& imsi, const std::string& provider) {
    CardFiles files;
    constexpr size_t kMaster = CardFiles::kMaster;
    files.add(kMaster, directory_file());
    files.add(kMaster, transparent(kIdIccid, 0x02, kRuleFixed, iccid_bytes(iccid)));
    files.add(kMaster, transparent(kIdPreferredLanguages, 0x05, kRuleOpen, {'e', 'n'}));
    files.add(kMaster, rules_file(kIdMasterRules, 0x06));

    CardFile usim;
    usim.id = kIdApplication;
    usim.kind = FileKind::kDirectory;
    usim.rule = kRuleFixed;
    usim.name = usim_aid().copy();
    const size_t application = files.add(kMaster, std::move(usim));
    files.add(application, transparent(kIdImsi, 0x07, kRuleSubscription, imsi_bytes(imsi)));
    files.add(application, transparent(kIdAdministrative, 0x03, kRuleFixed, {0, 0, 0, 2}));
    files.add(application, transparent(kIdServiceProvider, 0, kRuleFixed, provider_bytes(provider)));
    files.add(application, transparent(kIdServiceTable, 0x04, kRuleSubscription, service_table()));
    const auto access_class = static_cast<uint8_t>(imsi.back() - '0');
    files.add(application, transparent(kIdAccessClass, 0x06, kRuleSubscription,
                                       {static_cast<uint8_t>(1U << access_class >> 8),
                                        static_cast<uint8_t>(1U << access_class)}));
    files.add(application, linear_fixed(kIdMsisdn, 0, kRuleOwner, kMsisdnRecord, 2));
    files.add(application, rules_file(kIdApplicationRules, 0x17));
    return files;
}

wire::Bytes iccid_bytes(const std::string& iccid) {
    wire::Bytes bytes = swapped_digits(iccid);
    bytes.resize(kIccidSize, 0xFF);
    return bytes;
}

std::string iccid_text(wire::View bytes) {
    return swapped_text(bytes);
}

std::string imsi_of(const CardFiles& files) {
    const auto content = files.content({kIdMaster, kIdApplication, kIdImsi});
    if (!content || content->size < 2)
        return "";
    const std::string digits = swapped_text({content->data + 1, content->size - 1});
    return digits.empty() ? "" : digits.substr(1);
}

}  // namespace handset
