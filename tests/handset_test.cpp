// The handset as its clients see it: bytes on its sockets, files in its folder.
#include <sys/resource.h>

#include "handset_fixture.h"

#include "event_loop.h"
#include "folder.h"
#include "handset.h"
#include "subjects.h"

namespace handset_test {
namespace {

using wire::Bytes;

// Payload of request id 2.
struct FileRequest {
    uint8_t command;
    std::string path;
    uint32_t total = 0;
    uint32_t chunk = 0;
    uint32_t offset = 0;
    Bytes data = {};
    uint8_t sub = 0;
    uint16_t item = 0;

    Bytes payload() const {
        wire::Writer writer;
        writer.u8(command).u8(sub).u16(item).u8(static_cast<uint8_t>(path.size()));
        writer.bytes({path.data(), std::min<size_t>(path.size(), 71)});
        while (writer.size() < 76)
            writer.u8(0);
        writer.u32(total).u32(chunk).u32(offset).bytes(data);
        Bytes bytes = writer.take();
        bytes.resize(512);
        return bytes;
    }
};

class FileClient : public ExtensionClient {
public:
    using ExtensionClient::ExtensionClient;

    struct FileAnswer {
        int32_t result = 1;
        uint32_t total = 0;
        std::string data;
    };
    FileAnswer file(const FileRequest& request_fields) {
        const auto payload = request(2, request_fields.payload());
        if (!payload)
            return {};
        wire::Reader reader(*payload);
        reader.u32();
        FileAnswer answer;
        answer.total = reader.u32();
        const uint32_t chunk = reader.u32();
        reader.u32();
        answer.result = reader.i32();
        const wire::View data = reader.rest();
        EXPECT_EQ(chunk, data.size);
        answer.data.assign(data.data, data.data + data.size);
        return answer;
    }

    int32_t write(const std::string& path, const std::string& content) {
        int32_t result = 0;
        size_t offset = 0;
        do {
            const std::string chunk = content.substr(offset, 414);
            result =
                file({5, path, static_cast<uint32_t>(content.size()), static_cast<uint32_t>(chunk.size()),
                      static_cast<uint32_t>(offset), Bytes(chunk.begin(), chunk.end())})
                    .result;
            offset += chunk.size();
        } while (result == 0 && offset < content.size());
        return result;
    }

    std::string read_all(const std::string& path) {
        std::string content;
        FileAnswer answer;
        do {
            answer = file({4, path, 0, 0, static_cast<uint32_t>(content.size())});
            EXPECT_EQ(answer.result, 0);
            content += answer.data;
        } while (answer.result == 0 && !answer.data.empty() && content.size() < answer.total);
        return content;
    }
};

std::string pattern(size_t size) {
    std::string content;
    for (size_t i = 0; i < size; ++i)
        content += static_cast<char>(i * 7 + i / 256);
    return content;
}

class HandsetTest : public testing::Test {
protected:
    std::optional<std::string> stored(const std::string& name) const { return place_.read("h/" + name); }

    TestFolder place_;
};

TEST_F(HandsetTest, ReadsBackWhatWasWrittenAtEveryChunkBoundary) {
    const RunningHandset handset(place_);
    FileClient client(handset);
    for (const size_t size : {0U, 1U, 413U, 414U, 415U, 828U, 829U, 102'409U}) {
        SCOPED_TRACE(size);
        EXPECT_EQ(client.write("/nv/x", pattern(size)), 0);
        EXPECT_EQ(stored("efs/0/nv/x"), pattern(size));
        EXPECT_EQ(client.read_all("/nv/x"), pattern(size));
    }
}

TEST_F(HandsetTest, AnswersEachFileRequestWithItsResult) {
    const RunningHandset handset(place_, R"({"efs": {"file_max": 1000, "read_only": ["/ro"]}})");
    place_.write("h/efs/0/ro/f", "kept");
    place_.write("h/efs/1/one", "second");
    place_.write("secret", "outside");
    place_.write("h/nv/0/5", std::string(500, 'n'));
    const Bytes three = hex("01 02 03");
    const struct {
        FileRequest request;
        int32_t result;
        std::string data;
    } rows[] = {
        {{4, "/absent"}, -2, ""},
        {{4, "one", 0, 0, 0, {}, 1}, 0, "second"},
        {{4, "/one"}, -2, ""},
        {{4, "/one", 0, 0, 0, {}, 2}, -22, ""},
        {{4, std::string("/ro/f\0", 6)}, 0, "kept"},
        {{4, std::string("/ro\0/f", 6)}, -22, ""},
        {{4, "//./ro///f"}, 0, "kept"},
        {{4, "/ro"}, -13, ""},
        {{4, "/ro/f/deeper"}, -2, ""},
        {{4, "/ro/f", 0, 0, 4}, 0, ""},
        {{4, "/ro/f", 0, 0, 5}, -22, ""},
        {{4, ""}, -22, ""},
        {{4, "/"}, -22, ""},
        {{4, "../../../secret"}, -13, ""},
        {{4, "/ro/../../../../secret"}, -13, ""},
        {{6, "/ro/.."}, -13, ""},
        {{4, std::string(71, 'p')}, -2, ""},
        {{4, std::string(72, 'p')}, -22, ""},
        {{5, "/ro/f", 3, 3, 0, three}, -13, ""},
        {{6, "/ro/f"}, -13, ""},
        {{5, "/rof", 3, 3, 0, three}, 0, ""},
        {{5, "/rof/below", 3, 3, 0, three}, -13, ""},
        {{5, "/big", 1001, 414, 0, three}, -28, ""},
        {{5, "/lie", 3, 4, 0, three}, -22, ""},
        {{5, "/lie", 1000, 425, 0, three}, -22, ""},
        {{5, "/lie", 1000, 0, 0, three}, -22, ""},
        {{5, "/lie", 10, 3, 7, three}, -22, ""},
        {{5, "/lie", 10, 3, 0xFFFFFFFE, three}, -22, ""},
        {{1, "", 0, 0, 0, {}, 0, 5}, 0, std::string(414, 'n')},
        {{1, "", 0, 0, 0, {}, 0, 7233}, -22, ""},
        {{1, "", 0, 0, 0, {}, 1, 5}, -2, ""},
        {{2, "", 3, 0, 0, three, 1, 7232}, 0, ""},
        {{2, "", 425, 0, 0, three, 1, 7232}, -22, ""},
        {{1, "", 0, 0, 0, {}, 1, 7232}, 0, "\1\2\3"},
        {{3, "", 0, 0, 0, {}, 1, 7232}, 0, ""},
        {{3, "", 0, 0, 0, {}, 1, 7232}, -2, ""},
        {{0, "/ro/f"}, -22, ""},
        {{7, "/ro/f"}, -22, ""},
    };
    FileClient client(handset);
    for (const auto& row : rows) {
        const auto answer = client.file(row.request);
        SCOPED_TRACE(testing::PrintToString(&row - rows) + " " + row.request.path);
        EXPECT_EQ(answer.result, row.result);
        EXPECT_EQ(answer.data, row.data);
    }
    EXPECT_EQ(stored("efs/0/ro/f"), "kept");
    EXPECT_EQ(stored("efs/0/lie"), std::nullopt);
    EXPECT_EQ(place_.read("secret"), "outside");
}

TEST_F(HandsetTest, AWriteThatStopsHalfWayLeavesTheOldFile) {
    const FileRequest first{5, "/f", 500, 414, 0, Bytes(414, 'x')};
    place_.write("h/efs/0/f", "old");
    RunningHandset handset(place_);
    {
        FileClient client(handset);
        EXPECT_EQ(client.file(first).result, 0);
        EXPECT_EQ(client.read_all("/f"), "old");
        // The rest of somebody else's transfer.
        FileClient other(handset);
        EXPECT_EQ(other.file({5, "/f", 500, 86, 414, Bytes(86, 'y')}).result, -22);
        EXPECT_EQ(client.file({5, "/f", 500, 86, 415, Bytes(86, 'y')}).result, -22);
        EXPECT_EQ(client.file({5, "/f", 500, 86, 414, Bytes(86, 'y')}).result, -22);
        EXPECT_EQ(client.file(first).result, 0);
    }
    FileClient client(handset);
    EXPECT_EQ(client.file({5, "/f", 500, 86, 414, Bytes(86, 'y')}).result, -22);
    EXPECT_EQ(client.file(first).result, 0);
    handset.stop(SIGKILL);
    EXPECT_EQ(stored("efs/0/f"), "old");

    const RunningHandset again(place_);
    FileClient survivor(again);
    EXPECT_EQ(survivor.write("/f", pattern(500)), 0);
    EXPECT_EQ(stored("efs/0/f"), pattern(500));
    EXPECT_TRUE(std::filesystem::is_empty(place_.at("h/staging")));
}

// Raw request ids send the bytes back; a common request has the direct form or, with a 2 in front, that of
// type, length and value.
TEST_F(HandsetTest, AnswersPayloadsAndMalformedMessages) {
    const RunningHandset handset(
        place_, R"({"faults": [{"service": "extension", "request": 0, "action": "cut", "keep": 9}]})");
    ExtensionClient client(handset);
    client.play(R"(
        2 01 04 00 03 00 00 00 02 04 00 02 00 00 00 10 02 00 01 02 > $ok 02 00 00 00 10 02 00 01 02
        3 01 04 00 05 00 00 00 02 04 00 00 00 00 00 > $ok 00 00 00 00
        2 $common 04 00 00 00 10 04 00 63 00 00 00 > $ok 10 00 00 00 10 10 00 $word $word 63 00 00 00 $word
        2 $common 11 00 00 00 10 11 00 02 00 00 00 $word 1F 00 00 00 04 00 00 00 01 > $ok 10 00 00 00 10 10 00 $word EA FF FF FF 1F 00 00 00 $word
        2 01 04 00 06 00 00 00 02 04 00 00 00 00 00 > 01 04 00 5E 00 00 00 02 04 00 00 00 00 00
        2 01 04 00 03 00 00 00 02 04 00 03 00 00 00 10 02 00 01 02 > $malformed
        2 01 04 00 03 00 00 00 > $malformed; 2 01 02 00 03 00 02 04 00 00 00 00 00 > $malformed
        2 01 FF 00 03 > $malformed; 77 > 01 04 00 47 00 00 00 02 04 00 00 00 00 00)",
                {{"ok", "01 04 00 00 00 00 00 02 04 00"},
                 {"malformed", "01 04 00 01 00 00 00 02 04 00 00 00 00 00"},
                 {"common", "01 04 00 04 00 00 00 02 04 00"},
                 {"word", "00 00 00 00"}});
    for (const char* packet :
         {"00", "00 01 00 02 00 05 00 01", "02 01 00 02 00 00 00", "04 00 00 02 00 00 00"})
        client.send(hex(packet));
    client.send(Bytes(wire::kQmiPacketMax + 1));
    EXPECT_EQ(client.exchange(2, hex("01 04 00 00 00 00 00 02 04 00 00 00 00 00")),
              hex("01 04 00 00 00 00 00 02 04"))
        << "the only answer";
    for (const char* line :
         {" -> malformed length=65543\n",
          R"( 0x01=[00 00 00 00] malformed body=[01 04 00 00 00 00 00 02 04] fault="cut")"})
        EXPECT_NE(stored("log/wire.log")->find(line), std::string::npos) << line;
}

TEST_F(HandsetTest, AReadIsOfOneFile) {
    const RunningHandset handset(place_);
    FileClient client(handset);
    place_.write("h/efs/0/f", pattern(500));
    EXPECT_EQ(client.file({4, "/f"}).data, pattern(414));
    place_.write("h/efs/0/f", std::string(500, 'n'));
    EXPECT_EQ(client.file({4, "/f", 0, 0, 414}).data, pattern(500).substr(414)) << "read anew";
}

TEST_F(HandsetTest, AnswersWaitInOrderForAClientThatReadsLate) {
    constexpr uint16_t kMoreThanASocketHolds = 500;
    const RunningHandset handset(place_);
    const Client client(handset.dir(), "qmi/65508");
    const Bytes body = wire::Writer().tlv(1, Bytes(4)).tlv(2, Bytes{0, 2, 0, 0}).tlv(0x10, Bytes(512)).take();
    for (uint16_t number = 1; number <= kMoreThanASocketHolds; ++number)
        client.send(wire::encode({wire::kQmiRequest, number, 2, body}));
    for (uint16_t number = 1; number <= kMoreThanASocketHolds; ++number) {
        const Bytes packet = client.receive().value_or(Bytes());
        const auto answer = wire::decode_qmi(packet);
        ASSERT_TRUE(answer && answer->transaction == number && answer->body.size == body.size()) << number;
    }
}

TEST_F(HandsetTest, AConnectionWaitsForADescriptor) {
    setenv("VXK_AT_DEVICE", place_.at("smd8").c_str(), 1);
    handset::EventLoop loop;
    const handset::Handset handset(loop, place_.at("h"), handset::Profile());
    const Client client(handset.folder(), "qmi/65508");
    client.send(hex("00 01 00 02 00 07 00 01 04 00 00 00 00 00"));
    rlimit usual{};
    getrlimit(RLIMIT_NOFILE, &usual);
    const rlimit none{0, usual.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none);
    loop.drain();  // Without end, if it tried again at once.
    setrlimit(RLIMIT_NOFILE, &usual);
    std::optional<Bytes> answer;
    for (int i = 0; i < 500 && !answer; ++i) {
        loop.after(std::chrono::milliseconds(10), [&loop] { loop.stop(); });
        loop.run();
        answer = client.receive(0);
    }
    EXPECT_TRUE(answer);
}

TEST_F(HandsetTest, AFolderHasOneHandsetAndOutlivesIt) {
    const std::string dir = place_.at("h");
    {
        RunningHandset handset(place_);
        EXPECT_THROW(handset::Folder{dir}, handset::Error);
        EXPECT_TRUE(ExtensionClient(handset).connected()) << "the refused handset disturbed the live one";
        handset.stop(SIGKILL);
    }
    std::filesystem::rename(dir + "/qmi/65508", dir + "/qmi/3");
    {
        RunningHandset handset(place_);
        EXPECT_FALSE(std::filesystem::exists(dir + "/qmi/3")) << "left by the dead handset";
        EXPECT_TRUE(ExtensionClient(handset).request(0, {}));
        EXPECT_EQ(handset.stop(SIGTERM), 0);
    }
    EXPECT_FALSE(std::filesystem::exists(dir + "/qmi/65508"));
    EXPECT_EQ(std::filesystem::status(dir).permissions(), std::filesystem::perms::owner_all);

    const std::string fits = place_.at(std::string(89 - place_.at("").size(), 'a'));
    EXPECT_NO_THROW(handset::Folder{fits});
    EXPECT_THROW(handset::Folder{fits + "a"}, handset::Error);
    std::filesystem::create_directory_symlink(fits, place_.at("link"));
    EXPECT_THROW(handset::Folder(place_.at("link")), handset::Error);
    const auto take_root = [] {
        if (geteuid() == 0 && seteuid(65534) != 0)
            _exit(1);
        try {
            const handset::Folder taken("/");
        } catch (const handset::Error& error) {
            handset::complain(error.what());
            _exit(0);
        }
        _exit(1);
    };
    EXPECT_EXIT(take_root(), testing::ExitedWithCode(0), "it belongs to another user");
}

}  // namespace
}  // namespace handset_test
