#include "uim_file_requests.h"

#include "uim_encoding.h"
#include "uim_messages.h"

namespace handset {
namespace {

wire::Bytes refusal(QmiError error) {
    return qmi_result(error).take();
}

// The card's refusal in the service's words, and in its own.
wire::Bytes card_refusal(uint16_t words) {
    const QmiError error = words == kSwSecurity ? kQmiErrorAccessDenied
                           : words == kSwFileNotFound || words == kSwRecordNotFound
                               ? kQmiErrorSimFileNotFound
                               : kQmiErrorInvalidArgument;
    wire::Writer body = qmi_result(error);
    body.tlv(kUimCardResult, status_words(words));
    return body.take();
}

// u8 session type, u8 n, n bytes of AID.
std::optional<uint8_t> session_type(wire::View value) {
    wire::Reader reader(value);
    const uint8_t type = reader.u8();
    reader.bytes(reader.u8());
    return reader.ok() && reader.left() == 0 ? std::optional<uint8_t>(type) : std::nullopt;
}

// u16 file, u8 n, n bytes of the directories above it, 16 bits each. The master file may be left out.
std::optional<FilePath> file_path(wire::View value) {
    wire::Reader reader(value);
    const uint16_t file = reader.u16();
    const uint8_t size = reader.u8();
    FilePath path;
    if (!reader.ok() || size != reader.left() || size % 2 != 0)
        return std::nullopt;
    while (reader.left() > 0)
        path.push_back(reader.u16());
    if ((path.empty() || path.front() != kIdMaster) && file != kIdMaster)
        path.insert(path.begin(), kIdMaster);
    path.push_back(file);
    return path;
}

wire::Bytes attributes(const Card& card, const FilePath& path) {
    const auto place = card.files().find(path);
    if (!place)
        return card_refusal(kSwFileNotFound);
    wire::Writer body = qmi_result();
    body.tlv(kUimCardResult, status_words(kSwOk));
    body.tlv(kUimFileAttributes, encode_file_attributes(card, *place));
    return body.take();
}

// Two numbers: the offset and the length, or the record and its length; a length of 0 is as much as there is.
wire::Bytes read(const Card& card, const FilePath& path, const QmiRequest& request) {
    wire::Reader reader(request.tlv(kUimRange));
    const uint16_t first = reader.u16();
    const uint16_t length = reader.u16();
    if (!reader.ok() || reader.left() > 0)
        return refusal(request.tlv(kUimRange).size == 0 ? kQmiErrorMissingArgument : kQmiErrorMalformed);
    const bool record = request.message == kUimReadRecord;
    const Card::Content content =
        record ? card.read_record(path, first) : card.read_binary(path, first, length);
    if (content.words != kSwOk)
        return card_refusal(content.words);
    if (record && length != 0 && length != content.bytes.size)
        return card_refusal(kSwWrongLength);
    wire::Writer body = qmi_result();
    body.tlv(kUimCardResult, status_words(kSwOk));
    body.tlv(kUimContent, uim_with_count(content.bytes, 2));
    return body.take();
}

}  // namespace

wire::Bytes answer_file_request(const UimSlots& slots, const QmiRequest& request) {
    if (request.tlv(kUimSession).size == 0 || request.tlv(kUimFile).size == 0)
        return refusal(kQmiErrorMissingArgument);
    const auto session = session_type(request.tlv(kUimSession));
    const auto path = file_path(request.tlv(kUimFile));
    if (!session || !path)
        return refusal(kQmiErrorMalformed);
    const auto slot = session_slot(slots, *session);
    if (!slot)
        return refusal(kQmiErrorInvalidArgument);
    const Card* card = slots.card(*slot);
    if (card == nullptr)
        return refusal(kQmiErrorDeviceNotReady);
    return request.message == kUimGetFileAttributes ? attributes(*card, *path) : read(*card, *path, request);
}

}  // namespace handset
