// The ISD-R, the application of an eUICC that manages profiles: requests come in blocks of STORE DATA.
#pragma once

#include <array>

#include "card.h"
#include "es10.h"

namespace handset {

class IsdR : public Applet {
public:
    explicit IsdR(Es10 es10) : es10_(std::move(es10)) {}

    wire::View aid() const override;
    wire::Bytes control_information() const override;
    CardAnswer command(uint8_t channel, const Apdu& apdu) override;
    void forget(uint8_t channel) override { requests_[channel] = Request(); }

private:
    // As far as it has come on a channel.
    struct Request {
        wire::Bytes data;
        unsigned blocks = 0;
    };

    CardAnswer carry_out(wire::View request);

    Es10 es10_;
    std::array<Request, Card::kChannels> requests_;
};

}  // namespace handset
