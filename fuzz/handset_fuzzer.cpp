// Packets into the services of a handset that has just been booted: records of `u8 port` and a block. Of
// ports 1 to 4 (extension, UIM, statistics, SAR) the block is a request's `u16` message and its TLVs, of 0 a
// diag packet; with bit 7 it is the packet as it stands. What comes back is held against the client library's
// tables. The log is lines of printable text, and no file may appear outside the handset's folder.
#include <fcntl.h>

#include <fstream>
#include <iterator>
#include <string>

#include "event_loop.h"
#include "finding.h"
#include "ground.h"
#include "handset.h"
#include "input.h"
#include "packet_end.h"
#include "profile.h"
#include "qmi_codec.h"
#include "subjects.h"
#include "tables.h"

namespace {

struct Place {
    const char* socket;
    qmi_idl_service_object_type service;  // null: the tables are not known here
};

// Nothing here may wait for the handset, which is run in between.
host::UniqueFd call(const std::string& path) {
    auto fd = packet_socket(path, connect);
    fcntl(fd.get(), F_SETFL, O_NONBLOCK);
    return fd;
}

void check_qmi(const wire::Bytes& bytes, const Place& place) {
    const auto packet = wire::decode_qmi(bytes);
    require(packet.has_value(), "what the modem sends is a packet");
    const auto type = packet->flags == wire::kQmiResponse ? QMI_IDL_RESPONSE : QMI_IDL_INDICATION;
    const auto* message = seam::find_message(place.service, type, packet->message);
    if (message == nullptr)
        return;
    std::vector<uint8_t> structure(message->c_struct_len);
    require(seam::decode_message(*message, packet->body, structure.data()), "what the modem sends decodes");
}

void check_log(const std::string& path) {
    std::ifstream log(path);
    for (auto at = std::istreambuf_iterator<char>(log); at != std::istreambuf_iterator<char>(); ++at)
        require(*at == '\n' || static_cast<uint8_t>(*at) >= ' ', "the log is printable");
}

wire::Bytes packet_of(uint8_t port, bool is_qmi, Input& input) {
    wire::Bytes block = input.block();
    if (!is_qmi || (port & 0x80) != 0)
        return block;
    Input request(block.data(), block.size());
    const uint16_t message = request.u16();
    return wire::encode({wire::kQmiRequest, 1, message, request.rest()});
}

// What is ready now and what is due now.
void turn(handset::EventLoop& loop) {
    loop.after(std::chrono::milliseconds(0), [&] { loop.stop(); });
    loop.run();
    loop.drain();
}

void play(handset::EventLoop& loop, Input& input, const std::string& folder) {
    constexpr int kPacketsMax = 24;
    const Place places[] = {{"diag", nullptr},
                            {"qmi/65508", nullptr},
                            {"qmi/11", seam::uim_table()},
                            {"qmi/65509", seam::statistics_table()},
                            {"qmi/17", seam::sar_table()}};
    std::optional<PacketEnd> clients[std::size(places)];  // made anew when the modem has closed them
    for (int i = 0; i < kPacketsMax && !input.empty(); ++i) {
        const uint8_t port = input.u8();
        const size_t choice = (port & 0x7f) % std::size(places);
        const Place& place = places[choice];
        auto& client = clients[choice];
        if (!client)
            client.emplace(call(folder + "/" + place.socket));
        client->send(packet_of(port, choice != 0, input));
        turn(loop);
        auto packet = client->receive(0);
        for (; packet && !packet->empty(); packet = client->receive(0)) {
            if (choice != 0)
                check_qmi(*packet, place);
        }
        if (packet || !client->connected())
            client.reset();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const Ground ground;
    const std::string folder = ground.at("handset");
    setenv("VXK_AT_DEVICE", ground.at("smd8").c_str(), 1);
    Input input(data, size);
    {
        handset::EventLoop loop;
        handset::Handset phone(loop, folder,
                               handset::parse_profile(R"({"modem": {"restart_ms": 0}})", "profile"));
        play(loop, input, folder);
    }
    check_log(folder + "/log/wire.log");
    for (const auto& entry : std::filesystem::directory_iterator(ground.path()))
        require(entry.path() == folder, "a handset keeps to its folder");
    std::filesystem::remove_all(folder);
    return 0;
}
