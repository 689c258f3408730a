#include "describe.h"

#include <cstdio>
#include <cstring>

#include "records.h"

namespace messages {
namespace {

constexpr size_t kCommonHeader = 16;
constexpr uint32_t kDebugInfo = 20;
constexpr uint32_t kNotSupportedLogs = 27;

void raw_tlv(const wire::Tlv& tlv, Sink& sink) {
    char name[8];
    snprintf(name, sizeof name, "0x%02X", tlv.type);
    sink.bytes(name, tlv.value);
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

// "3F00/2FE2".
std::string file_path(wire::View directories, uint16_t file) {
    wire::Reader reader(directories);
    std::string path;
    char id[8];
    while (reader.left() > 1) {
        snprintf(id, sizeof id, "%04X/", reader.u16());
        path += id;
    }
    snprintf(id, sizeof id, "%04X", file);
    return path + id;
}

void describe_record(uint32_t id, wire::View value, Sink& sink) {
    const Record* known = record(id);
    size_t size = 0;
    if (known == nullptr)
        return;
    for (const RecordField& field : *known->layout)
        size += field.size();
    if (value.size < size)
        return;
    wire::Reader reader(value);
    for (const RecordField& field : *known->layout) {
        if (field.kind != RecordField::kF32) {
            sink.unsigned_number(field.name, reader.number(field.size()));
            continue;
        }
        const uint32_t bits = reader.u32();
        float number = 0;
        static_assert(sizeof bits == sizeof number, "IEEE single");
        memcpy(&number, &bits, sizeof number);
        sink.real(field.name, number);
    }
}

// A list of measurements or of reports; false, and nothing is told, when its counts lie.
bool describe_list(const Field& field, wire::View list, Sink& sink) {
    const bool values = field.form == Form::kValues;
    const auto go_through = [&](Sink* told) {
        wire::Reader reader(list);
        const size_t count = reader.u8();
        if (told != nullptr)
            told->list(field.name, count);
        for (size_t i = 0; i < count && reader.ok(); ++i) {
            const uint32_t first = values ? reader.u16() : reader.u32();
            const uint16_t second = reader.u16();
            const uint32_t third = values ? reader.u32() : reader.u16();
            const wire::View value = reader.bytes(reader.u16());
            if (told == nullptr)
                continue;
            told->begin_item(field.name, i);
            if (values) {
                told->unsigned_number("sub", first).unsigned_number("type", second);
                told->unsigned_number("id", third);
                describe_record(third, value, *told);
            } else {
                told->unsigned_number("id", first).unsigned_number("first", second);
                told->unsigned_number("second", third);
            }
            told->bytes("value", value).end();
        }
        if (told != nullptr)
            told->end_list();
        return reader.ok() && reader.left() == 0;
    };
    return go_through(nullptr) && go_through(&sink);
}

void describe_file_request(const FileRequest& request, Sink& sink) {
    if (!request.whole) {
        sink.malformed();
        return;
    }
    sink.text("command", file_command(request.command)->name).number("sub", request.subscription);
    if (request.is_nv())
        sink.number("item", request.item);
    else
        sink.text("path", request.path);
    if (request.command == FileRequest::kNvWrite)
        sink.number("length", request.total);
    if (request.command == FileRequest::kEfsWrite)
        sink.number("total", request.total)
            .number("offset", request.offset)
            .number("chunk", request.chunk_size);
    if (request.command == FileRequest::kEfsRead)
        sink.number("offset", request.offset);
}

void describe_common_request(const CommonRequest& request, Sink& sink) {
    const Command* known = common_command(request.form, request.code);
    sink.text("form", form_name(request.form)).unsigned_number("code", request.code);
    if (known != nullptr)
        sink.text("command", known->name);
    if (!request.complete)
        sink.malformed();
    else if (request.form == CommonForm::kTlv)
        sink.bytes("value", request.value);
}

void describe_file_answer(const Asked& asked, wire::View payload, Sink& sink) {
    wire::Reader reader(payload);
    reader.u32();
    const uint32_t total = reader.u32();
    const uint32_t chunk = reader.u32();
    reader.u32();
    const int32_t result = reader.i32();
    if (!reader.ok()) {
        sink.malformed();
        return;
    }
    sink.number("result", result);
    if (asked.code != FileRequest::kNvRead && asked.code != FileRequest::kEfsRead)
        return;
    const wire::View data = reader.rest();
    sink.unsigned_number("total", total).unsigned_number("chunk", chunk);
    sink.inner_bytes("bytes", {data.data, data.size < chunk ? data.size : chunk});
}

void describe_counters(wire::View value, Sink& sink) {
    wire::Reader reader(value);
    const uint8_t version = reader.u8();
    if (!reader.ok())
        return;
    sink.unsigned_number("version", version);
    const char* block = nullptr;
    for (const DebugCounter& counter : debug_counters()) {
        if (counter.since > version)
            continue;
        const uint64_t number = reader.number(counter.size);
        if (!reader.ok())
            break;
        if (block == nullptr || strcmp(block, counter.block) != 0) {
            if (block != nullptr)
                sink.end();
            sink.begin_group(block = counter.block);
        }
        sink.unsigned_number(counter.name, number);
    }
    if (block != nullptr)
        sink.end();
}

void describe_logs(wire::View value, Sink& sink) {
    wire::Reader reader(value);
    const unsigned announced = reader.u16();
    if (!reader.ok())
        return;
    sink.unsigned_number("log_num", announced);
    sink.inner_bytes("logs", reader.rest());
}

void describe_common_answer(const Asked& asked, wire::View payload, Sink& sink) {
    wire::Reader reader(payload);
    reader.u32();
    const int32_t result = reader.i32();
    reader.bytes(8);
    if (!reader.ok()) {
        sink.malformed();
        return;
    }
    const wire::View value(payload.data + kCommonHeader, payload.size - kCommonHeader);
    sink.number("result", result);
    if (asked.form == CommonForm::kDirect && asked.code == kDebugInfo)
        describe_counters(value, sink);
    else if (asked.form == CommonForm::kDirect && asked.code == kNotSupportedLogs)
        describe_logs(value, sink);
    else if (value.size > 0)
        sink.bytes("value", value);
}

void describe_payload(const Field& field, const QmiMessage& message, const Asked* asked, Sink& sink) {
    const Extension& extension = *message.extension;
    // An answer that the channel refused has no payload to speak of.
    const bool answer =
        message.packet.flags == wire::kQmiResponse && asked != nullptr && extension.payload.size > 0;
    if (extension.file)
        describe_file_request(*extension.file, sink);
    if (extension.common)
        describe_common_request(*extension.common, sink);
    if (answer && asked->request == kFileAccess)
        describe_file_answer(*asked, extension.payload, sink);
    if (answer && asked->request == kCommon)
        describe_common_answer(*asked, extension.payload, sink);
    if (extension.payload.size > 0)
        sink.bytes(field.name, extension.payload);
}

// False, and nothing is told, when the value has not the field's form.
bool describe_field(const Field& field, wire::View value, const QmiMessage& message, const Asked* asked,
                    Sink& sink) {
    wire::Reader reader(value);
    switch (field.form) {
        case Form::kNumber:
            if (value.size < 1 || value.size > 4)
                return false;
            sink.unsigned_number(field.name, reader.number(value.size));
            return true;
        case Form::kResult:
        case Form::kFailure: {
            const uint16_t result = reader.u16();
            const uint16_t error = reader.u16();
            if (!reader.ok() || reader.left() > 0)
                return false;
            sink.unsigned_number(field.name, result);
            if (result != 0 || field.form == Form::kResult)
                sink.unsigned_number("error", error);
            return true;
        }
        case Form::kBytes:
            sink.bytes(field.name, value);
            return true;
        case Form::kCountedBytes:
        case Form::kLongBytes: {
            const size_t count = field.form == Form::kCountedBytes ? reader.u8() : reader.u16();
            if (!reader.ok() || reader.left() != count)
                return false;
            sink.bytes(field.name, reader.rest());
            return true;
        }
        case Form::kFile: {
            const uint16_t file = reader.u16();
            const wire::View directories = reader.bytes(reader.u8());
            if (!reader.ok() || reader.left() > 0)
                return false;
            sink.text(field.name, file_path(directories, file));
            return true;
        }
        case Form::kCards: {
            const auto cards = cards_in(value);
            if (cards)
                sink.text(field.name, *cards);
            return cards.has_value();
        }
        case Form::kPayload:
            if (message.extension)
                describe_payload(field, message, asked, sink);
            return message.extension.has_value();
        case Form::kValues:
        case Form::kReports:
            return describe_list(field, value, sink);
    }
    return false;
}

const Field* field_of(const QmiMessage& message, uint8_t type) {
    const Field* field = message.row != nullptr ? message.row->fields(message.packet.flags) : nullptr;
    for (size_t i = 0; field != nullptr && i < kFieldsMax && field[i].name != nullptr; ++i) {
        if (field[i].type == type)
            return &field[i];
    }
    return nullptr;
}

size_t width(DiagField::Kind kind) {
    return kind == DiagField::kU8 ? 1 : kind == DiagField::kU16 ? 2 : kind == DiagField::kI32 ? 4 : 0;
}

void describe_fields(const DiagField (&fields)[kDiagFieldsMax], wire::Reader& reader, Sink& sink) {
    size_t needed = 0;
    for (const DiagField& field : fields)
        needed += width(field.kind);
    if (reader.left() < needed) {
        sink.malformed().bytes("data", reader.rest());
        return;
    }
    for (const DiagField& field : fields) {
        if (field.kind == DiagField::kNone)
            break;
        if (field.kind == DiagField::kI32) {
            sink.number(field.name, reader.i32());
        } else if (width(field.kind) > 0) {
            sink.unsigned_number(field.name, reader.number(width(field.kind)));
        } else {
            const wire::View bytes = reader.rest();
            const char* code = field.kind == DiagField::kBytes ? nullptr : diag_code_name(bytes);
            if (code != nullptr)
                sink.text("code", code);
            sink.bytes(field.name, bytes);
        }
    }
}

}  // namespace

const char* QmiMessage::kind() const {
    return packet.flags == wire::kQmiRequest      ? "request"
           : packet.flags == wire::kQmiResponse   ? "response"
           : packet.flags == wire::kQmiIndication ? "indication"
                                                  : "unknown";
}

QmiMessage decode(uint16_t service, const wire::QmiPacket& packet) {
    QmiMessage message;
    message.service = service;
    message.packet = packet;
    message.row = messages::message(service, packet.message);
    if (service == kExtension)
        message.extension = decode_extension(packet.flags, packet.body);
    // A body of the extension service that was decoded is whole.
    message.whole = message.extension || wire::tlvs_are_whole(packet.body);
    return message;
}

void describe(const QmiMessage& message, const Asked* asked, Sink& sink) {
    const Service* known = service(message.service);
    const bool shows_tlvs = known != nullptr && known->shows_tlvs && message.whole;
    bool fits = true;
    wire::TlvReader reader(message.packet.body);
    while (const auto tlv = reader.next()) {
        const Field* field = message.whole ? field_of(message, tlv->type) : nullptr;
        const bool told = field != nullptr && describe_field(*field, tlv->value, message, asked, sink);
        fits = fits && (told || field == nullptr);
        if (!told && !shows_tlvs)
            raw_tlv(*tlv, sink);
    }
    if (!reader.ok() || (shows_tlvs && !fits))
        sink.malformed();
    if (shows_tlvs)
        sink.bytes("tlvs", message.packet.body);
    else if (!reader.ok())
        sink.bytes("body", message.packet.body);
}

DiagMessage decode_diag(bool to_modem, wire::View packet) {
    wire::Reader reader(packet);
    DiagMessage message;
    message.number = reader.u8();
    message.rest = reader.rest();
    if (!to_modem && (message.number & wire::kDiagAnswer) == 0) {
        message.kind = DiagMessage::kEvent;
        if (const DiagEvent* event = diag_event(message.number))
            message.name = event->name;
        return message;
    }
    if (!to_modem) {
        message.kind = DiagMessage::kAnswer;
        message.number = static_cast<uint8_t>(message.number & ~unsigned{wire::kDiagAnswer});
    }
    if (const DiagOp* op = diag_op(message.number))
        message.name = op->name;
    return message;
}

void describe(const DiagMessage& message, Sink& sink) {
    constexpr DiagField kUnknown[kDiagFieldsMax] = {{DiagField::kBytes, "data"}};
    wire::Reader reader(message.rest);
    if (message.kind == DiagMessage::kEvent) {
        const DiagEvent* event = diag_event(message.number);
        return describe_fields(event != nullptr ? event->fields : kUnknown, reader, sink);
    }
    const DiagOp* op = diag_op(message.number);
    if (message.kind == DiagMessage::kRequest)
        return describe_fields(op != nullptr ? op->request : kUnknown, reader, sink);
    describe_fields({{DiagField::kI32, "result"}}, reader, sink);
    // A refusal has no fields.
    if (op != nullptr && reader.left() > 0)
        describe_fields(op->reply, reader, sink);
}

std::string label(const char* name, unsigned number) {
    return std::string(name) + "(" + std::to_string(number) + ")";
}

}  // namespace messages
