// The QMI client library against a service that the test plays, packet by packet: in a handset's folder and
// on the bus.
#include "qmi_client.h"

#include <gmock/gmock.h>
#include <sys/resource.h>

#include <atomic>
#include <future>
#include <optional>
#include <thread>

#include "fake_bus.h"
#include "fake_service.h"
#include "modem_statistics_v01.h"
#include "sar_v01.h"
#include "user_identity_module_v01.h"

namespace {

using testing::ElementsAre;
using wire::Bytes;

const qmi_idl_service_object_type kSar = sar_get_service_object_internal_v01(1, 0, 6);
const qmi_idl_service_object_type kVs = vs_get_service_object_internal_v01(1, 0, 6);

constexpr unsigned kForEver = 60000;

// The standard result, and TLV 0x10 with the device state index.
Bytes sar_body(uint32_t dsi) {
    return wire::Writer().tlv(0x02, Bytes{0, 0, 0, 0}).tlv(0x10, wire::Writer().u32(dsi).data()).take();
}

Bytes answer_to(const Bytes& request, const Bytes& body) {
    auto packet = wire::decode_qmi(request).value();
    return wire::encode({wire::kQmiResponse, packet.transaction, packet.message, body});
}

Bytes indication(uint16_t message, const Bytes& body) {
    return wire::encode({wire::kQmiIndication, 0, message, body});
}

/// What came to the callbacks, in order.
struct Callbacks {
    std::mutex mutex;
    std::vector<std::string> calls;
    std::atomic<std::thread::id> thread;
    std::promise<void> hold;  // an indication with message id 6 waits for it
    std::atomic<bool> is_held{false};

    void add(const std::string& call) {
        const std::lock_guard<std::mutex> lock(mutex);
        calls.push_back(call);
        thread = std::this_thread::get_id();
    }
    std::vector<std::string> all() {
        const std::lock_guard<std::mutex> lock(mutex);
        return calls;
    }
    bool wait_for(size_t count) {
        for (int i = 0; i < 5000 && all().size() < count; ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        return all().size() >= count;
    }
};

void on_indication(qmi_client_type, unsigned message, void* buf, unsigned len, void* data) {
    auto* callbacks = static_cast<Callbacks*>(data);
    if (message == 6) {
        callbacks->is_held = true;
        callbacks->hold.get_future().wait();
    }
    callbacks->add("ind " + std::to_string(message) + " " + std::to_string(len) +
                   (buf != nullptr ? "" : " null"));
}

void on_error(qmi_client_type, qmi_client_error_type error, void* data) {
    static_cast<Callbacks*>(data)->add("error " + std::to_string(error));
}

/// The SAR service on the bus. It cannot end a single client's connection: it goes and comes back.
class BusService {
public:
    BusService() { publish(); }
    ~BusService() { FakeBus::get().withdraw(address_); }

    const host::QrtrAddress& address() const { return address_; }
    void come_back() {
        FakeBus::get().withdraw(address_);
        ++address_.port;
        publish();
    }

private:
    void publish() { FakeBus::get().publish(kSar->service_id, 1, address_); }

    host::QrtrAddress address_{0, 7};
};

class BusPeer : public Peer {
public:
    BusPeer(const FakeBus::Seat& seat, BusService& service)
        : Peer(host::UniqueFd(dup(seat.end->get()))),
          seat_(seat),
          service_(service),
          address_(service.address()) {}
    void send(const Bytes& packet) const override { seat_.send(address_, packet); }
    void close() override { service_.come_back(); }

private:
    const FakeBus::Seat seat_;
    BusService& service_;
    const host::QrtrAddress address_;
};

enum Road { kFolder, kBus };

class QmiClient : public testing::TestWithParam<Road> {
protected:
    void SetUp() override {
        if (GetParam() == kBus) {
            setenv("VXK_MODEM", "qrtr", 1);
            service.emplace();
        } else {
            listener.emplace(folder.at("qmi/17"));
        }
    }
    /// The service is published, and `client` is connected to it.
    void connect() {
        ASSERT_EQ(qmi_client_init_instance(kSar, QMI_CLIENT_INSTANCE_ANY, on_indication, &callbacks, nullptr,
                                           4, &client),
                  QMI_NO_ERR);
        if (service)
            peer = std::make_unique<BusPeer>(FakeBus::get().newest(), *service);
        else
            peer = listener->accept();
    }
    void connect_with_error_cb() {
        connect();
        ASSERT_EQ(qmi_client_register_error_cb(client, on_error, &callbacks), QMI_NO_ERR);
    }
    int ask(sar_get_dsi_resp_msg_v01* into, unsigned timeout_ms) {
        return qmi_client_send_msg_sync(client, SAR_GET_DSI_V01, nullptr, 0, into, sizeof *into, timeout_ms);
    }
    std::future<int> ask_in_thread(sar_get_dsi_resp_msg_v01* into, unsigned timeout_ms = kForEver) {
        return std::async(std::launch::async, [=] { return ask(into, timeout_ms); });
    }
    void TearDown() override {
        EXPECT_EQ(client ? qmi_client_release(client) : QMI_NO_ERR, QMI_NO_ERR);
        unsetenv("VXK_MODEM");
    }

    HandsetFolder folder;
    std::optional<Listener> listener;
    std::optional<BusService> service;
    std::unique_ptr<Peer> peer;
    Callbacks callbacks;
    qmi_client_type client = nullptr;
    sar_get_dsi_resp_msg_v01 response{};
};

INSTANTIATE_TEST_SUITE_P(Roads, QmiClient, testing::Values(kFolder, kBus));

TEST_P(QmiClient, DropsWhatAnswersNoOpenRequest) {
    connect();
    response.dsi = 7;
    rusage before{};
    rusage after{};
    getrusage(RUSAGE_THREAD, &before);
    EXPECT_EQ(ask(&response, 300), QMI_TIMEOUT_ERR);
    getrusage(RUSAGE_THREAD, &after);
    EXPECT_LT(after.ru_nvcsw - before.ru_nvcsw, 20) << "it waits, and does not look again and again";
    EXPECT_LT(after.ru_stime.tv_usec - before.ru_stime.tv_usec +
                  (after.ru_stime.tv_sec - before.ru_stime.tv_sec) * 1000000,
              50000);
    EXPECT_EQ(response.dsi, 0U);
    const Bytes late = peer->receive();
    auto result = ask_in_thread(&response);
    const Bytes request = peer->receive();
    Bytes other_message = answer_to(request, sar_body(2));
    other_message[3] = 9;
    for (const Bytes& packet :
         {answer_to(late, sar_body(1)), other_message, request, Bytes{}, Bytes{2}, Bytes(7, 0x33),
          answer_to(request, sar_body(4)), answer_to(request, sar_body(5))})
        peer->send(packet);
    EXPECT_EQ(result.get(), 0);
    EXPECT_EQ(response.dsi, 4U);
}

TEST_P(QmiClient, FailsOnResponsesThatDoNotDecode) {
    connect();
    const std::vector<std::pair<const char*, Bytes>> tails = {
        {"header cut short", {}},
        {"length past the packet", {1, 0}},
        {"a TLV behind the length", {7, 0, 2, 4, 0, 0, 0, 0, 0, 0x77, 0, 0}},
    };
    for (const auto& [name, tail] : tails) {
        auto result = ask_in_thread(&response);
        Bytes packet = peer->receive();
        packet[0] = wire::kQmiResponse;
        packet.resize(5);
        packet.insert(packet.end(), tail.begin(), tail.end());
        peer->send(packet);
        EXPECT_EQ(result.get(), QMI_INTERNAL_ERR) << name;
    }
}

TEST_P(QmiClient, DeliversIndicationsOnOneThreadInOrder) {
    connect();
    peer->send(indication(1, {9, 9}));
    ASSERT_TRUE(callbacks.wait_for(1));
    const auto thread = callbacks.thread.load();
    EXPECT_NE(thread, std::this_thread::get_id());
    auto result = ask_in_thread(&response);
    const Bytes request = peer->receive();
    peer->send(indication(2, {}));
    ASSERT_TRUE(callbacks.wait_for(2)) << "while a request is open";
    peer->send(indication(3, Bytes(65535)));
    peer->send(answer_to(request, sar_body(1)));
    peer->send(indication(4, {1}));
    EXPECT_EQ(result.get(), 0);
    ASSERT_TRUE(callbacks.wait_for(4));
    EXPECT_THAT(callbacks.all(), ElementsAre("ind 1 2", "ind 2 0", "ind 3 65535", "ind 4 1"));
    EXPECT_EQ(callbacks.thread.load(), thread);
}

TEST_P(QmiClient, SurvivesMoreIndicationsThanItDelivers) {
    connect();
    peer->send(indication(6, {}));
    auto result = ask_in_thread(&response);
    const Bytes request = peer->receive();
    constexpr size_t kFlood = 1000;
    std::thread flood([&] {
        for (size_t i = 0; i < kFlood; ++i)
            peer->send(indication(1, {}));
        peer->send(answer_to(request, sar_body(1)));
    });
    EXPECT_EQ(result.wait_for(std::chrono::milliseconds(100)), std::future_status::timeout);
    callbacks.hold.set_value();
    flood.join();
    EXPECT_EQ(result.get(), 0);
    EXPECT_TRUE(callbacks.wait_for(1 + kFlood));
}

TEST_P(QmiClient, TellsTheLossOnceBeforeTheOpenRequestReturns) {
    connect_with_error_cb();
    auto result = std::async(std::launch::async, [&] {
        const int error = ask(&response, kForEver);
        callbacks.add("returned " + std::to_string(error));
    });
    peer->receive();
    peer->send(indication(1, {}));
    peer->close();
    result.get();
    EXPECT_THAT(callbacks.all(), ElementsAre("ind 1 0", "error -2", "returned -2"));
    EXPECT_EQ(ask(&response, kForEver), QMI_SERVICE_ERR);
    EXPECT_EQ(qmi_client_register_error_cb(client, on_error, &callbacks), QMI_NO_ERR);
    EXPECT_EQ(ask(&response, kForEver), QMI_SERVICE_ERR);
    EXPECT_EQ(callbacks.all().size(), 3U);
}

TEST_P(QmiClient, TellsTheLossWithoutARequest) {
    connect();
    // Unread bytes at the peer turn its end into a reset, which must not hide what it sent before; nor must
    // an empty packet.
    EXPECT_EQ(ask(&response, 1), QMI_TIMEOUT_ERR);
    peer->send(indication(6, {}));
    while (!callbacks.is_held)
        std::this_thread::yield();
    peer->send({});
    peer->send(indication(1, {}));
    peer->close();
    callbacks.hold.set_value();
    ASSERT_TRUE(callbacks.wait_for(2));
    EXPECT_EQ(ask(&response, kForEver), QMI_SERVICE_ERR);
    // Registered late: told at once, on the library's thread.
    EXPECT_EQ(qmi_client_register_error_cb(client, on_error, &callbacks), QMI_NO_ERR);
    ASSERT_TRUE(callbacks.wait_for(3));
    EXPECT_NE(callbacks.thread.load(), std::this_thread::get_id());
    EXPECT_THAT(callbacks.all(), ElementsAre("ind 6 0", "ind 1 0", "error -2"));
}

// Requests, indications and the end of the service from all sides at once, for the thread sanitizer.
TEST_P(QmiClient, LivesThroughManyLives) {
    for (int life = 0; life < 30; ++life) {
        connect_with_error_cb();
        std::thread far_end([&] {
            for (int i = 0; i < 20; ++i) {
                const Bytes request = peer->receive();
                peer->send(indication(1, {}));
                if (i % 3 != 0)
                    peer->send(answer_to(request, sar_body(1)));
            }
            peer->close();
        });
        std::vector<std::future<int>> results;
        sar_get_dsi_resp_msg_v01 responses[2];
        for (auto& each : responses)
            results.push_back(std::async(std::launch::async, [&] {
                int result = 0;
                while ((result = ask(&each, 3)) != QMI_SERVICE_ERR)
                    EXPECT_NE(result, QMI_INTERNAL_ERR);
                return result;
            }));
        if (life % 2 == 0)
            far_end.join();
        for (auto& result : results)
            result.wait();
        EXPECT_EQ(qmi_client_release(client), QMI_NO_ERR);
        if (far_end.joinable())
            far_end.join();
        client = nullptr;
    }
}

TEST(QmiService, IsFoundWheneverItIsPublished) {
    HandsetFolder folder;
    qmi_client_type notifier = nullptr;
    qmi_client_os_params signal;
    unsigned services = 9;
    ASSERT_EQ(qmi_client_notifier_init(kVs, &signal, &notifier), QMI_NO_ERR);
    setenv("VXK_HANDSET_DIR", folder.at("later").c_str(), 1);
    EXPECT_EQ(qmi_client_get_service_list(kVs, nullptr, nullptr, &services), QMI_SERVICE_ERR);
    EXPECT_EQ(services, 0U);
    EXPECT_EQ(qmi_cci_os_signal_wait(&signal, 1), QMI_TIMEOUT_ERR);

    std::optional<Listener> listener;
    std::thread handset([&] {
        const auto socket = folder.at("later/qmi/65509");
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        {
            const Listener dies(folder.at("dead/socket"));
            std::filesystem::rename(folder.at("dead/socket"), folder.at("dead/stale"));
        }
        std::filesystem::create_directories(folder.at("later/qmi"));
        std::filesystem::rename(folder.at("dead/stale"), socket);
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        std::filesystem::remove(socket);
        listener.emplace(socket);
    });
    EXPECT_EQ(qmi_cci_os_signal_wait(&signal, 0), 0);
    EXPECT_EQ(qmi_client_get_service_list(kVs, nullptr, nullptr, &services), QMI_NO_ERR)
        << "a socket that nobody listens to is no service";
    handset.join();
    EXPECT_EQ(qmi_client_release(notifier), QMI_NO_ERR);
}

// A queue of one, which the look that found the service fills.
TEST(QmiService, IsFoundHoweverLateItAccepts) {
    const HandsetFolder folder;
    Listener listener(folder.at("qmi/65509"), 0);
    qmi_client_type client = nullptr;
    qmi_client_type notifier = nullptr;
    qmi_client_os_params signal;
    qmi_service_info info{};
    unsigned entries = 1;
    unsigned services = 9;
    ASSERT_EQ(qmi_client_notifier_init(kVs, &signal, &notifier), QMI_NO_ERR);
    EXPECT_EQ(qmi_cci_os_signal_wait(&signal, 100), QMI_NO_ERR);
    EXPECT_EQ(qmi_client_get_service_list(kVs, &info, &entries, &services), QMI_NO_ERR);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(qmi_client_init_instance(kVs, 0, nullptr, nullptr, nullptr, 50, &client), QMI_TIMEOUT_ERR);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
    std::thread handset([&] {
        listener.accept();
        listener.accept();
    });
    EXPECT_EQ(qmi_client_init(&info, kVs, nullptr, nullptr, nullptr, &client), QMI_NO_ERR);
    handset.join();
    EXPECT_EQ(qmi_client_release(client), QMI_NO_ERR);
    EXPECT_EQ(qmi_client_release(notifier), QMI_NO_ERR);
}

class QmiBus : public QmiClient {};

INSTANTIATE_TEST_SUITE_P(Roads, QmiBus, testing::Values(kBus));

TEST_P(QmiBus, ListsEveryInstanceLowestFirst) {
    auto& bus = FakeBus::get();
    const std::vector<std::pair<uint32_t, host::QrtrAddress>> others = {
        {0x0201, {3, 21}}, {0x0101, {3, 22}}, {0x0301, {0, 23}}};
    for (const auto& [instance, address] : others)
        bus.publish(kSar->service_id, instance, address);
    const auto ports = [](const char* modem) {
        setenv("VXK_MODEM", modem, 1);
        qmi_service_info infos[8];
        unsigned entries = 8;
        unsigned services = 0;
        EXPECT_EQ(qmi_client_get_service_list(kSar, infos, &entries, &services), QMI_NO_ERR);
        EXPECT_EQ(entries, services);
        std::vector<uint32_t> listed;
        for (unsigned i = 0; i < entries; ++i)
            listed.push_back(infos[i].info[3]);
        return listed;
    };
    EXPECT_THAT(ports("qrtr"), ElementsAre(7, 23, 22, 21));
    EXPECT_THAT(ports("qrtr:3"), ElementsAre(22, 21));
    for (const auto& [instance, address] : others)
        bus.withdraw(address);
}

TEST_P(QmiBus, KnowsWhoSpeaksAndWhoEnds) {
    const auto word = [](uint32_t command, uint32_t id, uint32_t instance, host::QrtrAddress about) {
        return wire::Writer().u32(command).u32(id).u32(instance).u32(about.node).u32(about.port).take();
    };
    const Bytes end = word(QRTR_TYPE_DEL_SERVER, 17, 1, {0, 7});
    const struct {
        const char* name;
        host::QrtrAddress sender;
        Bytes packet;
        bool ends;
    } rows[] = {
        {"a stranger's answer", {0, 8}, {2, 1, 0, 2, 0, 0, 0}, false},
        {"another server's end", FakeBus::kNames, word(QRTR_TYPE_DEL_SERVER, 17, 1, {0, 8}), false},
        {"another node's end", FakeBus::kNames, word(QRTR_TYPE_BYE, 2, 0, {}), false},
        {"a stranger's word", {2, QRTR_PORT_CTRL}, end, false},
        {"half a word", FakeBus::kNames, Bytes(end.begin(), end.end() - 1), false},
        {"its end", FakeBus::kNames, end, true},
        {"its node's end", FakeBus::kNames, word(QRTR_TYPE_BYE, 0, 0, {}), true},
        {"a reset of the bus", FakeBus::kReset, {}, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        callbacks.calls.clear();
        connect_with_error_cb();
        auto result = ask_in_thread(&response);
        const Bytes request = peer->receive();
        FakeBus::get().newest().send(row.sender, row.packet);
        peer->send(answer_to(request, sar_body(1)));
        EXPECT_EQ(result.get(), row.ends ? QMI_SERVICE_ERR : QMI_NO_ERR);
        EXPECT_EQ(callbacks.all().size(), row.ends ? 1U : 0U);
        EXPECT_EQ(qmi_client_release(client), QMI_NO_ERR);
        client = nullptr;
    }
}

TEST_P(QmiBus, MissesNothingBetweenTheLookAndTheClient) {
    qmi_service_info info{};
    unsigned entries = 1;
    unsigned services = 0;
    EXPECT_EQ(qmi_client_get_service_list(kSar, &info, &entries, &services), QMI_NO_ERR);
    service.reset();
    EXPECT_EQ(qmi_client_init(&info, kSar, nullptr, nullptr, nullptr, &client), QMI_NO_ERR);
    EXPECT_EQ(qmi_client_register_error_cb(client, on_error, &callbacks), QMI_NO_ERR);
    EXPECT_TRUE(callbacks.wait_for(1));

    qmi_client_type notifier = nullptr;
    qmi_client_os_params signal;
    EXPECT_EQ(qmi_client_notifier_init(kSar, &signal, &notifier), QMI_NO_ERR);
    testing::internal::CaptureStderr();
    auto waited = std::async(std::launch::async, [&] { return qmi_cci_os_signal_wait(&signal, 0); });
    // What is captured goes to a file: its place moves when the note is written.
    for (int i = 0; i < 5000 && lseek(STDERR_FILENO, 0, SEEK_CUR) == 0; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    service.emplace();
    EXPECT_EQ(waited.get(), QMI_NO_ERR);
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                testing::EndsWith("waiting for QMI service 17: nothing publishes it on the QRTR bus\n"));
    EXPECT_EQ(qmi_client_release(notifier), QMI_NO_ERR);
}

}  // namespace
