#include "at_sim.h"

#include <algorithm>

namespace handset {
namespace {

constexpr uint16_t kDone = 0x9000;
constexpr uint16_t kBlocked = 0x6983;
constexpr uint16_t kTriesLeft = 0x63C0;
constexpr uint16_t kTriesMask = 0xFFF0;

constexpr uint8_t kVerify = 0x20;
constexpr uint8_t kUnblock = 0x2C;
constexpr uint8_t kSelect = 0xA4;
constexpr uint8_t kReadBinary = 0xB0;
constexpr uint8_t kByPath = 0x08;
constexpr uint8_t kNoAnswerWanted = 0x0C;
constexpr uint8_t kGlobalPin = 0x01;
constexpr size_t kCodeMin = 4;
constexpr size_t kCodeMax = 8;

// The USIM, whoever issued it.
constexpr uint8_t kUsim[] = {0xA0, 0x00, 0x00, 0x00, 0x87, 0x10, 0x02};

uint16_t words_of(const std::optional<wire::Bytes>& answer) {
    if (!answer || answer->size() < 2)
        return 0;
    return static_cast<uint16_t>(*(answer->end() - 2) << 8 | answer->back());
}

std::optional<wire::Bytes> command(SimAccess& sim, uint8_t channel, uint8_t instruction, uint8_t p1,
                                   uint8_t p2, wire::View data) {
    wire::Writer apdu;
    apdu.u8(channel).u8(instruction).u8(p1).u8(p2);
    if (data.size > 0)
        apdu.u8(static_cast<uint8_t>(data.size)).bytes(data);
    if (instruction == kReadBinary)
        apdu.u8(0);
    return sim.transmit(kAtSlot, channel, apdu.data());
}

// A file's content, by its path from the master file; read on a channel of its own, so that nobody's
// selection is lost.
std::optional<wire::Bytes> read_file(SimAccess& sim, const wire::Bytes& path) {
    const auto channel = sim.open_channel(kAtSlot, {kUsim, sizeof kUsim});
    if (channel.number == 0)
        return std::nullopt;
    std::optional<wire::Bytes> content;
    if (words_of(command(sim, channel.number, kSelect, kByPath, kNoAnswerWanted, path)) == kDone)
        content = command(sim, channel.number, kReadBinary, 0, 0, {});
    sim.close_channel(kAtSlot, channel.number);
    if (words_of(content) != kDone)
        return std::nullopt;
    content->resize(content->size() - 2);
    return content;
}

// Digits lie in a file as nibbles, the lower first; F fills up.
std::string digits_of(const wire::Bytes& bytes) {
    std::string digits;
    for (const uint8_t byte : bytes) {
        for (const int digit : {byte & 0xF, byte >> 4}) {
            if (digit < 10)
                digits += static_cast<char>('0' + digit);
        }
    }
    return digits;
}

void append_code(wire::Writer& data, const std::string& code) {
    std::string filled = code;
    filled.resize(kCodeMax, '\xFF');
    data.bytes({filled.data(), filled.size()});
}

bool is_code(const std::string& code) {
    return code.size() >= kCodeMin && code.size() <= kCodeMax &&
           code.find_first_not_of("0123456789") == std::string::npos;
}

}  // namespace

std::optional<AtError> sim_obstacle(SimAccess& sim) {
    const auto answer = command(sim, 0, kVerify, 0, kGlobalPin, {});
    if (!answer)
        return AtError::kNoSim;
    const uint16_t words = words_of(answer);
    if (words == kBlocked)
        return AtError::kSimPukWanted;
    if ((words & kTriesMask) == kTriesLeft)
        return AtError::kSimPinWanted;
    return std::nullopt;
}

std::optional<std::string> sim_iccid(SimAccess& sim) {
    const auto content = read_file(sim, {0x2F, 0xE2});
    return content ? std::optional(digits_of(*content)) : std::nullopt;
}

std::optional<std::string> sim_imsi(SimAccess& sim) {
    const auto content = read_file(sim, {0x7F, 0xFF, 0x6F, 0x07});
    // Its length stands in front, and before the first digit a nibble of another meaning.
    if (!content || content->size() < 2 || (*content)[0] == 0)
        return std::nullopt;
    wire::Bytes identity(
        content->begin() + 1,
        content->begin() + 1 + std::min<ptrdiff_t>((*content)[0], content->end() - content->begin() - 1));
    identity[0] |= 0x0F;
    return digits_of(identity);
}

std::optional<AtError> enter_pin(SimAccess& sim, const std::string& code, const std::string& new_pin) {
    const auto obstacle = sim_obstacle(sim);
    const bool unblocks = !new_pin.empty();
    if (obstacle == AtError::kNoSim)
        return obstacle;
    if (!obstacle)
        return AtError::kNotAllowed;
    if ((obstacle == AtError::kSimPukWanted) != unblocks)
        return obstacle;
    if (!is_code(code) || (unblocks && !is_code(new_pin)))
        return AtError::kWrongParameters;
    wire::Writer data;
    append_code(data, code);
    if (unblocks)
        append_code(data, new_pin);
    const uint16_t words =
        words_of(command(sim, 0, unblocks ? kUnblock : kVerify, 0, kGlobalPin, data.data()));
    if (words == kDone)
        return std::nullopt;
    return words == kBlocked ? AtError::kSimPukWanted : AtError::kWrongPassword;
}

}  // namespace handset
