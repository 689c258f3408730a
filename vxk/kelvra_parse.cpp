#include "kelvra_parse.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "fatal.h"
#include "kelvra_log.h"

namespace {

constexpr size_t kDigitsMax = 50;

int digit_value(char c) {
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return c >= '0' && c <= '9' ? c - '0' : 0;
}

// The term of a digit that has `behind` digits behind it, saturated to an int.
int digit_term(int digit, size_t behind) {
    const double term = std::ldexp(digit, static_cast<int>(4 * behind));
    constexpr int kMax = std::numeric_limits<int>::max();
    return term >= static_cast<double>(kMax) ? kMax : static_cast<int>(term);
}

}  // namespace

int kelvra_string_to_int(const char* str) {
    if (str == nullptr) {
        kelvra_puts("\ninput is null");
        return 0;
    }
    if (str[0] == '0' && (str[1] == 'x' || str[1] == 'X'))
        return kelvra_hex_string_to_int(str + 2);
    return atoi(str);
}

int kelvra_hex_string_to_int(const char* str) {
    if (str == nullptr) {
        kelvra_puts("\ninput is null");
        return 0;
    }
    const size_t count = strlen(str);
    if (count > kDigitsMax)
        vxk_fatal("hexadecimal number of %zu digits, at most %zu are read", count, kDigitsMax);
    int sum = 0;
    for (size_t i = 0; i < count; ++i) {
        if (__builtin_add_overflow(sum, digit_term(digit_value(str[i]), count - 1 - i), &sum))
            vxk_fatal("hexadecimal number 0x%s overflows 32 bits", str);
    }
    return sum;
}

void kelvra_byte_to_hex(const unsigned char* bytes, int count, char* out) {
    if (bytes == nullptr)
        return;
    constexpr char kDigits[] = "0123456789abcdef";
    for (int i = 0; i < count; ++i) {
        out[2 * i] = kDigits[bytes[i] >> 4];
        out[2 * i + 1] = kDigits[bytes[i] & 0x0f];
    }
}
