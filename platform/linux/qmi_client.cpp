#include "qmi_client.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <memory>

#include "connection.h"
#include "modem.h"
#include "note.h"
#include "qmi_codec.h"
#include "qmi_notifier.h"

namespace seam {

namespace {

using Outcome = Connection::Outcome;

// What opening a service that was found may take: it may be slow to accept.
constexpr std::chrono::seconds kOpenLimit{5};

constexpr uint32_t request_key(uint16_t transaction, uint16_t message) {
    return static_cast<uint32_t>(transaction) << 16 | message;
}

// A response is told by its first five bytes: one that is cut short behind them is still that
// request's, and bad.
std::optional<uint32_t> answered_request(wire::View packet) {
    const auto head = wire::decode_qmi_head(packet);
    if (!head || head->flags != wire::kQmiResponse)
        return std::nullopt;
    return request_key(head->transaction, head->message);
}

constexpr Protocol kQmiProtocol{"QMI client", wire::kQmiPacketMax, answered_request};

class Client {
public:
    Client(std::unique_ptr<Channel> channel, qmi_idl_service_object_type service, qmi_client_ind_cb ind_cb,
           void* ind_cb_data)
        : service_(service),
          ind_cb_(ind_cb),
          ind_cb_data_(ind_cb_data),
          connection_(
              std::move(channel), kQmiProtocol, [this](wire::Bytes& packet) { indicate(packet); },
              [this] { report_loss(); },
              trace::Connection::to_service(static_cast<uint16_t>(service->service_id))) {}

    qmi_idl_service_object_type service() const { return service_; }
    Connection& connection() { return connection_; }

    void set_error_cb(qmi_client_error_cb error_cb, void* data) {
        {
            const std::lock_guard<std::mutex> lock(mutex_);
            error_cb_ = error_cb;
            error_cb_data_ = data;
        }
        connection_.repeat_end();
    }

    qmi_client_error_type send(const qmi_idl_message& request, const void* structure,
                               const qmi_idl_message& response, void* result,
                               std::chrono::milliseconds limit) {
        auto packet = encode_message(request, structure, wire::kQmiHeaderSize);
        if (!packet || packet->size() > wire::kQmiPacketMax)
            return QMI_INTERNAL_ERR;
        const uint16_t transaction = next_transaction();
        wire::put_head({wire::kQmiRequest, transaction, request.message_id, {}}, *packet);
        wire::Bytes answer;
        switch (connection_.exchange(*packet, request_key(transaction, request.message_id), limit, answer)) {
            case Outcome::kAnswered:
                return decode_answer(response, answer, result);
            case Outcome::kEnded:
                connection_.wait_for_end();
                return QMI_SERVICE_ERR;
            case Outcome::kTimedOut:
                return QMI_TIMEOUT_ERR;
            default:
                return QMI_INTERNAL_ERR;
        }
    }

private:
    static qmi_client_error_type decode_answer(const qmi_idl_message& response, const wire::Bytes& answer,
                                               void* result) {
        const auto packet = wire::decode_qmi(answer);
        return packet && decode_message(response, packet->body, result) ? QMI_NO_ERR : QMI_INTERNAL_ERR;
    }

    /// Never 0, which stands for an indication.
    uint16_t next_transaction() {
        uint16_t transaction = 0;
        while (transaction == 0)
            transaction = ++last_transaction_;
        return transaction;
    }

    void indicate(wire::Bytes& bytes) {
        const auto packet = wire::decode_qmi(bytes);
        if (!packet || packet->flags != wire::kQmiIndication || ind_cb_ == nullptr)
            return;
        ind_cb_(this, packet->message, bytes.data() + wire::kQmiHeaderSize,
                static_cast<unsigned>(packet->body.size), ind_cb_data_);
    }

    void report_loss() {
        qmi_client_error_cb error_cb = nullptr;
        void* data = nullptr;
        {
            const std::lock_guard<std::mutex> lock(mutex_);
            if (!is_loss_told_)
                error_cb = error_cb_;
            data = error_cb_data_;
            is_loss_told_ |= error_cb != nullptr;
        }
        if (error_cb != nullptr)
            error_cb(this, QMI_SERVICE_ERR, data);
    }

    const qmi_idl_service_object_type service_;
    const qmi_client_ind_cb ind_cb_;
    void* const ind_cb_data_;
    std::atomic<uint16_t> last_transaction_{0};
    std::mutex mutex_;  // guards the error callback
    qmi_client_error_cb error_cb_ = nullptr;
    void* error_cb_data_ = nullptr;
    bool is_loss_told_ = false;
    Connection connection_;  // last: its thread uses the others
};

/// The clients that are not released. A handle is looked up here before it is used, so that one which was
/// released, or is released while another thread sends, is answered and not followed. Never destroyed.
class Clients {
public:
    void add(std::shared_ptr<Client> client) {
        const std::lock_guard<std::mutex> lock(mutex_);
        clients_.push_back(std::move(client));
    }

    std::shared_ptr<Client> find(const void* handle) {
        const std::lock_guard<std::mutex> lock(mutex_);
        const auto found = at(handle);
        return found == clients_.end() ? nullptr : *found;
    }

    std::shared_ptr<Client> remove(const void* handle) {
        const std::lock_guard<std::mutex> lock(mutex_);
        const auto found = at(handle);
        if (found == clients_.end())
            return nullptr;
        auto client = std::move(*found);
        clients_.erase(found);
        return client;
    }

private:
    std::vector<std::shared_ptr<Client>>::iterator at(const void* handle) {
        return std::find_if(clients_.begin(), clients_.end(),
                            [&](const std::shared_ptr<Client>& client) { return client.get() == handle; });
    }

    std::mutex mutex_;
    std::vector<std::shared_ptr<Client>> clients_;
};

Clients& clients() {
    static auto* all = new Clients;
    return *all;
}

qmi_client_error_type make_client(std::unique_ptr<Channel> channel, qmi_idl_service_object_type service,
                                  qmi_client_ind_cb ind_cb, void* ind_cb_data, qmi_client_type* handle) {
    auto client = std::make_shared<Client>(std::move(channel), service, ind_cb, ind_cb_data);
    clients().add(client);
    // The first indication may come before this returns, and its callback may use the handle that
    // it is given.
    *handle = client.get();
    if (client->connection().start())
        return QMI_NO_ERR;
    *handle = nullptr;
    clients().remove(client.get());
    return QMI_INTERNAL_ERR;
}

void zero(void* bytes, size_t size) {
    if (bytes != nullptr)
        memset(bytes, 0, size);
}

bool holds(const void* structure, size_t size, const qmi_idl_message& message) {
    return size >= message.c_struct_len && (structure != nullptr || message.c_struct_len == 0);
}

}  // namespace

}  // namespace seam

using seam::clients;
using seam::Clock;

extern "C" qmi_client_error_type qmi_client_init(qmi_service_info* instance,
                                                 qmi_idl_service_object_type service,
                                                 qmi_client_ind_cb ind_cb, void* ind_cb_data,
                                                 qmi_client_os_params*, qmi_client_type* client) {
    if (instance == nullptr || service == nullptr || client == nullptr)
        return QMI_INTERNAL_ERR;
    *client = nullptr;
    if (instance->info[0] != service->service_id)
        return QMI_SERVICE_ERR;
    auto channel = seam::modem()->road->open(service->service_id, instance, Clock::now() + seam::kOpenLimit);
    if (!channel)
        return QMI_SERVICE_ERR;
    return seam::make_client(std::move(channel), service, ind_cb, ind_cb_data, client);
}

extern "C" qmi_client_error_type qmi_client_init_instance(qmi_idl_service_object_type service, unsigned int,
                                                          qmi_client_ind_cb ind_cb, void* ind_cb_data,
                                                          qmi_client_os_params*, uint32_t timeout_ms,
                                                          qmi_client_type* client) {
    if (service == nullptr || client == nullptr)
        return QMI_INTERNAL_ERR;
    *client = nullptr;
    const auto deadline = Clock::now() + std::chrono::milliseconds(timeout_ms);
    for (;;) {
        const auto now = Clock::now();
        const auto modem = seam::modem();
        auto channel = modem->road->open(service->service_id, nullptr, deadline);
        if (channel)
            return seam::make_client(std::move(channel), service, ind_cb, ind_cb_data, client);
        if (now >= deadline) {
            seam::note("no QMI service " + std::to_string(service->service_id) + ": " +
                       modem->road->absence());
            return QMI_TIMEOUT_ERR;
        }
        modem->road->wait_for_change({service->service_id}, deadline);
    }
}

extern "C" qmi_client_error_type qmi_client_register_error_cb(qmi_client_type handle,
                                                              qmi_client_error_cb error_cb,
                                                              void* err_cb_data) {
    const auto client = clients().find(handle);
    if (!client)
        return QMI_INTERNAL_ERR;
    client->set_error_cb(error_cb, err_cb_data);
    return QMI_NO_ERR;
}

extern "C" qmi_client_error_type qmi_client_send_msg_sync(qmi_client_type handle, unsigned int msg_id,
                                                          void* req, unsigned int req_len, void* resp,
                                                          unsigned int resp_len, unsigned int timeout_ms) {
    seam::zero(resp, resp_len);
    const auto client = clients().find(handle);
    if (!client)
        return QMI_INTERNAL_ERR;
    const auto* request = seam::find_message(client->service(), QMI_IDL_REQUEST, msg_id);
    const auto* response = seam::find_message(client->service(), QMI_IDL_RESPONSE, msg_id);
    if (request == nullptr || response == nullptr || !seam::holds(req, req_len, *request) ||
        !seam::holds(resp, resp_len, *response))
        return QMI_INTERNAL_ERR;
    return client->send(*request, req, *response, resp, std::chrono::milliseconds(timeout_ms));
}

extern "C" qmi_client_error_type qmi_client_message_decode(qmi_client_type handle,
                                                           qmi_idl_type_of_message_type type,
                                                           unsigned int msg_id, const void* src,
                                                           unsigned int src_len, void* dst,
                                                           unsigned int dst_len) {
    seam::zero(dst, dst_len);
    const auto client = clients().find(handle);
    if (!client || (src == nullptr && src_len != 0))
        return QMI_INTERNAL_ERR;
    const auto* message = seam::find_message(client->service(), type, msg_id);
    if (message == nullptr || !seam::holds(dst, dst_len, *message))
        return QMI_INTERNAL_ERR;
    return seam::decode_message(*message, {src, src_len}, dst) ? QMI_NO_ERR : QMI_INTERNAL_ERR;
}

extern "C" qmi_client_error_type qmi_client_release(qmi_client_type handle) {
    if (seam::release_notifier(handle))
        return QMI_NO_ERR;
    const auto client = clients().find(handle);
    if (!client || client->connection().is_own_thread() || !clients().remove(handle))
        return QMI_INTERNAL_ERR;
    client->connection().close();
    return QMI_NO_ERR;
}
