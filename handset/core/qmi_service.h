// What a QMI service of the modem must say: its number and how it answers. Framing, connections, faults and
// the wire log are QmiPort's; a new service is one class derived from QmiService, its lines in subjects.h,
// and its rows in the table of messages.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "describe.h"
#include "port.h"
#include "qmi_error.h"
#include "wire.h"

namespace handset {

class QmiPort;
class Section;

struct QmiRequest {
    ConnectionId connection = 0;
    uint16_t message = 0;
    wire::View body;  // well-formed TLVs
    const messages::QmiMessage& decoded;

    /// The value of a TLV, empty when it is absent.
    wire::View tlv(uint8_t type) const { return wire::find_tlv(body, type).value_or(wire::View()); }
};

struct QmiAnswer {
    wire::Bytes body;
    std::chrono::milliseconds delay{0};
};

class QmiService {
public:
    /// Puts the service into the handset, which publishes it with its other ports. The table of messages has
    /// its name.
    QmiService(Core& core, const char* name);
    virtual ~QmiService();
    QmiService(const QmiService&) = delete;
    QmiService& operator=(const QmiService&) = delete;

    uint16_t id() const { return id_; }

    /// Carries a request out. A message that the service does not have is
    /// answered with `refusal(kQmiErrorInvalidMessage)`.
    virtual QmiAnswer handle(const QmiRequest& request) = 0;

    /// The body of an answer with the given error and nothing else; 0 is success. The standard result, unless
    /// the service has another.
    virtual wire::Bytes refusal(uint32_t error) const;

    /// Bodies that faults ask for; only the extension service knows payloads.
    virtual wire::Bytes modem_result(const QmiRequest&, int32_t) const { return {}; }
    virtual wire::Bytes payload(wire::View) const { return {}; }

    virtual void connection_opened(ConnectionId) {}
    virtual void connection_closed(ConnectionId) {}

    /// Sends an indication to all that are connected.
    void indicate(uint16_t message, const wire::Bytes& body);

protected:
    /// Sends one to a single connection.
    void indicate(uint16_t message, const wire::Bytes& body, ConnectionId connection);

private:
    const uint16_t id_;
    const std::unique_ptr<QmiPort> port_;
};

/// A service to which no other subject speaks: it needs no header, for this is all that is seen of its file.
/// Copies share what was read.
struct LoneService {
    /// Its section of the profile.
    const char* section;
    std::function<void(Section&)> read;
    /// Puts it into a handset, as what was read wants it.
    std::function<std::unique_ptr<QmiService>(Core&)> make;
};

/// A `Service` is made from the core and a `Profile`, which has its own read_profile().
template <typename Service, typename Profile>
LoneService lone_service(const char* section) {
    const auto profile = std::make_shared<Profile>();
    return {section, [profile](Section& found) { read_profile(found, *profile); },
            [profile](Core& core) { return std::make_unique<Service>(core, *profile); }};
}

/// A message by its name in the table of messages, or its number. A name alone may mean several services: it
/// is looked for in the one that is given.
void read_message(Section& section, const char* key, std::optional<uint32_t> service,
                  std::optional<uint32_t>& message);

/// Puts services in, in their order.
std::vector<std::unique_ptr<QmiService>> make_all(Core& core, const std::vector<LoneService>& services);

/// The standard result, TLV 0x02; error 0 is success. Further TLVs go behind it.
wire::Writer qmi_result(uint32_t error = 0);

class QmiPort : public Port {
public:
    QmiPort(Core& core, QmiService& service);

    void indicate(uint16_t message, const wire::Bytes& body);
    void indicate(uint16_t message, const wire::Bytes& body, ConnectionId connection);
    /// The line of a packet that leaves. What was asked tells how to understand an answer; null: nothing.
    WireLine packet_line(ConnectionId connection, wire::View packet, const messages::Asked* asked);
    WireLine no_answer_line(ConnectionId connection, uint16_t transaction);

protected:
    void handle(ConnectionId connection, wire::View packet) override;
    WireLine unasked_line(ConnectionId connection, wire::View packet) override {
        return packet_line(connection, packet, nullptr);
    }
    void connection_opened(ConnectionId connection) override { service_.connection_opened(connection); }
    void connection_closed(ConnectionId connection) override { service_.connection_closed(connection); }

private:
    QmiService& service_;
};

}  // namespace handset
