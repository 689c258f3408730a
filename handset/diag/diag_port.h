// The diag interface: one connection is one session of a diag library. It sends commands over the callback
// road, or over the DCI road as one of the clients that it registers; responses and streams come back as
// events. Nothing of a session outlives its connection.
#pragma once

#include <map>
#include <set>
#include <vector>

#include "diag_masks.h"
#include "diag_profile.h"
#include "port.h"

namespace handset {

class DiagResponder;

class DiagPort : public Port {
public:
    /// Both outlive it.
    DiagPort(Core& core, const DiagResponder& responder, const std::vector<DiagStream>& streams);

    /// Carries out an op; its answer may be due later than at once.
    Answer carry_out(ConnectionId connection, wire::View request);

    WireLine answer_line(ConnectionId connection, wire::View packet);
    WireLine no_answer_line(ConnectionId connection, uint8_t op);

protected:
    void handle(ConnectionId connection, wire::View packet) override;
    WireLine unasked_line(ConnectionId connection, wire::View packet) override {
        return answer_line(connection, packet);
    }
    void connection_closed(ConnectionId connection) override { sessions_.erase(connection); }

private:
    struct Session {
        bool open = false;
        std::set<int32_t> clients;    // of the DCI road
        std::set<int32_t> listeners;  // clients that get the streams
        DiagMasks masks;
    };

    struct Outcome {
        bool done = false;  // else refused
        wire::Bytes reply = {};
        std::chrono::milliseconds delay{0};  // of the answer
    };

    Outcome carry_out(ConnectionId connection, uint8_t op, wire::View request);
    Outcome send_command(ConnectionId connection, int32_t processor, wire::View command);
    Outcome send_dci_command(ConnectionId connection, int32_t client, wire::View command);
    bool has_processor(int32_t processor) const;

    Outcome respond(ConnectionId connection, int32_t client, const DiagResponse& response,
                    const std::vector<wire::Bytes>& events);

    void start_streams(ConnectionId connection, uint8_t op);
    void continue_stream(ConnectionId connection, const DiagStream& stream, uint32_t left,
                         std::chrono::milliseconds delay);

    /// Sends an event, unless its session or its client, 0 for none, is gone by then.
    void send_event(ConnectionId connection, int32_t client, const wire::Bytes& packet);

    const DiagResponder& responder_;
    const std::vector<DiagStream>& streams_;
    std::map<ConnectionId, Session> sessions_;
    int32_t last_client_ = 0;
};

}  // namespace handset
