#include "hex_text.h"

#include <cstring>

namespace handset {
namespace {

constexpr char kDigits[] = "0123456789ABCDEF";
constexpr size_t kZeroTail = 8;

constexpr size_t kWidth = 3;

// Every byte as "00 " to "FF ", in a size that is copied as one word; the fourth character is of no account.
struct Pairs {
    char text[256][4] = {};

    constexpr Pairs() {
        for (size_t byte = 0; byte < 256; ++byte) {
            text[byte][0] = kDigits[byte >> 4];
            text[byte][1] = kDigits[byte & 15];
            text[byte][2] = ' ';
        }
    }
};
constexpr Pairs kPairs;

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
    out.resize(start + shown * kWidth + 1);
    char* next = out.data() + start;
    for (size_t i = 0; i < shown; ++i, next += kWidth)
        memcpy(next, kPairs.text[bytes.data[i]], sizeof kPairs.text[0]);
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
