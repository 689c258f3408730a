#include "diag_packet.h"

#include "diag_peripheral.h"
#include "profile_section.h"
#include "wire_log.h"

namespace handset {
namespace {

using Field = DiagField;

constexpr int32_t kRefused = -1;
constexpr int32_t kDciDone = 1001;
constexpr int32_t kDciRefused = 1003;

constexpr Field kMask{Field::kU16, "mask"};
constexpr Field kMode{Field::kI32, "mode"};
constexpr Field kProcessor{Field::kI32, "processor"};
constexpr Field kClient{Field::kI32, "client"};
constexpr Field kSignal{Field::kI32, "signal"};
constexpr Field kPeripherals{Field::kU16, "peripherals"};
constexpr Field kCommand{Field::kCommand, "command"};
constexpr Field kResponse{Field::kResponse, "response"};
constexpr Field kData{Field::kBytes, "data"};

constexpr DiagOp kOps[kDiagOps] = {
    {wire::kDiagOpen, "open", 1, 0, {}, {}},
    {wire::kDiagRemoteMask, "remote_mask", 0, kRefused, {}, {kMask}},
    {wire::kDiagSwitchLogging, "switch_logging", 0, kRefused, {kMode}, {}},
    {wire::kDiagSend, "send", 0, kRefused, {kProcessor, kCommand}, {}},
    {wire::kDiagDciRegister, "dci_register", kDciDone, kDciRefused, {kPeripherals, kProcessor}, {kClient}},
    {wire::kDiagDciSignal, "dci_signal", kDciDone, kDciRefused, {kClient, kSignal}, {}},
    {wire::kDiagDciSupport, "dci_support", kDciDone, kDciRefused, {kProcessor}, {kPeripherals}},
    {wire::kDiagDciStreams, "dci_streams", kDciDone, kDciRefused, {kClient}, {}},
    {wire::kDiagDciSend, "dci_send", kDciDone, kDciRefused, {kClient, kCommand}, {}},
    {wire::kDiagDciRelease, "dci_release", kDciDone, kDciRefused, {kClient}, {}},
};

constexpr struct {
    uint8_t number;
    const char* name;
    DiagFields fields;
} kEvents[] = {
    {wire::kDiagEventResponse, "response", {Field{Field::kU8, "processor"}, kResponse}},
    {wire::kDiagEventDciResponse, "dci_response", {kResponse}},
    {wire::kDiagEventLog, "log", {kData}},
    {wire::kDiagEventEvent, "event", {kData}},
};

size_t width(Field::Kind kind) {
    return kind == Field::kU8 ? 1 : kind == Field::kU16 ? 2 : kind == Field::kI32 ? 4 : 0;
}

bool fit(const DiagFields& fields, size_t size) {
    size_t needed = 0;
    for (const Field& field : fields)
        needed += width(field.kind);
    return size >= needed;
}

void describe_field(const Field& field, wire::Reader& reader, WireLine& line) {
    switch (field.kind) {
        case Field::kNone:
            break;
        case Field::kU8:
            line.number(field.name, reader.u8());
            break;
        case Field::kU16:
            line.number(field.name, reader.u16());
            break;
        case Field::kI32:
            line.number(field.name, reader.i32());
            break;
        case Field::kCommand:
        case Field::kResponse:
        case Field::kBytes: {
            const wire::View bytes = reader.rest();
            const char* meaning = field.kind == Field::kBytes ? nullptr : diag_code_name(bytes);
            if (meaning != nullptr)
                line.text("code", meaning);
            line.bytes(field.name, bytes);
        }
    }
}

void describe_fields(const DiagFields& fields, wire::Reader& reader, WireLine& line) {
    if (!fit(fields, reader.left())) {
        line.word("malformed").bytes("data", reader.rest());
        return;
    }
    for (const Field& field : fields)
        describe_field(field, reader, line);
}

std::string label(const char* name, uint8_t number) {
    return std::string(name) + "(" + std::to_string(number) + ")";
}

}  // namespace

const DiagOp* diag_op(uint8_t number) {
    return number >= 1 && number <= kDiagOps ? &kOps[number - 1] : nullptr;
}

const DiagOp* diag_op(std::string_view name) {
    for (const DiagOp& op : kOps) {
        if (op.name == name)
            return &op;
    }
    return nullptr;
}

void read_diag_op(Section& section, const char* key, std::optional<uint32_t>& number) {
    if (!section.is_name(key))
        return section.integer<uint32_t>(key, number, 1, kDiagOps);
    std::string name;
    section.text(key, name, 20);
    const DiagOp* op = diag_op(name);
    if (op == nullptr)
        section.fail(key, "no op has this name");
    number = op->number;
}

std::string diag_op_label(uint8_t number) {
    const DiagOp* op = diag_op(number);
    return label(op != nullptr ? op->name : "unknown", number);
}

bool diag_request_is_whole(const DiagOp& op, wire::View packet) {
    return fit(op.request, packet.size - 1);
}

std::optional<uint8_t> diag_event(std::string_view name) {
    for (const auto& event : kEvents) {
        if (event.name == name)
            return event.number;
    }
    return std::nullopt;
}

void describe_diag_request(wire::View packet, WireLine& line) {
    wire::Reader reader(packet);
    const uint8_t number = reader.u8();
    const DiagOp* op = diag_op(number);
    line.word(diag_op_label(number));
    describe_fields(op != nullptr ? op->request : DiagFields{kData}, reader, line);
}

void describe_diag_answer(wire::View packet, WireLine& line) {
    wire::Reader reader(packet);
    const auto number = static_cast<uint8_t>(reader.u8() & ~unsigned{wire::kDiagAnswer});
    const DiagOp* op = diag_op(number);
    line.word(diag_op_label(number));
    describe_fields({Field{Field::kI32, "result"}}, reader, line);
    // A refusal has no fields.
    if (op != nullptr && reader.left() > 0)
        describe_fields(op->reply, reader, line);
}

void describe_diag_event(wire::View packet, WireLine& line) {
    wire::Reader reader(packet);
    const uint8_t number = reader.u8();
    for (const auto& event : kEvents) {
        if (event.number == number) {
            line.word(label(event.name, number));
            return describe_fields(event.fields, reader, line);
        }
    }
    line.word(label("unknown", number));
    describe_fields({kData}, reader, line);
}

}  // namespace handset
