// What the modem's messages are called and what stands in them: the one table that the wire log, its JSON
// form, a trace and the faults of a profile read. It describes packets for people; nobody sends or takes
// bytes by it. A new message is a row in messages.cpp. All of it is constant; any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "wire.h"

namespace messages {

constexpr uint16_t kUim = 11;
constexpr uint16_t kExtension = 65508;

/// How a TLV's value is read.
enum class Form : uint8_t {
    kNumber,        // 1 to 4 bytes
    kResult,        // u16 result, u16 error
    kFailure,       // the same; the error is told only when there is one
    kBytes,         // all of them
    kCountedBytes,  // u8 count, then as many bytes
    kLongBytes,     // u16 count, then as many bytes
    kCards,         // a card status
    kFile,          // u16 file of a card, u8 count and as many bytes: the directories above it
    kPayload,       // of the extension service
    kValues,        // u8 count; u16 sub, u16 type, u32 id, u16 length and value each
    kReports,       // u8 count; u32 id, u16 first, u16 second, u16 length and value each
};

struct Field {
    uint8_t type = 0;
    Form form = Form::kNumber;
    const char* name = nullptr;
};

constexpr size_t kFieldsMax = 6;

/// The fields of a message of each kind; a list ends with its first field that has no name.
struct Message {
    uint16_t service = 0;
    uint16_t id = 0;
    const char* name = nullptr;
    Field request[kFieldsMax] = {};
    Field response[kFieldsMax] = {};
    Field indication[kFieldsMax] = {};

    /// Null for a kind that there is not.
    const Field* fields(uint8_t flags) const;
};

struct Service {
    uint16_t id;
    const char* name;
    /// Whether a text line ends with the bytes of all TLVs.
    bool shows_tlvs;
};

/// A table, to go through from end to end.
template <typename T>
struct Rows {
    const T* first;
    const T* last;
    const T* begin() const { return first; }
    const T* end() const { return last; }
};

Rows<Service> services();
Rows<Message> all_messages();

/// Null when there is none.
const Service* service(uint16_t id);
const Service* service(std::string_view name);
const Message* message(uint16_t service, uint16_t id);

/// The service's name, or its number.
std::string service_name(uint16_t id);

/// What a request of the extension service asks for, by request id and, within it, by code.
enum ExtensionRequestId : uint32_t { kFileAccess = 2, kCommon = 4 };

enum class CommonForm : uint8_t {
    kGpio,       // first word 0
    kTxAntenna,  // first word 1
    kTlv,        // first word 2: code, length and value follow
    kDirect,     // any other first word: the code itself
};
const char* form_name(CommonForm form);

/// A command inside request id 2 (its number) or 4 (its form and code).
struct Command {
    uint32_t request;
    CommonForm form;
    uint32_t code;
    const char* name;
};
Rows<Command> commands();
const Command* file_command(uint32_t number);
const Command* common_command(CommonForm form, uint32_t code);
const Command* command(std::string_view name);

/// One field of a diag packet. The last three take all that is left.
struct DiagField {
    enum Kind : uint8_t { kNone, kU8, kU16, kI32, kCommand, kResponse, kBytes };
    Kind kind = kNone;
    const char* name = "";
};
constexpr size_t kDiagFieldsMax = 2;

struct DiagOp {
    uint8_t number;
    const char* name;
    int32_t done;                            // the result of success
    int32_t refused;                         // the result when the modem will not do it
    DiagField request[kDiagFieldsMax] = {};  // behind the op
    DiagField reply[kDiagFieldsMax] = {};    // behind the op and the result

    /// Whether a request brings all the fields of its op.
    bool is_whole(wire::View packet) const;
};

struct DiagEvent {
    uint8_t number;
    const char* name;
    DiagField fields[kDiagFieldsMax] = {};
};

Rows<DiagOp> diag_ops();
Rows<DiagEvent> diag_events();
const DiagOp* diag_op(uint8_t number);
const DiagEvent* diag_event(uint8_t number);

/// What the first byte of a diag command or response says; null when it is not known.
const char* diag_code_name(wire::View message);

}  // namespace messages
