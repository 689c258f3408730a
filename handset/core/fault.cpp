#include "fault.h"

#include <algorithm>

#include "messages.h"
#include "qmi_service.h"

namespace handset {
namespace {

constexpr uint32_t kLongestTimeMs = 600'000;
constexpr size_t kLongestAnswer = 65535;

constexpr Section::Choices<FaultAction> kActions = {
    {"no_answer", FaultAction::kNoAnswer},
    {"late", FaultAction::kLate},
    {"result", FaultAction::kResult},
    {"modem_result", FaultAction::kModemResult},
    {"payload", FaultAction::kPayload},
    {"tlvs", FaultAction::kTlvs},
    {"cut", FaultAction::kCut},
    {"close", FaultAction::kClose},
    {"withdraw", FaultAction::kWithdraw},
    {"restart", FaultAction::kRestart},
};

bool matches(const std::optional<uint32_t>& wanted, std::optional<uint32_t> found) {
    return !wanted || wanted == found;
}

bool matches(const Fault& fault, const ExchangeKey& key) {
    return fault.road == key.road && matches(fault.service, key.service) &&
           matches(fault.message, key.message) && matches(fault.request, key.request) &&
           matches(fault.code, key.code);
}

// The command inside a request of the extension service. A name tells which request it is inside of.
void read_code(Section& section, Fault& fault) {
    Section::Named names;
    for (const messages::Command& row : messages::commands()) {
        if (fault.request.value_or(row.request) == row.request)
            names.emplace_back(row.name, row.code);
    }
    std::string name;
    section.named_integer("code", fault.code, 0, UINT32_MAX, names);
    if (section.is_text("code"))
        section.text("code", name, 100);
    if (const messages::Command* command = messages::command(name))
        fault.request = command->request;
}

void read_match(Section& section, Fault& fault) {
    section.choice("road", fault.road, {{"qmi", Road::kQmi}, {"diag", Road::kDiag}});
    Section::Named names;
    if (fault.road == Road::kDiag) {
        for (const messages::DiagOp& op : messages::diag_ops())
            names.emplace_back(op.name, op.number);
        return section.named_integer("message", fault.message, 1, static_cast<uint32_t>(names.size()), names);
    }
    for (const messages::Service& service : messages::services())
        names.emplace_back(service.name, service.id);
    section.named_integer("service", fault.service, 1, UINT16_MAX, names);
    read_message(section, "message", fault.service, fault.message);
    if (fault.service == messages::kExtension) {
        section.named_integer("request", fault.request, 0, UINT32_MAX,
                              {{"file_access", messages::kFileAccess}, {"common", messages::kCommon}});
        read_code(section, fault);
    }
}

void read_action(Section& section, Fault& fault) {
    section.choice("action", fault.action, kActions);
    uint32_t time = 0;
    switch (fault.action) {
        case FaultAction::kLate:
        case FaultAction::kWithdraw:
            section.require("ms");
            section.integer<uint32_t>("ms", time, 0, kLongestTimeMs);
            fault.time = std::chrono::milliseconds(time);
            break;
        case FaultAction::kResult:
        case FaultAction::kModemResult:
            section.require("result");
            section.integer("result", fault.result);
            break;
        case FaultAction::kPayload:
        case FaultAction::kTlvs:
            section.require("bytes");
            section.bytes("bytes", fault.bytes, kLongestAnswer);
            break;
        case FaultAction::kCut:
            section.require("keep");
            section.integer("keep", fault.keep);
            break;
        case FaultAction::kNoAnswer:
        case FaultAction::kClose:
        case FaultAction::kRestart:
            break;
    }
    // There is nothing to be late or cut unless the modem has answered.
    fault.acts = fault.action == FaultAction::kLate || fault.action == FaultAction::kCut;
    if (!fault.acts)
        section.boolean("acts", fault.acts);
}

void check_action_fits_road(Section& section, const Fault& fault) {
    const bool extension = fault.road == Road::kQmi && fault.service == messages::kExtension;
    const bool diag = fault.road == Road::kDiag;
    if (fault.action == FaultAction::kPayload && !extension && !diag)
        section.fail("action", "\"payload\" needs \"service\": \"extension\" or \"road\": \"diag\"");
    if (fault.action == FaultAction::kModemResult && !extension)
        section.fail("action", "\"modem_result\" needs \"service\": \"extension\"");
    if (fault.action == FaultAction::kTlvs && diag)
        section.fail("action", "\"tlvs\" needs \"road\": \"qmi\"");
}

// What a fault is for, in the words of the wire log: "uim get_eid", "extension efs_read", "diag open".
std::string target_of(const Fault& fault) {
    const bool diag = fault.road == Road::kDiag;
    std::string target = diag            ? "diag"
                         : fault.service ? messages::service_name(static_cast<uint16_t>(*fault.service))
                                         : "qmi";
    if (fault.message) {
        const auto number = static_cast<uint16_t>(*fault.message);
        const auto service = static_cast<uint16_t>(fault.service.value_or(0));
        const messages::DiagOp* op = diag ? messages::diag_op(static_cast<uint8_t>(number)) : nullptr;
        const messages::Message* row = diag ? nullptr : messages::message(service, number);
        target += " " + (op != nullptr    ? op->name
                         : row != nullptr ? row->name
                                          : "message " + std::to_string(number));
    }
    if (fault.code) {
        for (const messages::Command& row : messages::commands()) {
            if (fault.request.value_or(messages::kCommon) == row.request && row.code == *fault.code)
                return target + " " + row.name;
        }
    }
    if (fault.request)
        target += " request " + std::to_string(*fault.request);
    if (fault.code)
        target += " code " + std::to_string(*fault.code);
    return target;
}

}  // namespace

const char* Fault::name() const {
    for (const auto& entry : kActions) {
        if (entry.second == action)
            return entry.first;
    }
    return "";
}

void read_profile(Section& section, Fault& fault) {
    read_match(section, fault);
    section.integer("skip", fault.skip);
    section.integer("hits", fault.hits);
    section.require("action");
    read_action(section, fault);
    check_action_fits_road(section, fault);
}

Fault parse_fault(const std::string& text) {
    Fault fault;
    read_sections(text, "fault", [&fault](Section& section) { read_profile(section, fault); });
    return fault;
}

FaultBook::FaultBook(const std::vector<Fault>& faults) {
    for (const Fault& fault : faults)
        add(fault);
}

const Fault* FaultBook::next(const ExchangeKey& key) {
    for (Entry& entry : entries_) {
        const Fault& fault = entry.fault;
        const bool over = fault.hits != 0 && entry.used >= uint64_t{fault.skip} + fault.hits;
        if (over || !matches(fault, key))
            continue;
        if (entry.used >= fault.skip) {
            // An endless fault stays where it is.
            entry.used += fault.hits != 0 ? 1 : 0;
            entry.met = true;
            return &fault;
        }
        ++entry.used;
    }
    return nullptr;
}

std::vector<FaultBook::Line> FaultBook::lines() const {
    std::vector<Line> lines;
    for (const Entry& entry : entries_) {
        const Fault& fault = entry.fault;
        const uint32_t passed = std::min(entry.used, fault.skip);
        std::string left = "for ever";
        if (fault.hits != 0) {
            const uint64_t hits = uint64_t{fault.skip} + fault.hits - std::max(entry.used, fault.skip);
            left = std::to_string(hits) + (hits == 1 ? " hit left" : " hits left");
        }
        if (passed < fault.skip)
            left += " after " + std::to_string(fault.skip - passed) + " more";
        lines.push_back({target_of(fault) + ": " + fault.name(), left, entry.met});
    }
    return lines;
}

}  // namespace handset
