// QMI and diag packets as bytes: what the Linux library and the simulated handset both speak. Neither
// side's message layouts are known here, only how bytes, TLVs and packets are framed. Nothing here keeps
// state; any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace wire {

using Bytes = std::vector<uint8_t>;

/// Bytes that somebody else owns.
struct View {
    const uint8_t* data = nullptr;
    size_t size = 0;

    View() = default;
    View(const void* bytes, size_t count) : data(static_cast<const uint8_t*>(bytes)), size(count) {}
    View(const Bytes& bytes) : data(bytes.data()), size(bytes.size()) {}

    Bytes copy() const { return size == 0 ? Bytes() : Bytes(data, data + size); }
};

/// How many bytes there are before the zeros at the end: most requests are mostly zeros.
size_t without_zeros(View bytes);

/// Reads little-endian numbers from the front of a view. A read past the end returns zeros and makes ok()
/// false for good, so that a caller may read a whole record and ask once.
class Reader {
public:
    explicit Reader(View bytes) : bytes_(bytes) {}

    uint8_t u8() { return static_cast<uint8_t>(number(1)); }
    uint16_t u16() { return static_cast<uint16_t>(number(2)); }
    uint32_t u32() { return static_cast<uint32_t>(number(4)); }
    int32_t i32() { return static_cast<int32_t>(u32()); }
    uint64_t u64() { return number(8); }

    /// An unsigned number of `width` bytes, 1 to 8.
    uint64_t number(size_t width);

    /// The next `count` bytes; an empty view when there are fewer.
    View bytes(size_t count);

    /// All that is left.
    View rest() { return bytes(left()); }

    size_t left() const { return bytes_.size - position_; }
    bool ok() const { return ok_; }

private:
    View bytes_;
    size_t position_ = 0;
    bool ok_ = true;
};

/// Appends little-endian numbers to a buffer.
class Writer {
public:
    Writer() : Writer(kUsualSize) {}
    /// `size` is how much room is made at first.
    explicit Writer(size_t size) { buffer_.reserve(size); }

    Writer& u8(uint8_t value) { return number(value, 1); }
    Writer& u16(uint16_t value) { return number(value, 2); }
    Writer& u32(uint32_t value) { return number(value, 4); }
    Writer& i32(int32_t value) { return number(static_cast<uint32_t>(value), 4); }
    Writer& u64(uint64_t value) { return number(value, 8); }

    /// The low `width` bytes of a number, 1 to 8.
    Writer& number(uint64_t value, size_t width);
    Writer& bytes(View bytes);
    Writer& zeros(size_t count);

    /// One TLV. The value may have at most 65,535 bytes; a longer one is cut.
    Writer& tlv(uint8_t type, View value);

    /// A TLV whose value is what is written until end_tlv(), which is given what begin_tlv() returned. False:
    /// it has become longer than a TLV may be.
    size_t begin_tlv(uint8_t type);
    bool end_tlv(size_t begun);

    size_t size() const { return buffer_.size(); }
    const Bytes& data() const { return buffer_; }
    Bytes take() { return std::move(buffer_); }

private:
    // Enough for most messages, so that the buffer does not grow byte by byte.
    static constexpr size_t kUsualSize = 64;

    Bytes buffer_;
};

struct Tlv {
    uint8_t type = 0;
    View value;
};

/// Takes TLVs from a message's body one by one.
class TlvReader {
public:
    explicit TlvReader(View body) : reader_(body) {}

    /// The next TLV, or nothing at the end and at a TLV that runs past it; then ok() tells the two apart.
    std::optional<Tlv> next();
    bool ok() const { return reader_.ok(); }

private:
    Reader reader_;
};

/// True when no TLV of the body runs past its end.
bool tlvs_are_whole(View body);

/// The value of the last TLV of a type in a body, or nothing when it is absent.
std::optional<View> find_tlv(View body, uint8_t type);

enum QmiFlags : uint8_t { kQmiRequest = 0, kQmiResponse = 2, kQmiIndication = 4 };

/// One QMI service message, as it travels in one packet of a socket.
struct QmiPacket {
    uint8_t flags = kQmiRequest;
    uint16_t transaction = 0;  // 0 for an indication
    uint16_t message = 0;
    View body;  // TLVs; somebody else's
};

constexpr size_t kQmiHeaderSize = 7;
/// The most bytes of one packet: the header and 65,535 bytes of TLVs.
constexpr size_t kQmiPacketMax = kQmiHeaderSize + 65535;

/// A body of more than 65,535 bytes is cut.
Bytes encode(const QmiPacket& packet);

/// Writes the header over the first kQmiHeaderSize bytes of a packet, whose body stands behind them already
/// and is not looked for in `head`. The packet has at most kQmiPacketMax bytes.
void put_head(const QmiPacket& head, Bytes& packet);

/// The body is a part of `packet`. Nothing when the header is cut short or its length is not that
/// of the body.
std::optional<QmiPacket> decode_qmi(View packet);

/// All but the body, also of a packet that is cut short behind the message id or has another length
/// than it says.
std::optional<QmiPacket> decode_qmi_head(View packet);

/// Diag interface: ops of the client, answered with `op | kDiagAnswer`; events of the handset.
enum DiagOp : uint8_t {
    kDiagOpen = 1,
    kDiagRemoteMask = 2,
    kDiagSwitchLogging = 3,
    kDiagSend = 4,
    kDiagDciRegister = 5,
    kDiagDciSignal = 6,
    kDiagDciSupport = 7,
    kDiagDciStreams = 8,
    kDiagDciSend = 9,
    kDiagDciRelease = 10,
    kDiagEventResponse = 0x40,
    kDiagEventDciResponse = 0x41,
    kDiagEventLog = 0x42,
    kDiagEventEvent = 0x43,
    kDiagAnswer = 0x80
};

/// The most bytes of one diag packet that either side sends or takes: what a socket with Linux's
/// usual buffer takes.
constexpr size_t kDiagPacketMax = 212'992 - 32;

}  // namespace wire
