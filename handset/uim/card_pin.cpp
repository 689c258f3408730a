#include "card_pin.h"

#include <algorithm>
#include <optional>

namespace handset {
namespace {

constexpr uint8_t kTlvPin = 1;
constexpr size_t kDigitsMin = 4;

// The digits of a code as a command holds it; nothing when it is none.
std::optional<std::string> digits_of(wire::View code) {
    std::string digits(code.data, code.data + code.size);
    digits.erase(std::find(digits.begin(), digits.end(), '\xFF'), digits.end());
    const bool filled = std::all_of(code.data + digits.size(), code.data + code.size,
                                    [](uint8_t byte) { return byte == 0xFF; });
    const bool numeric = digits.find_first_not_of("0123456789") == std::string::npos;
    if (digits.size() < kDigitsMin || !filled || !numeric)
        return std::nullopt;
    return digits;
}

wire::View first_code(wire::View codes) {
    return {codes.data, CardPin::kCodeSize};
}

wire::View second_code(wire::View codes) {
    return {codes.data + CardPin::kCodeSize, CardPin::kCodeSize};
}

}  // namespace

uint16_t CardPin::tell(uint8_t tries) const {
    return static_cast<uint16_t>(tries == 0 ? kSwBlocked : kSwTriesLeft | tries);
}

// One try of the PIN.
uint16_t CardPin::check(wire::View code) {
    if (code.size != kCodeSize)
        return kSwWrongLength;
    if (tries_ == 0)
        return kSwBlocked;
    if (digits_of(code) == pin_) {
        tries_ = kTriesMax;
        return kSwOk;
    }
    verified_ = false;
    --tries_;
    return static_cast<uint16_t>(kSwTriesLeft | tries_);
}

uint16_t CardPin::verify(wire::View code) {
    if (code.size == 0)
        return satisfied() ? uint16_t{kSwOk} : tell(tries_);
    if (!enabled_)
        return kSwInvalidated;
    const uint16_t words = check(code);
    verified_ = words == kSwOk;
    return words;
}

uint16_t CardPin::change(wire::View codes) {
    if (codes.size != 2 * kCodeSize)
        return kSwWrongLength;
    if (!enabled_)
        return kSwInvalidated;
    const auto pin = digits_of(second_code(codes));
    if (!pin)
        return kSwWrongData;
    const uint16_t words = check(first_code(codes));
    if (words == kSwOk) {
        pin_ = *pin;
        verified_ = true;
    }
    return words;
}

uint16_t CardPin::enable(wire::View code, bool enabled) {
    if (enabled_ == enabled)
        return kSwConditions;
    const uint16_t words = check(code);
    if (words == kSwOk) {
        enabled_ = enabled;
        verified_ = true;
    }
    return words;
}

uint16_t CardPin::unblock(wire::View codes) {
    if (codes.size == 0)
        return tell(unblock_tries_);
    if (codes.size != 2 * kCodeSize)
        return kSwWrongLength;
    if (unblock_tries_ == 0)
        return kSwBlocked;
    const auto pin = digits_of(second_code(codes));
    if (!pin)
        return kSwWrongData;
    if (digits_of(first_code(codes)) != puk_) {
        --unblock_tries_;
        return static_cast<uint16_t>(kSwTriesLeft | unblock_tries_);
    }
    pin_ = *pin;
    tries_ = kTriesMax;
    unblock_tries_ = kUnblockTriesMax;
    enabled_ = true;
    verified_ = true;
    return kSwOk;
}

void CardPin::write(wire::Writer& writer) const {
    wire::Writer value;
    value.u8(enabled_ ? 1 : 0).u8(tries_).u8(unblock_tries_).bytes({pin_.data(), pin_.size()});
    writer.tlv(kTlvPin, value.data());
}

bool CardPin::read(wire::View bytes) {
    const auto value = wire::find_tlv(bytes, kTlvPin);
    wire::Reader reader(value.value_or(wire::View()));
    const bool enabled = reader.u8() != 0;
    const uint8_t tries = reader.u8();
    const uint8_t unblock_tries = reader.u8();
    const wire::View pin = reader.rest();
    if (!reader.ok() || tries > kTriesMax || unblock_tries > kUnblockTriesMax || pin.size < kDigitsMin ||
        pin.size > kCodeSize)
        return false;
    enabled_ = enabled;
    tries_ = tries;
    unblock_tries_ = unblock_tries;
    pin_.assign(pin.data, pin.data + pin.size);
    return true;
}

}  // namespace handset
