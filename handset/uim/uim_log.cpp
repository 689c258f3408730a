// The UIM service in the wire log.
#include <string>

#include "uim_messages.h"
#include "wire_log.h"

namespace handset {
namespace {

enum class Form {
    kNumber,
    kResult,  // two numbers
    kBytes,
    kCounted8,  // a count of one byte, then the bytes
    kCounted16,
    kCardStatus,
};

struct Field {
    uint16_t message;  // 0: any
    wire::QmiFlags kind;
    uint8_t type;
    Form form;
    const char* name;
};

constexpr wire::QmiFlags kRequest = wire::kQmiRequest;
constexpr wire::QmiFlags kResponse = wire::kQmiResponse;

constexpr Field kFields[] = {
    {0, kRequest, kUimSlot, Form::kNumber, "slot"},
    {0, kResponse, kUimResult, Form::kResult, "result"},
    {kUimGetCardStatus, kRequest, kUimExtendedWanted, Form::kNumber, "extended"},
    {kUimGetCardStatus, kResponse, kUimCardStatus, Form::kCardStatus, "cards"},
    {kUimGetCardStatus, kResponse, kUimExtendedCardStatus, Form::kCardStatus, "extended_cards"},
    {kUimPowerUp, kRequest, kUimIgnoreHotswap, Form::kNumber, "ignore_hotswap"},
    {kUimPowerUp, kRequest, kUimPowerOption, Form::kNumber, "option"},
    {kUimSendApdu, kRequest, kUimApdu, Form::kCounted16, "apdu"},
    {kUimSendApdu, kRequest, kUimApduChannel, Form::kNumber, "channel"},
    {kUimSendApdu, kRequest, kUimProcedureBytes, Form::kNumber, "procedure_bytes"},
    {kUimSendApdu, kResponse, kUimResponseApdu, Form::kCounted16, "apdu"},
    {kUimLogicalChannel, kRequest, kUimClosedChannel, Form::kNumber, "channel"},
    {kUimLogicalChannel, kRequest, kUimTerminate, Form::kNumber, "terminate"},
    {kUimLogicalChannel, kResponse, kUimStatusWords, Form::kBytes, "sw"},
    {kUimOpenLogicalChannel, kRequest, kUimAid, Form::kCounted8, "aid"},
    {kUimOpenLogicalChannel, kRequest, kUimFileControlInformation, Form::kNumber, "fci"},
    {kUimOpenLogicalChannel, kResponse, kUimOpenedChannel, Form::kNumber, "channel"},
    {kUimOpenLogicalChannel, kResponse, kUimStatusWords, Form::kBytes, "sw"},
    {kUimOpenLogicalChannel, kResponse, kUimSelectResponse, Form::kCounted8, "select"},
    {kUimGetEid, kResponse, kUimEid, Form::kCounted8, "eid"},
    {kUimRecovery, wire::kQmiIndication, 0x01, Form::kNumber, "first"},
    {kUimRecovery, wire::kQmiIndication, 0x02, Form::kNumber, "second"},
};

const Field* field_of(wire::QmiFlags kind, uint16_t message, uint8_t type) {
    for (const Field& field : kFields) {
        if (field.kind == kind && field.type == type && (field.message == 0 || field.message == message))
            return &field;
    }
    return nullptr;
}

// The cards' states, each with the number of its applications, "present:1 absent:0"; nothing when the
// status lies about a count.
std::optional<std::string> cards_in(wire::View status) {
    wire::Reader reader(status);
    reader.bytes(8);
    std::string text;
    for (uint8_t cards = reader.u8(); cards > 0 && reader.ok(); --cards) {
        const uint8_t state = reader.u8();
        reader.bytes(4);
        const uint8_t applications = reader.u8();
        for (uint8_t i = 0; i < applications && reader.ok(); ++i) {
            reader.bytes(6);
            reader.bytes(reader.u8());
            reader.bytes(7);
        }
        const char* const names[] = {"absent", "present", "error"};
        text += text.empty() ? "" : " ";
        text += (state < 3 ? names[state] : std::to_string(state)) + ":" + std::to_string(applications);
    }
    if (!reader.ok() || reader.left() > 0)
        return std::nullopt;
    return text;
}

// False when the value has not the field's form.
bool describe_field(const Field& field, wire::View value, WireLine& line) {
    wire::Reader reader(value);
    switch (field.form) {
        case Form::kNumber:
            if (value.size < 1 || value.size > 4)
                return false;
            line.unsigned_number(field.name, reader.number(value.size));
            return true;
        case Form::kResult: {
            const uint16_t result = reader.u16();
            const uint16_t error = reader.u16();
            if (!reader.ok() || reader.left() > 0)
                return false;
            line.unsigned_number("result", result);
            if (result != 0)
                line.unsigned_number("error", error);
            return true;
        }
        case Form::kBytes:
            line.bytes(field.name, value);
            return true;
        case Form::kCounted8:
        case Form::kCounted16: {
            const auto bytes = uim_counted(value, field.form == Form::kCounted8 ? 1 : 2);
            if (bytes)
                line.bytes(field.name, *bytes);
            return bytes.has_value();
        }
        case Form::kCardStatus: {
            const auto cards = cards_in(value);
            if (cards)
                line.text(field.name, *cards);
            return cards.has_value();
        }
    }
    return false;
}

}  // namespace

const char* uim_message_name(uint16_t message) {
    switch (message) {
        case kUimGetCardStatus:
            return "get_card_status";
        case kUimPowerDown:
            return "power_down";
        case kUimPowerUp:
            return "power_up";
        case kUimSendApdu:
            return "send_apdu";
        case kUimLogicalChannel:
            return "logical_channel";
        case kUimOpenLogicalChannel:
            return "open_logical_channel";
        case kUimRecovery:
            return "recovery";
        case kUimGetEid:
            return "get_eid";
        default:
            return "message";
    }
}

void describe_uim(wire::QmiFlags kind, uint16_t message, wire::View body, WireLine& line) {
    wire::TlvReader reader(body);
    bool fits = true;
    while (const auto tlv = reader.next()) {
        const Field* field = field_of(kind, message, tlv->type);
        if (field != nullptr)
            fits &= describe_field(*field, tlv->value, line);
    }
    if (!reader.ok() || !fits)
        line.word("malformed");
    line.bytes("tlvs", body);
}

}  // namespace handset
