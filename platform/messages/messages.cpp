#include "messages.h"

namespace messages {
namespace {

constexpr uint16_t kSar = 17;
constexpr uint16_t kStatistics = 65509;

constexpr Service kServices[] = {
    {kUim, "uim", true},
    {kSar, "sar", false},
    {kExtension, "extension", false},
    {kStatistics, "statistics", false},
};

constexpr Form kNumber = Form::kNumber;
constexpr Field kSlot{0x01, kNumber, "slot"};
constexpr Field kResult{0x02, Form::kResult, "result"};
constexpr Field kFailure{0x02, Form::kFailure, "result"};
constexpr Field kStatusWords{0x11, Form::kBytes, "sw"};
constexpr Field kSession{0x01, Form::kBytes, "session"};
constexpr Field kFile{0x02, Form::kFile, "file"};
constexpr Field kCardResult{0x10, Form::kBytes, "sw"};
constexpr Field kContent{0x11, Form::kLongBytes, "content"};
constexpr Field kId{0x01, kNumber, "id"};
constexpr Field kLength{0x02, kNumber, "data_len"};
constexpr Field kPayload{0x10, Form::kPayload, "data"};

// Service, number, name; then the TLVs of the request, the response and the indication, in the order in which
// they travel: type, form, name.
constexpr Message kMessages[] = {
    {kUim, 0, "reset", {}, {kFailure}},
    {kUim, 30, "get_supported_messages", {}, {kFailure, {0x10, Form::kLongBytes, "messages"}}},
    {kUim,
     32,
     "read_transparent",
     {kSession, kFile, {0x03, Form::kBytes, "range"}},
     {kFailure, kCardResult, kContent}},
    {kUim,
     33,
     "read_record",
     {kSession, kFile, {0x03, Form::kBytes, "record"}},
     {kFailure, kCardResult, kContent}},
    {kUim,
     36,
     "get_file_attributes",
     {kSession, kFile},
     {kFailure, kCardResult, {0x11, Form::kBytes, "attributes"}}},
    {kUim, 42, "refresh_register", {kSession}, {kFailure}},
    {kUim, 44, "refresh_complete", {kSession}, {kFailure}},
    {kUim, 46, "register_events", {{0x01, kNumber, "events"}}, {kFailure, {0x10, kNumber, "events"}}},
    {kUim,
     47,
     "get_card_status",
     {{0x10, kNumber, "extended"}},
     {kFailure, {0x10, Form::kCards, "cards"}, {0x15, Form::kCards, "extended_cards"}}},
    {kUim, 48, "power_down", {kSlot}, {kFailure}},
    {kUim, 49, "power_up", {kSlot, {0x10, kNumber, "ignore_hotswap"}, {0x11, kNumber, "option"}}, {kFailure}},
    {kUim, 50, "card_status", {}, {}, {{0x10, Form::kCards, "cards"}}},
    {kUim, 51, "refresh", {}, {}, {{0x10, Form::kBytes, "event"}}},
    {kUim,
     59,
     "send_apdu",
     {kSlot,
      {0x02, Form::kLongBytes, "apdu"},
      {0x10, kNumber, "channel"},
      {0x11, kNumber, "procedure_bytes"}},
     {kFailure, {0x10, Form::kLongBytes, "apdu"}}},
    {kUim,
     63,
     "logical_channel",
     {kSlot, {0x11, kNumber, "channel"}, {0x13, kNumber, "terminate"}},
     {kFailure, kStatusWords}},
    {kUim,
     66,
     "open_logical_channel",
     {kSlot, {0x10, Form::kCountedBytes, "aid"}, {0x11, kNumber, "fci"}},
     {kFailure, {0x10, kNumber, "channel"}, kStatusWords, {0x12, Form::kCountedBytes, "select"}}},
    {kUim, 68, "refresh_register_all", {kSession}, {kFailure}},
    {kUim, 70, "switch_slot", {kSlot, {0x02, kNumber, "physical_slot"}}, {kFailure}},
    {kUim, 71, "get_slot_status", {}, {kFailure}},
    {kUim, 72, "slot_status"},
    {kUim, 97, "recovery", {}, {}, {{0x01, kNumber, "first"}, {0x02, kNumber, "second"}}},
    {kUim, 101, "get_eid", {kSlot}, {kFailure, {0x10, Form::kCountedBytes, "eid"}}},

    {kSar, 2, "get_dsi", {}, {kResult, {0x10, kNumber, "dsi"}}},

    {kExtension, 2, "send", {kId, kLength, kPayload}, {kId, kLength, kPayload}},
    {kExtension, 3, "notify", {kId, kLength, kPayload}, {kId, kLength, kPayload}, {kId, kLength, kPayload}},

    {kStatistics,
     3,
     "feature",
     {{0x01, kNumber, "value"}, {0x10, kNumber, "first"}, {0x11, kNumber, "second"}},
     {kResult}},
    {kStatistics,
     0x0207,
     "values",
     {{0x01, kNumber, "sub"}, {0x02, kNumber, "number"}, {0x03, Form::kValues, "entries"}},
     {kResult, {0x10, Form::kValues, "entries"}}},
    {kStatistics,
     0x0004,
     "status",
     {},
     {},
     {{0x01, kNumber, "value"}, {0x02, kNumber, "first"}, {0x03, kNumber, "second"}}},
    {kStatistics,
     0x0203,
     "report",
     {},
     {},
     {{0x01, kNumber, "value"},
      {0x02, Form::kReports, "first"},
      {0x03, Form::kReports, "second"},
      {0x10, kNumber, "last"}}},
    {kStatistics,
     0x0204,
     "bytes",
     {},
     {},
     {{0x01, kNumber, "value"},
      {0x02, Form::kCountedBytes, "bytes"},
      {0x03, kNumber, "first"},
      {0x04, kNumber, "second"}}},
    {kStatistics, 0x0601, "state", {}, {}, {{0x01, kNumber, "state"}}},
};

constexpr CommonForm kTlv = CommonForm::kTlv;
constexpr CommonForm kDirect = CommonForm::kDirect;

constexpr Command kCommands[] = {
    {kFileAccess, kDirect, 1, "nv_read"},
    {kFileAccess, kDirect, 2, "nv_write"},
    {kFileAccess, kDirect, 3, "nv_delete"},
    {kFileAccess, kDirect, 4, "efs_read"},
    {kFileAccess, kDirect, 5, "efs_write"},
    {kFileAccess, kDirect, 6, "efs_delete"},
    {kCommon, CommonForm::kGpio, 0, "gpio"},
    {kCommon, CommonForm::kTxAntenna, 1, "tx_antenna"},
    {kCommon, kDirect, 20, "debug_info"},
    {kCommon, kDirect, 27, "not_supported_logs"},
    {kCommon, kTlv, 31, "reset"},
    {kCommon, kTlv, 35, "nv_sync"},
    {kCommon, kTlv, 39, "card_status_query"},
    {kCommon, kTlv, 55, "card_status_get"},
    {kCommon, kTlv, 56, "card_type_query"},
    {kCommon, kTlv, 57, "card_status_set"},
    {kCommon, kTlv, 80, "hotswap"},
    {kCommon, kTlv, 84, "slot_wiring"},
};

using Kind = DiagField;
constexpr int32_t kRefused = -1;
constexpr int32_t kDciDone = 1001;
constexpr int32_t kDciRefused = 1003;
constexpr DiagField kMask{Kind::kU16, "mask"};
constexpr DiagField kMode{Kind::kI32, "mode"};
constexpr DiagField kProcessor{Kind::kI32, "processor"};
constexpr DiagField kClient{Kind::kI32, "client"};
constexpr DiagField kSignal{Kind::kI32, "signal"};
constexpr DiagField kPeripherals{Kind::kU16, "peripherals"};
constexpr DiagField kCommand{Kind::kCommand, "command"};
constexpr DiagField kResponse{Kind::kResponse, "response"};
constexpr DiagField kData{Kind::kBytes, "data"};

// By number, from 1.
constexpr DiagOp kOps[] = {
    {wire::kDiagOpen, "open", 1, 0},
    {wire::kDiagRemoteMask, "remote_mask", 0, kRefused, {}, {kMask}},
    {wire::kDiagSwitchLogging, "switch_logging", 0, kRefused, {kMode}},
    {wire::kDiagSend, "send", 0, kRefused, {kProcessor, kCommand}},
    {wire::kDiagDciRegister, "dci_register", kDciDone, kDciRefused, {kPeripherals, kProcessor}, {kClient}},
    {wire::kDiagDciSignal, "dci_signal", kDciDone, kDciRefused, {kClient, kSignal}},
    {wire::kDiagDciSupport, "dci_support", kDciDone, kDciRefused, {kProcessor}, {kPeripherals}},
    {wire::kDiagDciStreams, "dci_streams", kDciDone, kDciRefused, {kClient}},
    {wire::kDiagDciSend, "dci_send", kDciDone, kDciRefused, {kClient, kCommand}},
    {wire::kDiagDciRelease, "dci_release", kDciDone, kDciRefused, {kClient}},
};

constexpr DiagEvent kEvents[] = {
    {wire::kDiagEventResponse, "response", {{Kind::kU8, "processor"}, kResponse}},
    {wire::kDiagEventDciResponse, "dci_response", {kResponse}},
    {wire::kDiagEventLog, "log", {kData}},
    {wire::kDiagEventEvent, "event", {kData}},
};

constexpr struct {
    uint8_t code;
    const char* name;
} kDiagCodes[] = {
    {0x00, "version"},        {0x10, "log"},
    {0x13, "bad_command"},    {0x14, "bad_parameters"},
    {0x15, "bad_length"},     {0x1D, "time"},
    {0x60, "event_report"},   {0x73, "log_config"},
    {0x7B, "loop_back"},      {0x7C, "extended_build_id"},
    {0x7D, "message_config"},
};

template <typename T, size_t N>
Rows<T> rows(const T (&table)[N]) {
    return {table, table + N};
}

template <typename T, size_t N, typename Wanted>
const T* find(const T (&table)[N], Wanted wanted) {
    for (const T& row : table) {
        if (wanted(row))
            return &row;
    }
    return nullptr;
}

}  // namespace

const Field* Message::fields(uint8_t flags) const {
    return flags == wire::kQmiRequest      ? request
           : flags == wire::kQmiResponse   ? response
           : flags == wire::kQmiIndication ? indication
                                           : nullptr;
}

Rows<Service> services() {
    return rows(kServices);
}

Rows<Message> all_messages() {
    return rows(kMessages);
}

const Service* service(uint16_t id) {
    return find(kServices, [id](const Service& row) { return row.id == id; });
}

const Service* service(std::string_view name) {
    return find(kServices, [name](const Service& row) { return row.name == name; });
}

const Message* message(uint16_t service, uint16_t id) {
    return find(kMessages, [=](const Message& row) { return row.service == service && row.id == id; });
}

std::string service_name(uint16_t id) {
    const Service* known = service(id);
    return known != nullptr ? known->name : std::to_string(id);
}

const char* form_name(CommonForm form) {
    constexpr const char* kNames[] = {"gpio", "tx_antenna", "tlv", "direct"};
    return kNames[static_cast<size_t>(form)];
}

Rows<Command> commands() {
    return rows(kCommands);
}

const Command* file_command(uint32_t number) {
    return find(kCommands,
                [=](const Command& row) { return row.request == kFileAccess && row.code == number; });
}

const Command* common_command(CommonForm form, uint32_t code) {
    return find(kCommands, [=](const Command& row) {
        return row.request == kCommon && row.form == form && row.code == code;
    });
}

const Command* command(std::string_view name) {
    return find(kCommands, [name](const Command& row) { return row.name == name; });
}

bool DiagOp::is_whole(wire::View packet) const {
    size_t needed = 1;
    for (const DiagField& field : request)
        needed += field.kind == DiagField::kU8    ? 1
                  : field.kind == DiagField::kU16 ? 2
                  : field.kind == DiagField::kI32 ? 4
                                                  : 0;
    return packet.size >= needed;
}

Rows<DiagOp> diag_ops() {
    return rows(kOps);
}

Rows<DiagEvent> diag_events() {
    return rows(kEvents);
}

const DiagOp* diag_op(uint8_t number) {
    return find(kOps, [number](const DiagOp& row) { return row.number == number; });
}

const DiagEvent* diag_event(uint8_t number) {
    return find(kEvents, [number](const DiagEvent& row) { return row.number == number; });
}

const char* diag_code_name(wire::View message) {
    for (const auto& known : kDiagCodes) {
        if (message.size > 0 && message.data[0] == known.code)
            return known.name;
    }
    return nullptr;
}

}  // namespace messages
