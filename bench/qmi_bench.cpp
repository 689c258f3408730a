// One exchange of the extension message through the QMI client library, against a bare ping-pong of the same
// bytes over the same kind of socket between two threads. Prints both and their ratio.
#include <benchmark/benchmark.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "qmi_client.h"
#include "wire.h"

namespace {

constexpr uint32_t kServiceId = 65508;
constexpr uint16_t kMessageId = 2;
constexpr size_t kDataSize = 512;

struct Message {
    uint32_t id;
    uint32_t data_len;
    uint8_t data_valid;
    uint8_t data[kDataSize];
};

qmi_idl_element number_element(uint8_t tlv, size_t offset) {
    qmi_idl_element element{};
    element.tlv = tlv;
    element.kind = QMI_IDL_INTEGER;
    element.wire_width = 4;
    element.c_width = 4;
    element.offset = static_cast<uint32_t>(offset);
    return element;
}

qmi_idl_element data_element() {
    qmi_idl_element element = number_element(0x10, offsetof(Message, data));
    element.flags = QMI_IDL_OPTIONAL;
    element.kind = QMI_IDL_ARRAY;
    element.wire_width = 1;
    element.c_width = 1;
    element.valid_offset = offsetof(Message, data_valid);
    element.count_offset = offsetof(Message, data_len);
    element.count_width = 4;
    element.bound = kDataSize;
    element.stride = 1;
    return element;
}

const qmi_idl_element kElements[] = {number_element(1, offsetof(Message, id)),
                                     number_element(2, offsetof(Message, data_len)), data_element()};
const qmi_idl_message kMessages[] = {{QMI_IDL_REQUEST, kMessageId, sizeof(Message), kElements, 3},
                                     {QMI_IDL_RESPONSE, kMessageId, sizeof(Message), kElements, 3}};
const qmi_idl_service_object kService = {6, 1, kServiceId, 529, kMessages, 2};

/// Answers every request with the request's own bytes, until the other side goes.
void echo(int fd, bool as_response) {
    wire::Bytes packet(wire::kQmiPacketMax);
    for (;;) {
        const ssize_t size = recv(fd, packet.data(), packet.size(), 0);
        if (size <= 0)
            break;
        if (as_response)
            packet[0] = wire::kQmiResponse;
        send(fd, packet.data(), static_cast<size_t>(size), MSG_NOSIGNAL);
    }
    close(fd);
}

double per_iteration(const benchmark::State& state, std::chrono::steady_clock::time_point start) {
    const std::chrono::duration<double, std::micro> spent = std::chrono::steady_clock::now() - start;
    return spent.count() / static_cast<double>(state.iterations());
}

// The best of the repetitions: what disturbs a run only ever makes it slower.
double g_bare_us = 1e9;
double g_library_us = 1e9;

void bare_ping_pong(benchmark::State& state) {
    int ends[2];
    socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends);
    std::thread other([&] { echo(ends[1], false); });
    wire::Bytes packet(7 + 529);
    const auto start = std::chrono::steady_clock::now();
    while (state.KeepRunning()) {
        send(ends[0], packet.data(), packet.size(), MSG_NOSIGNAL);
        recv(ends[0], packet.data(), packet.size(), 0);
    }
    g_bare_us = std::min(g_bare_us, per_iteration(state, start));
    close(ends[0]);
    other.join();
}

int listen_at(const std::string& path) {
    const int fd = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    if (bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 || listen(fd, 1) != 0) {
        perror(path.c_str());
        exit(2);
    }
    return fd;
}

void library_exchange(benchmark::State& state) {
    char folder[] = "/tmp/vxk-bench-XXXXXX";
    setenv("VXK_HANDSET_DIR", mkdtemp(folder), 1);
    const std::string sockets = std::string(folder) + "/qmi";
    mkdir(sockets.c_str(), 0700);
    const std::string path = sockets + "/" + std::to_string(kServiceId);
    const int listener = listen_at(path);
    qmi_client_type client = nullptr;
    qmi_client_init_instance(&kService, QMI_CLIENT_INSTANCE_ANY, nullptr, nullptr, nullptr, 1000, &client);
    std::thread service([&] { echo(accept(listener, nullptr, nullptr), true); });
    static Message request{4, kDataSize, 1, {}};
    static Message response;
    const auto start = std::chrono::steady_clock::now();
    while (state.KeepRunning()) {
        if (qmi_client_send_msg_sync(client, kMessageId, &request, sizeof request, &response, sizeof response,
                                     3000) != QMI_NO_ERR)
            state.SkipWithError("the exchange failed");
    }
    g_library_us = std::min(g_library_us, per_iteration(state, start));
    qmi_client_release(client);
    service.join();
    close(listener);
    unlink(path.c_str());
    rmdir(sockets.c_str());
    rmdir(folder);
}

BENCHMARK(bare_ping_pong)->UseRealTime()->MinTime(0.05)->Repetitions(30);
BENCHMARK(library_exchange)->UseRealTime()->MinTime(0.05)->Repetitions(30);

}  // namespace

int main(int argc, char** argv) {
    constexpr double kLimit = 1.5;
    // Where the scheduler puts the two threads costs more than all that is measured here, and it changes its
    // mind every few seconds: the short runs of both sides alternate, so that both meet the same moods.
    std::vector<char*> arguments(argv, argv + argc);
    char interleaved[] = "--benchmark_enable_random_interleaving=true";
    arguments.insert(arguments.begin() + 1, interleaved);
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    benchmark::RunSpecifiedBenchmarks();
    const double ratio = g_library_us / g_bare_us;
    printf("extension exchange: %.2f us, bare ping-pong: %.2f us, ratio %.2f (limit %.1f)\n", g_library_us,
           g_bare_us, ratio, kLimit);
    return ratio <= kLimit ? 0 : 1;
}
