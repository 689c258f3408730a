// The UIM service's slots for other subjects.
#pragma once

#include "sim_access.h"
#include "uim_slots.h"

namespace handset {

class UimSimAccess : public SimAccess {
public:
    explicit UimSimAccess(UimSlots& slots) : slots_(slots) {}

    Channel open_channel(uint8_t slot, wire::View aid) override {
        const auto opened = slots_.open_channel(slot, aid);
        return {opened.error == kQmiErrorNone ? opened.number : uint8_t{0}, opened.words};
    }

    bool close_channel(uint8_t slot, uint8_t channel) override {
        return slots_.close_channel(slot, channel).error == kQmiErrorNone;
    }

    std::optional<wire::Bytes> transmit(uint8_t slot, uint8_t channel, wire::View apdu) override {
        auto response = slots_.transmit(slot, channel, apdu, kAnswerMax);
        return response.error == kQmiErrorNone ? std::optional(std::move(response.apdu)) : std::nullopt;
    }

private:
    static constexpr size_t kAnswerMax = 256 + 2;  // with the status words; more is fetched

    UimSlots& slots_;
};

}  // namespace handset
