// Notifications: what happened to profiles, listed until somebody has delivered it.
#include "es10.h"
#include "usim.h"

namespace handset {
namespace {

constexpr uint32_t kMetadata = 0xBF2F;
constexpr uint32_t kSequence = 0x80;
constexpr uint32_t kEvent = 0x81;
constexpr uint32_t kAddress = 0x0C;
constexpr uint32_t kIccid = 0x5A;
constexpr uint32_t kSearch = 0xA0;
constexpr uint32_t kList = 0xA0;
constexpr uint32_t kSigned = 0x30;
constexpr uint32_t kSignature = 0x5F37;
constexpr uint32_t kCertificate = 0x30;
constexpr size_t kSignatureSize = 64;

wire::Bytes metadata(const Notification& notification) {
    DerWriter writer;
    writer.number(kSequence, notification.sequence).bits(kEvent, notification.event);
    writer.text(kAddress, notification.address).object(kIccid, iccid_bytes(notification.iccid));
    return der(kMetadata, writer.data());
}

// The eUICC has no key: the signature is zero and the two certificates are empty.
wire::Bytes signed_notification(const Notification& notification) {
    DerWriter writer;
    writer.object(kSignature, wire::Bytes(kSignatureSize)).object(kCertificate, {}).object(kCertificate, {});
    wire::Bytes content = metadata(notification);
    content.insert(content.end(), writer.data().begin(), writer.data().end());
    return der(kSigned, content);
}

// The bits of a bit string of at most one byte.
std::optional<uint8_t> events_in(wire::View bits) {
    if (bits.size == 0 || bits.size > 2 || bits.data[0] > 7)
        return std::nullopt;
    return bits.size == 1 ? uint8_t{0} : bits.data[1];
}

}  // namespace

Es10Answer es10::list_notifications(Es10& es10, wire::View request) {
    std::optional<uint8_t> events;
    if (const auto filter = find_der(request, kEvent)) {
        events = events_in(*filter);
        if (!events)
            return std::nullopt;
    }
    wire::Bytes list;
    for (const Notification& notification : es10.memory.notifications()) {
        if (events && (notification.event & *events) == 0)
            continue;
        const wire::Bytes entry = metadata(notification);
        list.insert(list.end(), entry.begin(), entry.end());
    }
    return der(kList, list);
}

Es10Answer es10::retrieve_notifications(Es10& es10, wire::View request) {
    std::optional<uint32_t> sequence;
    std::optional<uint8_t> events;
    if (const auto search = find_der(request, kSearch)) {
        const auto criterion = single_der(*search);
        if (criterion && criterion->tag == kSequence)
            sequence = der_number(criterion->value);
        else if (criterion && criterion->tag == kEvent)
            events = events_in(criterion->value);
        if (!sequence && !events)
            return std::nullopt;
    }
    wire::Bytes list;
    for (const Notification& notification : es10.memory.notifications()) {
        if ((sequence && notification.sequence != *sequence) ||
            (events && (notification.event & *events) == 0))
            continue;
        const wire::Bytes entry = signed_notification(notification);
        list.insert(list.end(), entry.begin(), entry.end());
    }
    return der(kList, list);
}

Es10Answer es10::remove_notification(Es10& es10, wire::View request) {
    const auto value = find_der(request, kSequence);
    const auto sequence = value ? der_number(*value) : std::nullopt;
    if (!sequence)
        return std::nullopt;
    return result(es10.memory.remove_notification(*sequence));
}

}  // namespace handset
