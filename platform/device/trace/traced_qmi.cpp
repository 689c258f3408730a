// The SDK's QMI client library, seen from above: each call goes on to it, and is noted when VXK_TRACE asks
// for that. Its packets are not seen here; they are made again from what the caller gives and gets.
#include <atomic>
#include <map>
#include <memory>
#include <mutex>

#include "modem_statistics_v01.h"
#include "network_access_service_v01.h"
#include "qmi_client.h"
#include "sar_v01.h"
#include "structures.h"
#include "trace.h"
#include "user_identity_module_v01.h"
#include "wrapped.h"

namespace device {
namespace {

/// A service of the tool's; the number of one that the tool describes itself is the extension channel's.
struct Service {
    uint16_t id;
    const void* description;
};

Service identify(qmi_idl_service_object_type object) {
    constexpr uint16_t kExtension = 0xFFE4;
    if (object == uim_get_service_object_internal_v01(UIM_V01_IDL_MAJOR_VERS, UIM_V01_IDL_MINOR_VERS,
                                                      UIM_V01_IDL_TOOL_VERS))
        return {UIM_SERVICE_ID, nullptr};
    if (object == vs_get_service_object_internal_v01(VS_V01_IDL_MAJOR_VERS, VS_V01_IDL_MINOR_VERS,
                                                     VS_V01_IDL_TOOL_VERS))
        return {VS_SERVICE_ID, nullptr};
    if (object == sar_get_service_object_internal_v01(SAR_V01_IDL_MAJOR_VERS, SAR_V01_IDL_MINOR_VERS,
                                                      SAR_V01_IDL_TOOL_VERS))
        return {SAR_SERVICE_ID, nullptr};
    if (object == nas_get_service_object_internal_v01(NAS_V01_IDL_MAJOR_VERS, NAS_V01_IDL_MINOR_VERS,
                                                      NAS_V01_IDL_TOOL_VERS))
        return {NAS_SERVICE_ID, nullptr};
    return {kExtension, object};
}

struct Client {
    Service service;
    std::unique_ptr<trace::Connection> trace;
    qmi_client_ind_cb ind_cb;
    void* ind_cb_data;
    qmi_client_error_cb error_cb = nullptr;
    void* error_cb_data = nullptr;
    std::atomic<uint16_t> last_transaction{0};
};

std::mutex& mutex() {
    static auto* the_one = new std::mutex;
    return *the_one;
}

/// The clients that are traced, under mutex(). Never destroyed.
std::map<qmi_client_type, std::shared_ptr<Client>>& clients() {
    static auto* all = new std::map<qmi_client_type, std::shared_ptr<Client>>;
    return *all;
}

std::shared_ptr<Client> find(qmi_client_type handle) {
    const std::lock_guard<std::mutex> lock(mutex());
    const auto found = clients().find(handle);
    return found == clients().end() ? nullptr : found->second;
}

void indicate(qmi_client_type handle, unsigned message, void* body, unsigned size, void* data) {
    const auto* client = static_cast<Client*>(data);
    client->trace->received(
        wire::encode({wire::kQmiIndication, 0, static_cast<uint16_t>(message), {body, size}}));
    client->trace->flush();
    if (client->ind_cb != nullptr)
        client->ind_cb(handle, message, body, size, client->ind_cb_data);
}

void lose(qmi_client_type handle, qmi_client_error_type error, void* data) {
    auto* client = static_cast<Client*>(data);
    client->trace->closed(trace::Connection::By::kModem);
    client->trace->flush();
    client->error_cb(handle, error, client->error_cb_data);
}

/// Connects by `connect`, which takes the callback and its data.
template <typename Connect>
qmi_client_error_type connect_traced(qmi_idl_service_object_type object, qmi_client_ind_cb ind_cb, void* data,
                                     qmi_client_type* handle, const Connect& connect) {
    if (!trace::is_on())
        return connect(ind_cb, data);
    auto client = std::make_shared<Client>();
    client->service = identify(object);
    client->trace = trace::Connection::to_service(client->service.id);
    client->ind_cb = ind_cb;
    client->ind_cb_data = data;
    const qmi_client_error_type error = connect(indicate, client.get());
    if (error == QMI_NO_ERR) {
        const std::lock_guard<std::mutex> lock(mutex());
        clients()[*handle] = std::move(client);
    }
    return error;
}

/// A packet around the TLVs of a structure; around nothing where they are not known.
wire::Bytes packet_of(const Client& client, uint8_t flags, uint16_t transaction, unsigned message,
                      const void* structure, unsigned size) {
    const auto body = seam::encode_structure(client.service.id, client.service.description,
                                             flags == wire::kQmiRequest, message, structure, size);
    return wire::encode({flags, transaction, static_cast<uint16_t>(message), body.value_or(wire::Bytes())});
}

}  // namespace
}  // namespace device

using namespace device;

extern "C" qmi_client_error_type __wrap_qmi_client_init(qmi_service_info* instance,
                                                        qmi_idl_service_object_type service,
                                                        qmi_client_ind_cb ind_cb, void* data,
                                                        qmi_client_os_params* signal,
                                                        qmi_client_type* client) {
    return connect_traced(service, ind_cb, data, client, [&](qmi_client_ind_cb cb, void* cb_data) {
        return __real_qmi_client_init(instance, service, cb, cb_data, signal, client);
    });
}

extern "C" qmi_client_error_type __wrap_qmi_client_init_instance(qmi_idl_service_object_type service,
                                                                 unsigned instance, qmi_client_ind_cb ind_cb,
                                                                 void* data, qmi_client_os_params* signal,
                                                                 uint32_t timeout_ms,
                                                                 qmi_client_type* client) {
    return connect_traced(service, ind_cb, data, client, [&](qmi_client_ind_cb cb, void* cb_data) {
        return __real_qmi_client_init_instance(service, instance, cb, cb_data, signal, timeout_ms, client);
    });
}

extern "C" qmi_client_error_type __wrap_qmi_client_register_error_cb(qmi_client_type handle,
                                                                     qmi_client_error_cb error_cb,
                                                                     void* data) {
    const auto client = find(handle);
    if (!client || error_cb == nullptr)
        return __real_qmi_client_register_error_cb(handle, error_cb, data);
    client->error_cb = error_cb;
    client->error_cb_data = data;
    return __real_qmi_client_register_error_cb(handle, lose, client.get());
}

extern "C" qmi_client_error_type __wrap_qmi_client_send_msg_sync(qmi_client_type handle, unsigned message,
                                                                 void* req, unsigned req_len, void* resp,
                                                                 unsigned resp_len, unsigned timeout_ms) {
    const auto client = find(handle);
    if (!client)
        return __real_qmi_client_send_msg_sync(handle, message, req, req_len, resp, resp_len, timeout_ms);
    uint16_t transaction = 0;
    while (transaction == 0)
        transaction = ++client->last_transaction;
    const auto request = packet_of(*client, wire::kQmiRequest, transaction, message, req, req_len);
    client->trace->sent(request);
    client->trace->flush_in_passing();
    const qmi_client_error_type error =
        __real_qmi_client_send_msg_sync(handle, message, req, req_len, resp, resp_len, timeout_ms);
    if (error == QMI_NO_ERR)
        client->trace->received(packet_of(*client, wire::kQmiResponse, transaction, message, resp, resp_len));
    else if (error == QMI_SERVICE_ERR)
        client->trace->closed(trace::Connection::By::kModem);
    else
        client->trace->gave_up(request);
    client->trace->flush_in_passing();
    return error;
}

extern "C" qmi_client_error_type __wrap_qmi_client_release(qmi_client_type handle) {
    std::shared_ptr<Client> client;
    {
        const std::lock_guard<std::mutex> lock(mutex());
        const auto found = clients().find(handle);
        if (found != clients().end()) {
            client = std::move(found->second);
            clients().erase(found);
        }
    }
    const qmi_client_error_type error = __real_qmi_client_release(handle);
    if (client) {
        client->trace->closed(trace::Connection::By::kClient);
        client->trace->flush();
    }
    return error;
}
