#include "diag_link.h"

#include <sys/socket.h>
#include <sys/un.h>

#include <cstring>

#include "connection.h"
#include "folder_road.h"
#include "layout.h"
#include "note.h"

namespace seam {

namespace {

using Outcome = Connection::Outcome;

constexpr std::chrono::seconds kAnswerLimit{5};
constexpr std::chrono::seconds kConnectLimit{1};

constexpr int kOpenResult = 1;
constexpr int kSent = 0;
constexpr int kSendFailed = -1;
constexpr int kDciDone = 1001;
constexpr int kDciRefused = 1003;

std::optional<uint32_t> answered_op(wire::View packet) {
    if (!(packet.data[0] & wire::kDiagAnswer))
        return std::nullopt;
    return packet.data[0] & ~static_cast<unsigned>(wire::kDiagAnswer);
}

constexpr Protocol kFolderProtocol{"diag", wire::kDiagPacketMax, answered_op};

class FolderLink : public DiagLink {
public:
    FolderLink(std::unique_ptr<Channel> channel, OnEvent on_event)
        : connection_(
              std::move(channel), kFolderProtocol, std::move(on_event), [] {}, trace::Connection::to_diag()) {
    }

    bool open() {
        const auto reply = connection_.start() ? ask(wire::kDiagOpen, {}) : nullptr;
        return reply && reply->result() == kOpenResult;
    }

    std::unique_ptr<DiagReply> ask(uint8_t op, const wire::Writer& payload) override {
        wire::Writer packet;
        packet.u8(op).bytes(payload.data());
        wire::Bytes answer;
        if (connection_.exchange(packet.data(), op, kAnswerLimit, answer) != Outcome::kAnswered)
            return nullptr;
        return std::make_unique<DiagReply>(std::move(answer));
    }
    bool has_ended() override { return connection_.has_ended(); }
    void close() override { connection_.close(); }

private:
    Connection connection_;
};

class FolderDiag : public DiagRoad {
public:
    explicit FolderDiag(std::string folder) : folder_(std::move(folder)) {}

    std::shared_ptr<DiagLink> open(DiagLink::OnEvent on_event) override {
        const auto address = host::socket_address(folder_ + "/" + host::kDiagPlace);
        auto channel = address ? socket_channel(connect_to(*address, Clock::now() + kConnectLimit)) : nullptr;
        if (!channel) {
            note("no diag interface: no handset runs in " + folder_ +
                 ". Start one with: vxk-handset serve --dir " + folder_);
            return nullptr;
        }
        const auto link = std::make_shared<FolderLink>(std::move(channel), std::move(on_event));
        return link->open() ? link : nullptr;
    }

private:
    const std::string folder_;
};

std::optional<uint32_t> no_answer(wire::View) {
    return std::nullopt;
}

constexpr Protocol kRouterProtocol{"diag", wire::kDiagPacketMax, no_answer};

/// The router's packets are commands and responses alone: the ops are answered here, and traced as a handset
/// would see them.
class RouterLink : public DiagLink {
public:
    RouterLink(std::unique_ptr<Channel> channel, OnEvent on_event)
        : connection_(
              std::move(channel), kRouterProtocol,
              [this, on_event = std::move(on_event)](wire::Bytes& packet) {
                  constexpr uint8_t kLocalProcessor = 0;
                  packet.insert(packet.begin(), {wire::kDiagEventResponse, kLocalProcessor});
                  if (trace_) {
                      trace_->received(packet);
                      trace_->flush();
                  }
                  on_event(packet);
              },
              [this] { end_trace(trace::Connection::By::kModem); }, nullptr) {}

    bool open() { return connection_.start() && ask(wire::kDiagOpen, {})->result() == kOpenResult; }

    std::unique_ptr<DiagReply> ask(uint8_t op, const wire::Writer& payload) override {
        if (trace_)
            trace_->sent(wire::Writer().u8(op).bytes(payload.data()).data());
        auto answer = wire::Writer().u8(op | wire::kDiagAnswer).i32(carry_out(op, payload)).take();
        if (trace_) {
            trace_->received(answer);
            trace_->flush();
        }
        return std::make_unique<DiagReply>(std::move(answer));
    }
    bool has_ended() override { return connection_.has_ended(); }
    void close() override {
        connection_.close();
        end_trace(trace::Connection::By::kClient);
    }

private:
    int carry_out(uint8_t op, const wire::Writer& payload) {
        int result = 0;
        switch (op) {
            case wire::kDiagOpen:
                result = kOpenResult;
                break;
            case wire::kDiagSend:
                result = send(payload.data());
                break;
            case wire::kDiagDciRegister:
                note("the open diag router has no DCI road; the callback road is mode 0");
                result = kDciRefused;
                break;
            case wire::kDiagDciSignal:
            case wire::kDiagDciSupport:
            case wire::kDiagDciStreams:
            case wire::kDiagDciSend:
                result = kDciRefused;
                break;
            case wire::kDiagDciRelease:
                result = kDciDone;
                break;
            default:
                break;
        }
        return result;
    }

    void end_trace(trace::Connection::By by) {
        if (!trace_)
            return;
        trace_->closed(by);
        trace_->flush();
    }

    int send(wire::View payload) {
        wire::Reader reader(payload);
        reader.i32();  // the processor
        Deadline deadline(kAnswerLimit);
        return connection_.send(reader.rest(), deadline) == Outcome::kAnswered ? kSent : kSendFailed;
    }

    const std::unique_ptr<trace::Connection> trace_ = trace::Connection::to_diag();
    Connection connection_;  // last: its thread uses the other
};

class RouterDiag : public DiagRoad {
public:
    std::shared_ptr<DiagLink> open(DiagLink::OnEvent on_event) override {
        // An abstract address is as long as it is given: the zeros to the end are a part of it.
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        memcpy(address.sun_path + 1, "diag", 4);
        auto channel = socket_channel(connect_to(address, Clock::now() + kConnectLimit));
        if (!channel) {
            note("no diag interface: no open diag router runs on this machine");
            return nullptr;
        }
        const auto link = std::make_shared<RouterLink>(std::move(channel), std::move(on_event));
        return link->open() ? link : nullptr;
    }
};

}  // namespace

std::unique_ptr<DiagRoad> folder_diag(std::string folder) {
    return std::make_unique<FolderDiag>(std::move(folder));
}

std::unique_ptr<DiagRoad> router_diag() {
    return std::make_unique<RouterDiag>();
}

}  // namespace seam
