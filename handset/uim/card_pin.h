// The PIN of a card: whether it is asked for, whether it was given since power-up, and how many tries are
// left for it and for the code that unblocks it.
#pragma once

#include <string>

#include "apdu.h"
#include "wire.h"

namespace handset {

class CardPin {
public:
    static constexpr uint8_t kTriesMax = 3;
    static constexpr uint8_t kUnblockTriesMax = 10;
    static constexpr size_t kCodeSize = 8;  // in a command: digits, then FF

    CardPin(std::string pin, std::string puk, bool enabled)
        : pin_(std::move(pin)), puk_(std::move(puk)), enabled_(enabled) {}

    bool enabled() const { return enabled_; }
    bool satisfied() const { return !enabled_ || verified_; }
    bool verified() const { return verified_; }
    uint8_t tries() const { return tries_; }
    uint8_t unblock_tries() const { return unblock_tries_; }

    /// Whether both tell the same of themselves.
    bool looks_like(const CardPin& other) const {
        return enabled_ == other.enabled_ && verified_ == other.verified_ && tries_ == other.tries_ &&
               unblock_tries_ == other.unblock_tries_;
    }

    /// Power-up.
    void forget() { verified_ = false; }

    /// The commands of the card, each with its data; without data, the tries that are left are told.
    uint16_t verify(wire::View code);
    uint16_t change(wire::View codes);
    uint16_t enable(wire::View code, bool enabled);
    uint16_t unblock(wire::View codes);

    /// What must last, and the same taken up again. False when the bytes are none of that.
    void write(wire::Writer& writer) const;
    bool read(wire::View bytes);

private:
    uint16_t check(wire::View code);
    uint16_t tell(uint8_t tries) const;

    std::string pin_;
    std::string puk_;
    bool enabled_;
    bool verified_ = false;
    uint8_t tries_ = kTriesMax;
    uint8_t unblock_tries_ = kUnblockTriesMax;
};

}  // namespace handset
