// EFS files and NV items, against a modem that may answer anything.
#include "kelvra_extend_nvefs.h"

#include <thread>

#include "extend_double.h"
#include "platform_test.h"

namespace {

using Bytes = std::vector<uint8_t>;

const std::string kPath = "/nv/item_files/x";

// A response payload: lengths and result where they belong, then the data.
Bytes response(uint32_t data_len_all, uint32_t data_len_cur, int result, const Bytes& data = {}) {
    Bytes bytes(20 + data.size());
    put_le(&bytes[4], data_len_all);
    put_le(&bytes[8], data_len_cur);
    put_le(&bytes[16], result);
    std::copy(data.begin(), data.end(), bytes.begin() + 20);
    return bytes;
}

class NvEfsTest : public PlatformTest {
protected:
    // From now on every request is answered with what `modem` makes of its payload.
    static void answer_by(std::function<Bytes(const Bytes& request)> modem) {
        platform().send = [modem = std::move(modem)](const QmiRequest& request, void* rsp) {
            EXPECT_EQ(request_id_of(request), 2U);
            answer_extend(rsp, modem(payload_of(request)));
            return 0;
        };
    }

    // Runs an operation of the unit; its log lines without their sites are in `log`.
    int run(const std::function<int()>& operation) {
        int result = 0;
        log = without_sites(printed_by([&] { result = operation(); }));
        return result;
    }
    int read(Bytes& buf, bool is_item = false) {
        auto len = static_cast<uint32_t>(buf.size());
        const int result = run([&] {
            return is_item
                       ? kelvra_nv_read(0, 1, buf.data(), &len)
                       : kelvra_efs_read(0, kPath.data(), static_cast<int>(kPath.size()), buf.data(), &len);
        });
        buf.resize(len);
        return result;
    }
    int write(const Bytes& data) {
        return run([&] {
            return kelvra_efs_write(1, kPath.data(), static_cast<int>(kPath.size()), data.data(),
                                    static_cast<uint32_t>(data.size()));
        });
    }
    bool logged(const std::string& line) const {
        return ("\n" + log).find("\n" + line + "\n") != std::string::npos;
    }
    static size_t exchanges() { return platform().requests.size(); }

    std::string log;
};

Bytes pattern(size_t size) {
    Bytes bytes(size);
    for (size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<uint8_t>(i * 7 + i / 256);
    return bytes;
}

TEST_F(NvEfsTest, Refusals) {
    uint8_t buf[4] = {};
    uint32_t none = 0;
    const std::string path(71, 'p');
    const char* p = path.data();
    const struct {
        std::function<int()> operation;
        int result;
        const char* why;
    } cases[] = {
        {[&] { return kelvra_efs_read(2, nullptr, 0, nullptr, nullptr); }, -104, "sub invalid"},
        {[&] { return kelvra_efs_write(-1, p, 5, buf, 1); }, -104, "sub invalid"},
        {[&] { return kelvra_efs_delete(2, p, 5); }, -104, "sub invalid"},
        {[&] { return kelvra_efs_delete(0, nullptr, 0); }, -105, "efs_path is null"},
        {[&] { return kelvra_efs_delete(0, p, -1); }, -106, "len invalid"},
        {[&] { return kelvra_efs_read(0, p, 71, nullptr, nullptr); }, -107, "buf is null"},
        {[&] { return kelvra_efs_write(0, p, 71, nullptr, 102410); }, -107, "buf is null"},
        {[&] { return kelvra_efs_read(0, p, 71, buf, nullptr); }, -108, "p_buf_len is null"},
        {[&] { return kelvra_efs_read(0, p, 71, buf, &none); }, -108, "buf_len is invalid"},
        {[&] { return kelvra_efs_write(0, p, 71, buf, 102410); }, -108, "buf_len is invalid"},
        {[&] { return kelvra_nv_write_ex(0, 1, buf, 366); }, -108, "buf_len is invalid"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(run(c.operation), c.result) << log;
        EXPECT_TRUE(logged(c.why)) << log;
    }
    EXPECT_EQ(exchanges(), 0U);
}

TEST_F(NvEfsTest, HowAReadEnds) {
    struct Chunk {
        uint32_t data_len_cur;
        size_t arrives;
    };
    const char* const chunk_fills = "errro, abort, buf_len <= req.data_len_cur";
    const char* const total_fills = "abort, buf_len <= data_len_recv";
    const char* const lie = "qmi response fail";
    const bool is_item = true;
    const struct {
        size_t capacity;
        uint32_t data_len_all;
        std::vector<Chunk> chunks;  // the last one again and again
        int result;
        size_t len;
        size_t exchanges;
        const char* line;
        bool is_item = false;
    } cases[] = {
        {365, 364, {{364, 364}}, 0, 364, 1, "result = 0, rsp.result = 0"},
        {365, 365, {{365, 365}}, 0, 365, 1, chunk_fills},
        {500, 1000, {{414, 414}}, 0, 500, 2, total_fills},
        {828, 828, {{414, 414}}, 0, 828, 2, total_fills},
        {829, 828, {{414, 414}}, 0, 828, 2, "result = 0, rsp.result = 0"},
        {500, 492, {{492, 492}}, 0, 492, 1, "result = 0, rsp.result = 0"},
        {365, 0, {{0, 0}}, 0, 0, 1, "result = 0, rsp.result = 0"},
        {365, 10, {{4, 4}, {0, 0}}, -108, 4, 2, "abort, data_len_send <= 0"},
        {365, 10, {{10, 9}}, -103, 0, 1, lie},
        {365, 10, {{4, 4}, {0xFFFFFFFF, 6}}, -103, 4, 2, lie},
        {600, 600, {{493, 492}}, -103, 0, 1, lie},
        {4, 10, {{10, 9}}, -103, 0, 1, lie},
        {1000,
         0xFFFFFFFF,
         {{1, 1}},
         0,
         298,
         298,
         "data_len_all = -1, data_len_send = 0, data_len_recv = 297, read_count = 297, data_len_cur = 1"},
        {200000,
         0xFFFFFFFF,
         {{414, 414}},
         0,
         102672,
         248,
         "data_len_all = -1, data_len_send = 0, data_len_recv = 102258, read_count = 247, data_len_cur = "
         "414"},
        {365, 400, {{0, 365}}, 0, 365, 1, "rsp.data_len_all = 400", is_item},
        {365, 0xFFFFFFFF, {{0, 492}}, 0, 365, 1, "rsp.data_len_all = -1", is_item},
        {365, 0, {{0, 3}}, -108, 0, 1, "rsp.data_len_all is invalid", is_item},
        {365, 4, {{0, 3}}, -103, 0, 1, lie, is_item},
        {365, 400, {{0, 364}}, -103, 0, 1, lie, is_item},
    };
    for (const auto& c : cases) {
        platform().requests.clear();
        answer_by([&](const Bytes& request) {
            const Chunk& chunk = c.chunks[std::min(exchanges(), c.chunks.size()) - 1];
            Bytes data = pattern(get_le<uint32_t>(&request[84]) + chunk.arrives);
            data.erase(data.begin(), data.end() - static_cast<std::ptrdiff_t>(chunk.arrives));
            return response(c.data_len_all, chunk.data_len_cur, 0, data);
        });
        Bytes buf(c.capacity);
        EXPECT_EQ(read(buf, c.is_item), c.result) << log;
        EXPECT_EQ(buf, pattern(c.len)) << log;
        EXPECT_EQ(exchanges(), c.exchanges) << log;
        EXPECT_TRUE(logged(c.line)) << c.line << "\n" << log;
    }
}

TEST_F(NvEfsTest, TheLongestFileTravelsBothWays) {
    Bytes file;
    answer_by([&](const Bytes& request) {
        const auto offset = get_le<uint32_t>(&request[84]);
        if (request[0] == 4) {
            const size_t cur = std::min<size_t>(file.size() - offset, 414);
            const auto first = file.begin() + offset;
            return response(static_cast<uint32_t>(file.size()), static_cast<uint32_t>(cur), 0,
                            Bytes(first, first + static_cast<std::ptrdiff_t>(cur)));
        }
        const auto cur = get_le<uint32_t>(&request[80]);
        EXPECT_EQ(get_le<uint32_t>(&request[76]), 102409U);
        EXPECT_EQ(offset, file.size());
        EXPECT_EQ(cur, std::min(414U, 102409 - offset));
        file.insert(file.end(), request.begin() + 88, request.begin() + 88 + cur);
        // Nothing of an earlier chunk is left behind the data.
        EXPECT_EQ(Bytes(request.begin() + 88 + cur, request.end()), Bytes(512 - 88 - cur));
        return response(0, 0, 7);
    });
    const Bytes sent = pattern(102409);
    EXPECT_EQ(write(sent), 0);
    EXPECT_EQ(exchanges(), 248U);
    EXPECT_TRUE(
        logged("data_len_all = 102409, data_len_send = 102258, data_len_recv = 0, send_count = 247, "
               "data_len_cur = 151"));
    EXPECT_TRUE(file == sent);
    Bytes received(102410);
    EXPECT_EQ(read(received), 0);
    EXPECT_TRUE(received == sent);

    platform().requests.clear();
    answer_by(
        [](const Bytes& request) { return response(0, 0, get_le<uint32_t>(&request[84]) == 414 ? -28 : 0); });
    EXPECT_EQ(write(sent), -28);
    EXPECT_EQ(exchanges(), 2U);
}

TEST_F(NvEfsTest, TransfersOfTwoThreadsNeverInterleave) {
    answer_by([](const Bytes&) {
        std::this_thread::yield();
        return response(0, 0, 0);
    });
    run([] {
        const Bytes data(1000);
        const auto write_all = [&data](const char* path) {
            for (int i = 0; i < 20; ++i)
                kelvra_efs_write(0, path, 1, data.data(), 1000);
        };
        std::thread other(write_all, "a");
        write_all("b");
        other.join();
        return 0;
    });
    ASSERT_EQ(exchanges(), 120U);
    for (size_t i = 0; i < exchanges(); i += 3)
        for (size_t chunk = 0; chunk < 3; ++chunk) {
            const Bytes payload = payload_of(platform().requests[i + chunk]);
            EXPECT_EQ(payload[5], payload_of(platform().requests[i])[5]);
            EXPECT_EQ(get_le<uint32_t>(&payload[84]), 414 * chunk);
        }
}

}  // namespace
