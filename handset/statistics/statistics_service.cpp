// The modem's statistics service: its measurements by data id and subscription. Everything that a profile
// sets is in the form in which it leaves, so an answer may also be one that no good modem gives.
#include <algorithm>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "core.h"
#include "profile_section.h"
#include "qmi_service.h"
#include "records.h"
#include "statistics_indication.h"
#include "statistics_records.h"

namespace handset {
namespace {

// Request: 0x01 u32, 0x10 u8, 0x11 u8. The answer is the result.
constexpr uint16_t kFeature = 3;
// Request: 0x01 u16 subscription, 0x02 u16 request number, 0x03 list. Answer: the result, 0x10 list.
// A list is u8 count, then u16 subscription, u16 type, u32 id, u16 length and the value each.
constexpr uint16_t kValues = 0x207;

constexpr uint16_t kSubscriptions = 2;
constexpr size_t kRequestedMax = 10;

// A profile may go beyond what a reader expects, one answer not beyond a packet.
constexpr size_t kValueMax = 2000;
constexpr uint8_t kEntriesMax = 20;
constexpr size_t kValuesMax = 1000;
constexpr size_t kIndicationsMax = 100;
// With the result and the list's head it still fits into a packet.
constexpr size_t kListMax = 65000;
constexpr size_t kEntryHead = 10;

/// The answer to one data id: entries of the answer's list, all alike.
struct StatisticsValue {
    uint32_t id = 0;
    uint16_t sub = 0;
    uint16_t length = 0;  // as announced
    wire::Bytes bytes;
    uint8_t entries = 1;
};

struct StatisticsProfile {
    /// A plausible value for every data id that has a record, on both subscriptions.
    StatisticsProfile();

    std::map<std::pair<uint32_t, uint16_t>, StatisticsValue> values;  // by data id and subscription
    std::vector<StatisticsIndication> indications;
};

struct Entry {
    uint16_t sub = 0;
    uint16_t type = 0;
    uint32_t id = 0;
    wire::View value;
};

// Nothing when the list is not what its counts promise.
std::optional<std::vector<Entry>> decode_list(std::optional<wire::View> list) {
    if (!list)
        return std::nullopt;
    wire::Reader reader(*list);
    std::vector<Entry> entries(reader.u8());
    for (Entry& entry : entries) {
        entry.sub = reader.u16();
        entry.type = reader.u16();
        entry.id = reader.u32();
        entry.value = reader.bytes(reader.u16());
    }
    if (!reader.ok() || reader.left() != 0)
        return std::nullopt;
    return entries;
}

struct ValueRequest {
    uint16_t sub = 0;
    uint16_t number = 0;
    std::vector<Entry> entries;
};

std::optional<ValueRequest> decode_value_request(wire::View body) {
    const auto sub = wire::find_tlv(body, 0x01);
    const auto number = wire::find_tlv(body, 0x02);
    auto entries = decode_list(wire::find_tlv(body, 0x03));
    if (!sub || sub->size != 2 || !number || number->size != 2 || !entries)
        return std::nullopt;
    return ValueRequest{wire::Reader(*sub).u16(), wire::Reader(*number).u16(), std::move(*entries)};
}

class AnswerList {
public:
    void add(const StatisticsValue& value) {
        const size_t size = kEntryHead + value.bytes.size();
        for (unsigned i = 0; i < value.entries && count_ < UINT8_MAX && entries_.size() + size <= kListMax;
             ++i) {
            entries_.u16(value.sub).u16(0).u32(value.id).u16(value.length).bytes(value.bytes);
            ++count_;
        }
    }
    wire::Bytes encode() const { return wire::Writer().u8(count_).bytes(entries_.data()).take(); }

private:
    wire::Writer entries_;
    uint8_t count_ = 0;
};

std::string known_ids() {
    std::string known;
    for (const messages::Record& record : messages::records())
        known += (known.empty() ? "" : ", ") + std::to_string(record.id);
    return known;
}

bool section_has_fields(const Section& section, uint32_t id) {
    const messages::Record* known = messages::record(id);
    return known != nullptr && std::any_of(known->layout->begin(), known->layout->end(),
                                           [&](const auto& field) { return section.has(field.name); });
}

// Where a profile's value for one data id and subscription stands for another, more or less.
void read_value(Section& section, uint32_t id, uint16_t sub, StatisticsValue& value) {
    value = {id, sub, 0, read_record(section, id, sub), 1};
    if (value.bytes.empty() && !section.has("raw")) {
        section.fail(
            "id", "no record is known by this data id, only by " + known_ids() + "; \"raw\" gives the bytes");
    }
    if (!value.bytes.empty() && section.has("raw") && section_has_fields(section, id))
        section.fail("raw", "the record's fields are given already");
    section.bytes("raw", value.bytes, kValueMax);
    uint16_t length = static_cast<uint16_t>(value.bytes.size());
    section.integer<uint16_t>("length", length, 0, kValueMax);
    value.bytes.resize(length);
    value.length = length;

    section.integer("answer_length", value.length);
    section.integer("answer_id", value.id);
    section.integer("answer_sub", value.sub);
    section.integer<uint8_t>("entries", value.entries, 0, kEntriesMax);
}

StatisticsProfile::StatisticsProfile() {
    for (const messages::Record& record : messages::records()) {
        const uint32_t id = record.id;
        for (uint16_t sub = 0; sub < kSubscriptions; ++sub) {
            StatisticsValue& value = values[{id, sub}];
            value = {id, sub, 0, default_record(id, sub), 1};
            value.length = static_cast<uint16_t>(value.bytes.size());
        }
    }
}

void read_profile(Section& section, StatisticsProfile& statistics) {
    section.list("values", kValuesMax, [&statistics](Section& entry) {
        uint32_t id = 0;
        std::optional<uint16_t> only;
        entry.require("id");
        entry.integer("id", id);
        entry.integer<uint16_t>("sub", only, 0, kSubscriptions - 1);
        for (uint16_t sub = only.value_or(0); sub <= only.value_or(kSubscriptions - 1); ++sub)
            read_value(entry, id, sub, statistics.values[{id, sub}]);
    });
    section.list("indications", kIndicationsMax, [&statistics](Section& entry) {
        read_profile(entry, statistics.indications.emplace_back());
    });
}

class StatisticsService : public QmiService {
public:
    StatisticsService(Core& core, const StatisticsProfile& profile);

    QmiAnswer handle(const QmiRequest& request) override;
    void connection_opened(ConnectionId connection) override;

private:
    wire::Bytes set_feature(const QmiRequest& request);
    wire::Bytes values(const QmiRequest& request);
    void say(StatisticsOccasion occasion);

    /// values.ID.SUB.FIELD of the profile's records.
    std::function<void()> read_change(Section& section);

    StatisticsProfile profile_;
};

StatisticsService::StatisticsService(Core& core, const StatisticsProfile& profile)
    : QmiService(core, "statistics"), profile_(profile) {
    core.control().add_setting("statistics", [this](Section& section) { return read_change(section); });
    core.state().set("statistics", "values", profile_.values.size());
    core.state().set("statistics", "indications", profile_.indications.size());
}

std::function<void()> StatisticsService::read_change(Section& section) {
    auto values = profile_.values;
    section.object("values", [&values](Section& ids) {
        ids.each([&values](const std::string& id_text, Section& subs) {
            const uint32_t id = number_in(id_text, "a data id", 0, UINT32_MAX);
            subs.each([&](const std::string& sub_text, Section& fields) {
                const auto sub =
                    static_cast<uint16_t>(number_in(sub_text, "a subscription", 0, kSubscriptions - 1));
                const auto value = values.find({id, sub});
                if (value == values.end() || messages::record(id) == nullptr)
                    fields.fail("", "no record is known by this data id, only by " + known_ids());
                change_record(fields, id, sub, value->second.bytes);
                value->second.length = static_cast<uint16_t>(value->second.bytes.size());
            });
        });
    });
    return [this, values] { profile_.values = values; };
}

QmiAnswer StatisticsService::handle(const QmiRequest& request) {
    if (request.message == kFeature)
        return {set_feature(request)};
    if (request.message == kValues)
        return {values(request)};
    return {refusal(kQmiErrorInvalidMessage)};
}

wire::Bytes StatisticsService::set_feature(const QmiRequest& request) {
    if (request.tlv(0x01).size != 4)
        return refusal(kQmiErrorMalformed);
    say(StatisticsOccasion::kFeature);
    return qmi_result().take();
}

wire::Bytes StatisticsService::values(const QmiRequest& request) {
    const auto wanted = decode_value_request(request.body);
    if (!wanted)
        return refusal(kQmiErrorMalformed);
    if (wanted->sub >= kSubscriptions || wanted->entries.size() > kRequestedMax)
        return refusal(kQmiErrorInvalidArgument);
    say(StatisticsOccasion::kValues);
    AnswerList list;
    const auto& known = profile_.values;
    for (const Entry& entry : wanted->entries) {
        const auto value = known.find({entry.id, wanted->sub});
        if (value != known.end())
            list.add(value->second);
    }
    return qmi_result().tlv(0x10, list.encode()).take();
}

void StatisticsService::say(StatisticsOccasion occasion) {
    for (const StatisticsIndication& indication : profile_.indications) {
        if (indication.on == occasion)
            indicate(indication.message, indication.body);
    }
}

void StatisticsService::connection_opened(ConnectionId connection) {
    for (const StatisticsIndication& indication : profile_.indications) {
        if (indication.on == StatisticsOccasion::kConnection)
            indicate(indication.message, indication.body, connection);
    }
}

}  // namespace

LoneService statistics_service() {
    return lone_service<StatisticsService, StatisticsProfile>("statistics");
}

}  // namespace handset
