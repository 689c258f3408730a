// Exchanges with the modem. The floor is a bare ping-pong: packets of the same size over the same kind of
// socket, from one thread to another and back, with nothing done to them. To see what the tool and the
// library cost, the modem too is a thread that has its answers ready; what the simulated handset adds is a
// line of its own. All figures are of one exchange.
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <thread>

#include "benches.h"
#include "kelvra_extend_nvefs.h"
#include "kelvra_log.h"
#include "qmi_client.h"
#include "sides.h"
#include "wire.h"

namespace bench {
namespace {

// A packet of the extension service: header, id, length, payload.
constexpr uint16_t kServiceId = 65508;
constexpr uint16_t kMessageId = 2;
constexpr size_t kPayloadMax = 512;
constexpr size_t kPayloadAt = 7 + 7 + 7 + 3;
static_assert(kRequestSize == kPayloadAt + kPayloadMax);

// What a modem sends of a file in one exchange, behind the head of its payload.
constexpr size_t kChunk = 414;
constexpr size_t kChunkAnswerSize = kPayloadAt + 20 + kChunk;

/// Answers what arrives at one end of a connection until the other end is closed. A thread of its own, which
/// nobody waits for.
using Answer = std::function<wire::View(wire::View request)>;
void start_answering(int fd, const Answer& answer) {
    std::thread([fd, answer] {
        wire::Bytes packet(wire::kQmiPacketMax);
        ssize_t size = 0;
        while ((size = recv(fd, packet.data(), packet.size(), 0)) > 0) {
            const wire::View reply = answer({packet.data(), static_cast<size_t>(size)});
            send(fd, reply.data, reply.size, MSG_NOSIGNAL);
        }
        close(fd);
    }).detach();
}

Side ping_pong_side(size_t request_size, size_t answer_size) {
    std::array<int, 2> ends{};
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0)
        give_up("no sockets");
    start_answering(ends[1],
                    [answer_size](wire::View request) { return wire::View(request.data, answer_size); });
    const auto exchange = [fd = ends[0], packet = wire::Bytes(request_size)]() mutable {
        send(fd, packet.data(), packet.size(), MSG_NOSIGNAL);
        recv(fd, packet.data(), packet.size(), 0);
    };
    return {
        "bare ping-pong, " + std::to_string(request_size) + " and " + std::to_string(answer_size) + " bytes",
        exchange};
}

// The modem as a thread.

wire::Bytes chunk_answer(size_t file_length, size_t length) {
    wire::Writer payload;
    payload.u32(0).u32(static_cast<uint32_t>(file_length)).u32(static_cast<uint32_t>(length)).u32(0).u32(0);
    payload.bytes(wire::Bytes(length, 0xA5));
    wire::Writer body;
    body.u8(1).u16(4).u32(0);
    body.u8(2).u16(4).u32(static_cast<uint32_t>(payload.size()));
    body.tlv(0x10, payload.data());
    return wire::encode({wire::kQmiResponse, 0, kMessageId, body.take()});
}

/// Answers requests for the chunks of one file, and any other request with its own bytes.
Answer ready_modem(size_t file_length) {
    constexpr size_t kIdAt = 7 + 3;
    constexpr size_t kOffsetAt = kPayloadAt + 84;
    constexpr uint8_t kFileAccess = 2;
    return [file_length, chunk = chunk_answer(file_length, kChunk),
            last_chunk = chunk_answer(file_length, file_length % kChunk),
            echo = wire::Bytes()](wire::View request) mutable {
        wire::Bytes* reply = &echo;
        if (request.size == kRequestSize && request.data[kIdAt] == kFileAccess) {
            const size_t offset = wire::Reader({request.data + kOffsetAt, 4}).u32();
            reply = offset + kChunk <= file_length ? &chunk : &last_chunk;
            memcpy(reply->data(), request.data, 3);
        } else {
            echo.assign(request.data, request.data + request.size);
        }
        reply->front() = wire::kQmiResponse;
        return wire::View(*reply);
    };
}

/// A folder of its own, in that of the handset, in which the modem is `answer`.
void publish_modem(const Answer& answer) {
    const char* const handset = getenv("VXK_HANDSET_DIR");
    if (handset == nullptr)
        give_up("no handset: run it by scripts/bench");
    const std::string folder = std::string(handset) + "/bench";
    setenv("VXK_HANDSET_DIR", folder.c_str(), 1);
    mkdir(folder.c_str(), 0700);
    mkdir((folder + "/qmi").c_str(), 0700);
    const std::string path = folder + "/qmi/" + std::to_string(kServiceId);
    const int listener = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    if (bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        listen(listener, SOMAXCONN) != 0)
        give_up("no service at " + path);
    std::thread([listener, answer] {
        for (;;)
            start_answering(accept(listener, nullptr, nullptr), answer);
    }).detach();
}

// The library's side of one exchange, with a description of the message that is the bench's own.

struct Message {
    uint32_t id;
    uint32_t data_len;
    uint8_t data_valid;
    uint8_t data[kPayloadMax];
};

constexpr qmi_idl_element number_element(uint8_t tlv, size_t offset) {
    qmi_idl_element element{};
    element.tlv = tlv;
    element.kind = QMI_IDL_INTEGER;
    element.wire_width = 4;
    element.c_width = 4;
    element.offset = static_cast<uint32_t>(offset);
    return element;
}

constexpr qmi_idl_element data_element() {
    qmi_idl_element element = number_element(0x10, offsetof(Message, data));
    element.flags = QMI_IDL_OPTIONAL;
    element.kind = QMI_IDL_ARRAY;
    element.wire_width = 1;
    element.c_width = 1;
    element.valid_offset = offsetof(Message, data_valid);
    element.count_offset = offsetof(Message, data_len);
    element.count_width = 4;
    element.bound = kPayloadMax;
    element.stride = 1;
    return element;
}

constexpr qmi_idl_element kElements[] = {number_element(1, offsetof(Message, id)),
                                         number_element(2, offsetof(Message, data_len)), data_element()};
constexpr qmi_idl_message kMessages[] = {{QMI_IDL_REQUEST, kMessageId, sizeof(Message), kElements, 3},
                                         {QMI_IDL_RESPONSE, kMessageId, sizeof(Message), kElements, 3}};

}  // namespace

Side library_side(uint32_t service_id) {
    static qmi_idl_service_object service = {6, 1, 0, 529, kMessages, 2};
    service.service_id = service_id;
    qmi_client_type client = nullptr;
    if (qmi_client_init_instance(&service, QMI_CLIENT_INSTANCE_ANY, nullptr, nullptr, nullptr, 1000,
                                 &client) != QMI_NO_ERR)
        give_up("the Linux library finds no service");
    const auto exchange = [client] {
        static Message request{4, kPayloadMax, 1, {}};
        static Message response;
        if (qmi_client_send_msg_sync(client, kMessageId, &request, sizeof request, &response, sizeof response,
                                     3000) != QMI_NO_ERR)
            give_up("an exchange through the Linux library failed");
    };
    return {"exchange through the library", exchange};
}

namespace {

/// A whole read of a file of the modem; its parts are the exchanges.
Side read_side(const std::string& what, uint32_t length) {
    const auto read = [path = "/bench/" + std::to_string(length), length] {
        static std::array<uint8_t, kEfsFileLimit> content;
        uint32_t size = content.size();
        if (kelvra_efs_read(0, path.c_str(), static_cast<int>(path.size()), content.data(), &size) != 0 ||
            size != length)
            give_up("cannot read " + path);
    };
    return {what + ", " + std::to_string(length) + " bytes", read,
            std::ceil(static_cast<double>(length) / kChunk)};
}

void write_file(uint32_t length) {
    wire::Bytes content(length);
    for (size_t i = 0; i < content.size(); ++i)
        content[i] = static_cast<uint8_t>(i * 37);
    const std::string path = "/bench/" + std::to_string(length);
    if (kelvra_efs_write(0, path.c_str(), static_cast<int>(path.size()), content.data(), length) != 0)
        give_up("cannot write " + path);
}

constexpr uint32_t kFileLength = 100'000;

// What a user has, beyond the tool's own work in an exchange: three lines in the system log, and a modem that
// decodes every packet and writes it into its wire log. Both cost as much as the bare exchange.
constexpr double kWithCopiesLimit = 3;
constexpr double kWithHandsetLimit = 3;

}  // namespace

void compare_exchanges(Table& table) {
    publish_modem(ready_modem(kFileLength));
    table.compare(library_side(kServiceId), ping_pong_side(kRequestSize, kRequestSize), 1.5);

    const Side floor = ping_pong_side(kRequestSize, kChunkAnswerSize);
    const int state = g_adb_log_state.exchange(0);
    table.compare(read_side("EFS read, no log copies", kFileLength), floor, 2);
    g_adb_log_state = state;
    table.compare(read_side("EFS read", kFileLength), floor, kWithCopiesLimit);
}

void compare_handset(Table& table) {
    for (const uint32_t length : {10'000U, 50'000U, kFileLength})
        write_file(length);
    const Side whole = read_side("EFS read, vxk-handset", kFileLength);
    table.compare(whole, ping_pong_side(kRequestSize, kChunkAnswerSize), kWithHandsetLimit);
    table.compare(whole, read_side("the same", 10'000), kGrowthLimit);
    table.compare(whole, read_side("the same", 50'000), kGrowthLimit);
}

}  // namespace bench
