// The SDK's diag library, seen from above: each call goes on to it, and is noted when VXK_TRACE asks for
// that, as the op of a handset's diag socket that it stands for.
#include <map>
#include <memory>
#include <mutex>

#include "trace.h"
#include "wire.h"
#include "wrapped.h"

namespace device {
namespace {

using wire::Writer;

// What the library answers to an op that has no result of its own.
constexpr int kDone = 0;

/// The one session of the process. Never destroyed.
struct Session {
    /// A callback of the tool's, and what it gets. Kept for good: the library may still be calling it.
    struct Listener {
        int processor = 0;
        diag_response_cb cb = nullptr;
        void* context = nullptr;
    };
    struct DciListener {
        void (*cb)(unsigned char* ptr, int len, void* data) = nullptr;
        void* data = nullptr;
    };

    std::mutex mutex;  // guards all that follows
    std::shared_ptr<trace::Connection> trace;
    std::map<int, Listener> listeners;         // by processor; places in a map stay
    std::map<int, DciListener> dci_listeners;  // by client
    void (*logs)(unsigned char* ptr, int len) = nullptr;
    void (*events)(unsigned char* ptr, int len) = nullptr;
};

Session& session() {
    static auto* the_one = new Session;
    return *the_one;
}

/// Null when nothing is traced.
std::shared_ptr<trace::Connection> trace_of_session() {
    const std::lock_guard<std::mutex> lock(session().mutex);
    return session().trace;
}

wire::View view(const unsigned char* bytes, int size) {
    return bytes != nullptr && size > 0 ? wire::View(bytes, static_cast<size_t>(size)) : wire::View();
}

/// Makes one call that is an op with this payload. `reply` adds the fields of an answer.
template <typename Call, typename Reply>
int traced(uint8_t op, const Writer& payload, const Call& call, const Reply& reply) {
    const auto trace = trace_of_session();
    if (!trace)
        return call();
    trace->sent(Writer().u8(op).bytes(payload.data()).data());
    trace->flush_in_passing();
    const int result = call();
    Writer answer;
    answer.u8(op | wire::kDiagAnswer).i32(result);
    reply(answer, result);
    trace->received(answer.data());
    trace->flush_in_passing();
    return result;
}

template <typename Call>
int traced(uint8_t op, const Writer& payload, const Call& call) {
    return traced(op, payload, call, [](Writer&, int) {});
}

void note_event(const Writer& head, const unsigned char* bytes, int size) {
    const auto trace = trace_of_session();
    if (!trace)
        return;
    trace->received(Writer(head).bytes(view(bytes, size)).data());
    trace->flush();
}

int respond(unsigned char* bytes, int size, void* context) {
    Session::Listener listener;
    {
        const std::lock_guard<std::mutex> lock(session().mutex);
        listener = *static_cast<Session::Listener*>(context);
    }
    note_event(Writer().u8(wire::kDiagEventResponse).u8(static_cast<uint8_t>(listener.processor)), bytes,
               size);
    return listener.cb != nullptr ? listener.cb(bytes, size, listener.context) : 0;
}

void respond_to_dci(unsigned char* bytes, int size, void* context) {
    Session::DciListener listener;
    {
        const std::lock_guard<std::mutex> lock(session().mutex);
        listener = *static_cast<Session::DciListener*>(context);
    }
    note_event(Writer().u8(wire::kDiagEventDciResponse), bytes, size);
    if (listener.cb != nullptr)
        listener.cb(bytes, size, listener.data);
}

void take_logs(unsigned char* bytes, int size) {
    note_event(Writer().u8(wire::kDiagEventLog), bytes, size);
    if (session().logs != nullptr)
        session().logs(bytes, size);
}

void take_events(unsigned char* bytes, int size) {
    note_event(Writer().u8(wire::kDiagEventEvent), bytes, size);
    if (session().events != nullptr)
        session().events(bytes, size);
}

Session::Listener* listen(int processor, diag_response_cb cb, void* context) {
    const std::lock_guard<std::mutex> lock(session().mutex);
    return &(session().listeners[processor] = {processor, cb, context});
}

}  // namespace
}  // namespace device

using namespace device;

extern "C" bool __wrap_Diag_LSM_Init(unsigned char* unused) {
    auto trace = trace_of_session();
    if (!trace)
        trace = trace::Connection::to_diag();
    if (!trace)
        return __real_Diag_LSM_Init(unused);
    {
        const std::lock_guard<std::mutex> lock(session().mutex);
        session().trace = trace;
    }
    return traced(wire::kDiagOpen, {}, [&] { return __real_Diag_LSM_Init(unused) ? 1 : 0; }) == 1;
}

extern "C" bool __wrap_Diag_LSM_DeInit(void) {
    const bool done = __real_Diag_LSM_DeInit();
    std::shared_ptr<trace::Connection> trace;
    {
        const std::lock_guard<std::mutex> lock(session().mutex);
        trace.swap(session().trace);
    }
    if (trace) {
        trace->closed(trace::Connection::By::kClient);
        trace->flush();
    }
    return done;
}

extern "C" void __wrap_diag_register_callback(diag_response_cb cb, void* context) {
    if (!trace_of_session())
        return __real_diag_register_callback(cb, context);
    __real_diag_register_callback(respond, listen(0, cb, context));
}

extern "C" void __wrap_diag_register_remote_callback(diag_response_cb cb, int proc, void* context) {
    if (!trace_of_session())
        return __real_diag_register_remote_callback(cb, proc, context);
    __real_diag_register_remote_callback(respond, proc, listen(proc, cb, context));
}

extern "C" void __wrap_diag_has_remote_device(uint16_t* mask) {
    traced(
        wire::kDiagRemoteMask, {},
        [&] {
            __real_diag_has_remote_device(mask);
            return kDone;
        },
        [&](Writer& answer, int) { answer.u16(mask != nullptr ? *mask : 0); });
}

extern "C" int __wrap_diag_callback_send_data(int proc, unsigned char* buf, int len) {
    return traced(wire::kDiagSend, Writer().i32(proc).bytes(view(buf, len)),
                  [&] { return __real_diag_callback_send_data(proc, buf, len); });
}

extern "C" void __wrap_diag_switch_logging(int mode, char* dir) {
    traced(wire::kDiagSwitchLogging, Writer().i32(mode), [&] {
        __real_diag_switch_logging(mode, dir);
        return kDone;
    });
}

extern "C" int __wrap_diag_register_dci_client(int* client, uint16_t* list, int proc, void* os_params) {
    return traced(
        wire::kDiagDciRegister, Writer().u16(list != nullptr ? *list : 0).i32(proc),
        [&] { return __real_diag_register_dci_client(client, list, proc, os_params); },
        [&](Writer& answer, int result) {
            if (result == DIAG_DCI_NO_ERROR && client != nullptr)
                answer.i32(*client);
        });
}

extern "C" int __wrap_diag_register_dci_signal_data(int client, int signal) {
    return traced(wire::kDiagDciSignal, Writer().i32(client).i32(signal),
                  [&] { return __real_diag_register_dci_signal_data(client, signal); });
}

extern "C" int __wrap_diag_get_dci_support_list_proc(int proc, uint16_t* list) {
    return traced(
        wire::kDiagDciSupport, Writer().i32(proc),
        [&] { return __real_diag_get_dci_support_list_proc(proc, list); },
        [&](Writer& answer, int result) {
            if (result == DIAG_DCI_NO_ERROR && list != nullptr)
                answer.u16(*list);
        });
}

extern "C" int __wrap_diag_register_dci_stream_proc(int client, void (*logs)(unsigned char* ptr, int len),
                                                    void (*events)(unsigned char* ptr, int len)) {
    if (!trace_of_session())
        return __real_diag_register_dci_stream_proc(client, logs, events);
    session().logs = logs;
    session().events = events;
    return traced(wire::kDiagDciStreams, Writer().i32(client), [&] {
        return __real_diag_register_dci_stream_proc(client, logs != nullptr ? take_logs : nullptr,
                                                    events != nullptr ? take_events : nullptr);
    });
}

extern "C" int __wrap_diag_send_dci_async_req(int client, unsigned char* buf, int len, unsigned char* rsp,
                                              int rsp_len,
                                              void (*cb)(unsigned char* ptr, int len, void* data),
                                              void* data) {
    if (!trace_of_session())
        return __real_diag_send_dci_async_req(client, buf, len, rsp, rsp_len, cb, data);
    Session::DciListener* listener = nullptr;
    {
        const std::lock_guard<std::mutex> lock(session().mutex);
        listener = &(session().dci_listeners[client] = {cb, data});
    }
    return traced(wire::kDiagDciSend, Writer().i32(client).bytes(view(buf, len)), [&] {
        return __real_diag_send_dci_async_req(client, buf, len, rsp, rsp_len, respond_to_dci, listener);
    });
}

extern "C" int __wrap_diag_release_dci_client(int* client) {
    return traced(wire::kDiagDciRelease, Writer().i32(client != nullptr ? *client : 0),
                  [&] { return __real_diag_release_dci_client(client); });
}
