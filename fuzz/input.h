// The bytes of one run of a fuzzer, taken from the front. What is not there reads as zero or as nothing.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

class Input {
public:
    Input(const uint8_t* data, size_t size) : next_(data), left_(size) {}

    bool empty() const { return left_ == 0; }
    uint8_t peek() const { return left_ == 0 ? 0 : *next_; }

    uint8_t u8() { return static_cast<uint8_t>(number(1)); }
    uint16_t u16() { return static_cast<uint16_t>(number(2)); }
    uint32_t u32() { return number(4); }
    int32_t i32() { return static_cast<int32_t>(u32()); }

    /// The next `count` bytes, or those that are left: a heap block of exactly their size, so that a read
    /// past them is seen.
    std::vector<uint8_t> bytes(size_t count) {
        const size_t taken = std::min(count, left_);
        std::vector<uint8_t> block(next_, next_ + taken);
        skip(taken);
        return block;
    }
    std::vector<uint8_t> rest() { return bytes(left_); }

    /// Bytes behind their number, in two bytes and in one.
    std::vector<uint8_t> block() { return bytes(u16()); }
    std::vector<uint8_t> short_block() { return bytes(u8()); }

    /// The text up to a line break, which is passed over.
    std::string line() {
        const uint8_t* const end = std::find(next_, next_ + left_, '\n');
        std::string text(next_, end);
        skip(std::min(text.size() + 1, left_));
        return text;
    }

private:
    uint32_t number(size_t width) {
        uint32_t value = 0;
        for (size_t i = 0; i < width && left_ != 0; ++i, skip(1))
            value |= uint32_t{*next_} << (8 * i);
        return value;
    }
    void skip(size_t count) {
        next_ += count;
        left_ -= count;
    }

    const uint8_t* next_;
    size_t left_;
};
