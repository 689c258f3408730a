// Indications of the vs service become events of its client.
#include <algorithm>
#include <cstring>

#include "android/log.h"
#include "modem_api_events.h"
#include "modem_api_slots.h"
#include "qcril_memory_management.h"

namespace {

struct Event {
    int32_t code;
    union {
        modem_api_report_event report;  // first, so that {} zeroes the whole
        modem_api_status_event status;
        modem_api_bytes_event bytes;
        modem_api_state_event state;
    } data;
};
static_assert(sizeof(Event) == 10700, "layout");

// Copies what the modem really sent: `count` and the lengths are its claims. Returns the number of entries.
template <size_t N>
uint32_t copy_entries(vs_report_entry_v01 (&to)[N], const vs_report_entry_v01 (&from)[N], uint32_t count) {
    const uint32_t kept = std::min(count, static_cast<uint32_t>(N));
    for (uint32_t i = 0; i < kept; ++i) {
        to[i].id = from[i].id;
        to[i].first = from[i].first;
        to[i].second = from[i].second;
        to[i].value_len = std::min(from[i].value_len, static_cast<uint32_t>(sizeof to[i].value));
        memcpy(to[i].value, from[i].value, to[i].value_len);
    }
    return kept;
}

// Each fills the event from one decoded indication and returns the length of the event's data.

size_t fill(Event* event, const vs_status_ind_msg_v01& ind) {
    event->code = MODEM_API_EVENT_STATUS;
    modem_api_status_event& data = event->data.status;
    data.value = ind.value;
    data.first = ind.first_flag != 0 ? 1 : 0;
    data.second = ind.second_flag != 0 ? 1 : 0;
    return sizeof data;
}

size_t fill(Event* event, const vs_report_ind_msg_v01& ind) {
    event->code = MODEM_API_EVENT_REPORT;
    modem_api_report_event& data = event->data.report;
    data.value = ind.value;
    data.first_count = copy_entries(data.first, ind.first, ind.first_count);
    data.second_count = copy_entries(data.second, ind.second, ind.second_count);
    data.last = ind.last_valid ? ind.last : UINT32_MAX;
    return sizeof data;
}

size_t fill(Event* event, const vs_bytes_ind_msg_v01& ind) {
    event->code = MODEM_API_EVENT_BYTES;
    modem_api_bytes_event& data = event->data.bytes;
    data.value = ind.value;
    data.count = std::min(ind.byte_count, uint32_t{VS_BYTES_IND_MAX_V01});
    std::copy_n(ind.bytes, data.count, data.elements);
    data.first = ind.first;
    data.second = ind.second;
    return sizeof data;
}

size_t fill(Event* event, const vs_state_ind_msg_v01& ind) {
    event->code = MODEM_API_EVENT_STATE;
    event->data.state.state = ind.state;
    return sizeof event->data.state;
}

void vs_client_ind_hdlr(unsigned msg_id, const void* ind, modem_api_event_cb event_cb) {
    KOLVO_LOG(ANDROID_LOG_INFO, "Handling indication msg 0x%x", msg_id);
    Event event = {};
    size_t length = 0;
    switch (msg_id) {
        case VS_STATUS_IND_V01:
            length = fill(&event, *static_cast<const vs_status_ind_msg_v01*>(ind));
            break;
        case VS_REPORT_IND_V01:
            length = fill(&event, *static_cast<const vs_report_ind_msg_v01*>(ind));
            break;
        case VS_BYTES_IND_V01:
            length = fill(&event, *static_cast<const vs_bytes_ind_msg_v01*>(ind));
            break;
        case VS_STATE_IND_V01:
            length = fill(&event, *static_cast<const vs_state_ind_msg_v01*>(ind));
            break;
        default:
            KOLVO_LOG(ANDROID_LOG_ERROR, "Unknown indication msg %0x", msg_id);
            return;
    }
    event_cb(event.code, &event.data, static_cast<int>(length));
}

}  // namespace

void vs_client_unsol_ind_cb(qmi_client_type handle, unsigned int msg_id, void* ind_buf, unsigned int ind_len,
                            void*) {
    KOLVO_LOG(ANDROID_LOG_INFO, "function entry");
    const modem_api_service_slot_type* slot = modem_api_service_slot(MODEM_API_CLIENT_VS);
    if (slot->event_cb == nullptr) {
        KOLVO_LOG(ANDROID_LOG_ERROR, "Unexpected NULL pointer!");
        return;
    }
    uint32_t decoded_len = 0;
    qmi_idl_get_message_c_struct_len(slot->service, QMI_IDL_INDICATION, static_cast<uint16_t>(msg_id),
                                     &decoded_len);
    if (decoded_len == 0) {
        KOLVO_LOG(ANDROID_LOG_ERROR, "decoded_payload_len(%d) can not <= 0", 0);
        return;
    }
    void* decoded = kolvo_malloc_adv(decoded_len, "vs_client_unsol_ind_cb");
    if (decoded == nullptr)
        return;
    const int error =
        qmi_client_message_decode(handle, QMI_IDL_INDICATION, msg_id, ind_buf, ind_len, decoded, decoded_len);
    if (error != QMI_NO_ERR)
        KOLVO_LOG(ANDROID_LOG_ERROR, "Indication decode failed for msg 0x%x with error %d", msg_id, error);
    else
        vs_client_ind_hdlr(msg_id, decoded, slot->event_cb);
    kolvo_free_adv(decoded);
    KOLVO_LOG(ANDROID_LOG_INFO, "function exit");
}
