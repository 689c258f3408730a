// What programs send to a handset that has just been booted: records of `u8 port` and a block. Of ports 1 to
// 4 (extension, UIM, statistics, SAR) the block is a request's `u16` message and its TLVs, of 0 a diag
// packet, of 5 a command to the diagnostic terminal; with bit 7 it is what is sent as it stands. Of 6 it is
// what is written to the AT channel. What comes back is held against the client library's tables and the form
// of diag frames. The log is lines of printable text, and no file may appear outside the handset's folder.
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <fstream>
#include <iterator>
#include <string>

#include "diag_frame.h"
#include "event_loop.h"
#include "finding.h"
#include "ground.h"
#include "handset.h"
#include "input.h"
#include "modem_statistics_v01.h"
#include "profile.h"
#include "qmi_codec.h"
#include "sar_v01.h"
#include "subjects.h"
#include "user_identity_module_v01.h"
#include "wire.h"

namespace {

struct Place {
    const char* name;
    qmi_idl_service_object_type service;  // null: the tables are not known here
};

enum Port { kDiag, kExtension, kUim, kStatistics, kSar, kDiagTerminal, kAt, kPorts };

std::array<Place, kPorts> places() {
    return {{
        {"diag", nullptr},
        {"qmi/65508", nullptr},
        {"qmi/11", uim_get_service_object_internal_v01(UIM_V01_IDL_MAJOR_VERS, UIM_V01_IDL_MINOR_VERS,
                                                       UIM_V01_IDL_TOOL_VERS)},
        {"qmi/65509", vs_get_service_object_internal_v01(VS_V01_IDL_MAJOR_VERS, VS_V01_IDL_MINOR_VERS,
                                                         VS_V01_IDL_TOOL_VERS)},
        {"qmi/17", sar_get_service_object_internal_v01(SAR_V01_IDL_MAJOR_VERS, SAR_V01_IDL_MINOR_VERS,
                                                       SAR_V01_IDL_TOOL_VERS)},
        {"dm", nullptr},
        {"at", nullptr},
    }};
}

// One client's connection, made anew when the modem has closed it.
class Line {
public:
    Line() = default;
    ~Line() { hang_up(); }
    Line(const Line&) = delete;
    Line& operator=(const Line&) = delete;

    void open(const std::string& path, bool is_terminal) {
        if (fd_ >= 0)
            return;
        fd_ = is_terminal ? ::open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)
                          : socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        if (!is_terminal && connect(fd_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
            hang_up();
        is_terminal_ = is_terminal;
    }
    void send(const wire::Bytes& packet) {
        const ssize_t sent = is_terminal_ ? write(fd_, packet.data(), packet.size())
                                          : ::send(fd_, packet.data(), packet.size(), MSG_NOSIGNAL);
        if (sent < 0)
            hang_up();
    }

    /// Nothing when no packet is there.
    std::optional<wire::Bytes> receive() {
        wire::Bytes packet(wire::kQmiPacketMax);
        const ssize_t size = read(fd_, packet.data(), packet.size());
        if (size == 0)
            hang_up();
        if (size <= 0)
            return std::nullopt;
        packet.resize(static_cast<size_t>(size));
        return packet;
    }

private:
    void hang_up() {
        if (fd_ >= 0)
            close(fd_);
        fd_ = -1;
    }

    int fd_ = -1;
    bool is_terminal_ = false;
};

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

void check_frames(const wire::Bytes& bytes, handset::DiagFrameReader& reader) {
    for (const uint8_t byte : bytes) {
        const auto frame = reader.take(byte);
        require(!frame || frame->whole || frame->bytes.size() >= handset::DiagFrameReader::kPacketMax,
                "what the diagnostic terminal sends is frames");
    }
}

void check_log(const std::string& path) {
    std::ifstream log(path);
    for (auto at = std::istreambuf_iterator<char>(log); at != std::istreambuf_iterator<char>(); ++at)
        require(*at == '\n' || static_cast<uint8_t>(*at) >= ' ', "the log is printable");
}

wire::Bytes packet_of(uint8_t port, size_t choice, Input& input) {
    wire::Bytes block = input.block();
    if ((port & 0x80) != 0 || choice == kDiag || choice == kAt)
        return block;
    if (choice == kDiagTerminal)
        return handset::diag_frame(block);
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
    static const auto all_places = places();
    std::array<Line, kPorts> lines;
    handset::DiagFrameReader reader;
    for (int i = 0; i < kPacketsMax && !input.empty(); ++i) {
        const uint8_t port = input.u8();
        const size_t choice = (port & 0x7f) % kPorts;
        const Place& place = all_places[choice];
        Line& line = lines[choice];
        line.open(folder + "/" + place.name, choice >= kDiagTerminal);
        turn(loop);
        line.send(packet_of(port, choice, input));
        turn(loop);
        while (const auto packet = line.receive()) {
            if (choice == kDiagTerminal)
                check_frames(*packet, reader);
            else if (choice != kDiag && choice != kAt)
                check_qmi(*packet, place);
            if (choice >= kDiagTerminal)
                turn(loop);
        }
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
