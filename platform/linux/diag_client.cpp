#include <algorithm>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

#include "diag_link.h"
#include "diag_lsm.h"
#include "diag_lsm_dci.h"
#include "modem.h"
#include "note.h"
#include "wire.h"

namespace seam {

namespace {

// True on a thread that delivers events, where waiting for the end of a callback would be for ever.
thread_local bool t_delivers = false;

constexpr int kSendFailed = -1;
constexpr int kDciLost = 1003;

struct ResponseCallback {
    diag_response_cb cb = nullptr;
    void* context = nullptr;
};

/// The asynchronous request whose answer may still come. Events do not name a client: they are
/// the last sender's.
struct DciRequest {
    int client = 0;
    unsigned char* rsp = nullptr;
    size_t rsp_len = 0;
    void (*cb)(unsigned char* ptr, int len, void* data_ptr) = nullptr;
    void* data = nullptr;
};

struct DciStreams {
    int client = 0;
    void (*logs)(unsigned char* ptr, int len) = nullptr;
    void (*events)(unsigned char* ptr, int len) = nullptr;
};

/// The one session of the process, and who listens to it. Never destroyed.
class Diag {
public:
    bool open();
    bool close();

    /// One op. Null: the session is closed or lost, or has not answered in time.
    std::unique_ptr<DiagReply> ask(uint8_t op, const wire::Writer& payload);

    bool is_open();

    void set_callback(int proc, ResponseCallback callback) {
        const std::lock_guard<std::mutex> lock(mutex_);
        callbacks_[proc] = callback;
    }
    void set_streams(const DciStreams& streams) {
        const std::lock_guard<std::mutex> lock(mutex_);
        streams_ = streams;
    }
    /// Returns the request that was set before.
    DciRequest set_request(const DciRequest& request) {
        const std::lock_guard<std::mutex> lock(mutex_);
        return std::exchange(request_, request);
    }
    void forget_client(int client);

private:
    std::shared_ptr<DiagLink> link() {
        const std::lock_guard<std::mutex> lock(mutex_);
        return link_;
    }
    /// Returns the one before, to be closed without the lock: its thread may be waiting for that.
    std::shared_ptr<DiagLink> set_link(std::shared_ptr<DiagLink> next) {
        const std::lock_guard<std::mutex> lock(mutex_);
        return std::exchange(link_, std::move(next));
    }
    void deliver(wire::Bytes& event);
    void deliver_response(wire::Bytes& event);
    void deliver_dci(wire::Bytes& event);

    std::mutex session_mutex_;       // held while the session is opened or closed
    std::mutex dci_callback_mutex_;  // held while a DCI callback runs
    std::mutex mutex_;               // guards all that follows
    std::shared_ptr<DiagLink> link_;
    std::map<int, ResponseCallback> callbacks_;  // by processor; 0: the local one
    DciRequest request_;
    DciStreams streams_;
};

Diag& diag() {
    static auto* the_one = new Diag;
    return *the_one;
}

bool Diag::open() {
    if (t_delivers)
        return true;
    const std::lock_guard<std::mutex> session(session_mutex_);
    if (is_open())
        return true;
    auto fresh = modem()->diag->open([this](wire::Bytes& event) { deliver(event); });
    if (!fresh)
        return false;
    if (const auto lost = set_link(std::move(fresh)))
        lost->close();
    return true;
}

bool Diag::close() {
    if (t_delivers)
        return false;
    const std::lock_guard<std::mutex> session(session_mutex_);
    const auto last = set_link(nullptr);
    if (last)
        last->close();
    const std::lock_guard<std::mutex> lock(mutex_);
    callbacks_.clear();
    request_ = {};
    streams_ = {};
    return last != nullptr;
}

bool Diag::is_open() {
    const auto current = link();
    return current && !current->has_ended();
}

std::unique_ptr<DiagReply> Diag::ask(uint8_t op, const wire::Writer& payload) {
    const auto current = link();
    return current ? current->ask(op, payload) : nullptr;
}

/// No callback of the client runs once this has returned, except for the one that this is called from.
void Diag::forget_client(int client) {
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        if (request_.client == client)
            request_ = {};
        if (streams_.client == client)
            streams_ = {};
    }
    if (!t_delivers) {
        const std::lock_guard<std::mutex> running(dci_callback_mutex_);
    }
}

void Diag::deliver(wire::Bytes& event) {
    t_delivers = true;
    if (event.size() > wire::kDiagPacketMax)
        return note("a diag packet of more than " + std::to_string(wire::kDiagPacketMax) +
                    " bytes is dropped");
    if (event[0] == wire::kDiagEventResponse)
        deliver_response(event);
    else
        deliver_dci(event);
}

void Diag::deliver_response(wire::Bytes& event) {
    constexpr size_t kHead = 2;  // op and processor
    if (event.size() < kHead)
        return;
    ResponseCallback callback;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        const auto found = callbacks_.find(event[1]);
        if (found != callbacks_.end())
            callback = found->second;
    }
    if (callback.cb != nullptr)
        callback.cb(event.data() + kHead, static_cast<int>(event.size() - kHead), callback.context);
}

void Diag::deliver_dci(wire::Bytes& event) {
    const std::lock_guard<std::mutex> running(dci_callback_mutex_);
    DciRequest request;
    DciStreams streams;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        request = request_;
        streams = streams_;
    }
    unsigned char* bytes = event.data() + 1;
    const size_t size = event.size() - 1;
    if (event[0] == wire::kDiagEventDciResponse && request.cb != nullptr) {
        const size_t taken = std::min(size, request.rsp_len);
        std::copy_n(bytes, taken, request.rsp);
        request.cb(request.rsp, static_cast<int>(taken), request.data);
    } else if (event[0] == wire::kDiagEventLog && streams.logs != nullptr) {
        streams.logs(bytes, static_cast<int>(size));
    } else if (event[0] == wire::kDiagEventEvent && streams.events != nullptr) {
        streams.events(bytes, static_cast<int>(size));
    }
}

/// A DCI op that answers nothing but its result.
int dci_result(uint8_t op, const wire::Writer& payload) {
    const auto reply = diag().ask(op, payload);
    return reply ? reply->result() : kDciLost;
}

wire::View bytes_of(const unsigned char* buf, int len) {
    return {buf, static_cast<size_t>(len)};
}

}  // namespace

}  // namespace seam

using seam::diag;
using seam::kDciLost;

extern "C" bool Diag_LSM_Init(unsigned char*) {
    return diag().open();
}

extern "C" bool Diag_LSM_DeInit(void) {
    return diag().close();
}

extern "C" void diag_register_callback(diag_response_cb cb, void* context_data) {
    diag().set_callback(0, {cb, context_data});
}

extern "C" void diag_register_remote_callback(diag_response_cb cb, int proc, void* context_data) {
    diag().set_callback(proc, {cb, context_data});
}

extern "C" void diag_has_remote_device(uint16_t* remote_mask) {
    if (remote_mask == nullptr)
        return;
    const auto reply = diag().ask(wire::kDiagRemoteMask, {});
    *remote_mask = reply ? reply->fields().u16() : 0;
}

extern "C" int diag_callback_send_data(int proc, unsigned char* buf, int len) {
    if (buf == nullptr || len < 0)
        return seam::kSendFailed;
    wire::Writer payload;
    payload.i32(proc).bytes(seam::bytes_of(buf, len));
    const auto reply = diag().ask(wire::kDiagSend, payload);
    return reply ? reply->result() : seam::kSendFailed;
}

extern "C" void diag_switch_logging(int mode, char*) {
    wire::Writer payload;
    payload.i32(mode);
    diag().ask(wire::kDiagSwitchLogging, payload);
}

extern "C" int diag_register_dci_client(int* client_id, uint16_t* list, int proc, void*) {
    if (client_id == nullptr || list == nullptr)
        return kDciLost;
    wire::Writer payload;
    payload.u16(*list).i32(proc);
    const auto reply = diag().ask(wire::kDiagDciRegister, payload);
    if (!reply)
        return kDciLost;
    if (reply->result() == DIAG_DCI_NO_ERROR)
        *client_id = reply->fields().i32();
    return reply->result();
}

extern "C" int diag_register_dci_signal_data(int client_id, int signal_type) {
    wire::Writer payload;
    payload.i32(client_id).i32(signal_type);
    return seam::dci_result(wire::kDiagDciSignal, payload);
}

extern "C" int diag_get_dci_support_list_proc(int proc, uint16_t* list) {
    if (list == nullptr)
        return kDciLost;
    wire::Writer payload;
    payload.i32(proc);
    const auto reply = diag().ask(wire::kDiagDciSupport, payload);
    if (!reply)
        return kDciLost;
    if (reply->result() == DIAG_DCI_NO_ERROR)
        *list = reply->fields().u16();
    return reply->result();
}

extern "C" int diag_register_dci_stream_proc(int client_id, void (*logs)(unsigned char* ptr, int len),
                                             void (*events)(unsigned char* ptr, int len)) {
    // The streams may start before the answer is here.
    diag().set_streams({client_id, logs, events});
    wire::Writer payload;
    payload.i32(client_id);
    const int result = seam::dci_result(wire::kDiagDciStreams, payload);
    if (result != DIAG_DCI_NO_ERROR)
        diag().set_streams({});
    return result;
}

extern "C" int diag_send_dci_async_req(int client_id, unsigned char* buf, int len, unsigned char* rsp,
                                       int rsp_len, void (*cb)(unsigned char* ptr, int len, void* data_ptr),
                                       void* data_ptr) {
    if (buf == nullptr || len < 0 || rsp == nullptr || rsp_len < 0)
        return kDciLost;
    // The response may come before the answer.
    const auto before = diag().set_request({client_id, rsp, static_cast<size_t>(rsp_len), cb, data_ptr});
    wire::Writer payload;
    payload.i32(client_id).bytes(seam::bytes_of(buf, len));
    const int result = seam::dci_result(wire::kDiagDciSend, payload);
    if (result != DIAG_DCI_NO_ERROR)
        diag().set_request(before);
    return result;
}

extern "C" int diag_release_dci_client(int* client_id) {
    if (client_id == nullptr)
        return kDciLost;
    int result = DIAG_DCI_NO_ERROR;
    if (diag().is_open()) {
        wire::Writer payload;
        payload.i32(*client_id);
        result = seam::dci_result(wire::kDiagDciRelease, payload);
    }
    diag().forget_client(*client_id);
    return result;
}
