#include "hex_text.h"

#include <cstring>

namespace handset {
namespace {

constexpr char kDigits[] = "0123456789ABCDEF";
constexpr size_t kZeroTail = 8;

constexpr size_t kWidth = 3;

// Every byte as "00 " to "FF ", its first character lowest, so that two bytes are stored as one word.
struct Pairs {
    uint64_t text[256] = {};

    constexpr Pairs() {
        for (size_t byte = 0; byte < 256; ++byte)
            text[byte] = static_cast<uint64_t>(kDigits[byte >> 4]) |
                         static_cast<uint64_t>(kDigits[byte & 15]) << 8 | uint64_t{' '} << 16;
    }
};
constexpr Pairs kPairs;
static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__);

void store_words(char* out, wire::View bytes) {
    for (size_t i = 0; i < bytes.size; i += 2, out += 2 * kWidth) {
        uint64_t word = kPairs.text[bytes.data[i]];
        if (i + 1 < bytes.size)
            word |= kPairs.text[bytes.data[i + 1]] << (8 * kWidth);
        memcpy(out, &word, sizeof word);
    }
}

int digit_value(char digit) {
    if (digit >= '0' && digit <= '9')
        return digit - '0';
    if (digit >= 'A' && digit <= 'F')
        return digit - 'A' + 10;
    if (digit >= 'a' && digit <= 'f')
        return digit - 'a' + 10;
    return -1;
}

void append_byte(std::string& out, uint8_t byte) {
    out += kDigits[byte >> 4];
    out += kDigits[byte & 15];
}

}  // namespace

void append_hex(std::string& out, wire::View bytes) {
    size_t shown = wire::without_zeros(bytes);
    size_t zeros = bytes.size - shown;
    if (zeros < kZeroTail) {
        shown = bytes.size;
        zeros = 0;
    }
    // Every message goes through here on its way into the wire log: one growth, with room for the last word.
    const size_t start = out.size();
    out.resize(start + shown * kWidth + sizeof(uint64_t));
    store_words(out.data() + start, {bytes.data, shown});
    out.resize(start + shown * kWidth - (shown > 0 ? 1 : 0));
    if (zeros > 0)
        out += (shown > 0 ? " (+" : "(+") + std::to_string(zeros) + " zero)";
}

std::optional<wire::Bytes> parse_hex(std::string_view text) {
    wire::Bytes bytes;
    for (size_t i = 0; i < text.size();) {
        if (text[i] == ' ') {
            ++i;
            continue;
        }
        const int high = digit_value(text[i]);
        const int low = i + 1 < text.size() ? digit_value(text[i + 1]) : -1;
        if (high < 0 || low < 0)
            return std::nullopt;
        bytes.push_back(static_cast<uint8_t>(high * 16 + low));
        i += 2;
    }
    return bytes;
}

void append_quoted(std::string& out, std::string_view text) {
    out += '"';
    for (const char c : text) {
        switch (c) {
            case '"':
                out += "\\\"";
                break;
            case '\\':
                out += "\\\\";
                break;
            case '\r':
                out += "\\r";
                break;
            case '\n':
                out += "\\n";
                break;
            case '\t':
                out += "\\t";
                break;
            default:
                if (c >= ' ' && c <= '~') {
                    out += c;
                } else {
                    out += "\\x";
                    append_byte(out, static_cast<uint8_t>(c));
                }
        }
    }
    out += '"';
}

}  // namespace handset
