// Commands to an eUICC: records of `u8 channel` and a short block, the command. Whatever comes, it answers as
// a card does, and what it has done it still knows when it is made anew.
#include "core.h"
#include "der.h"
#include "euicc.h"
#include "finding.h"
#include "ground.h"
#include "input.h"

namespace {

using handset::Card;

constexpr size_t kLongest = 1024;
constexpr uint8_t kListProfiles[] = {0x80, 0xE2, 0x91, 0, 3, 0xBF, 0x2D, 0};

void check(const wire::Bytes& answer) {
    require(answer.size() >= 2 && answer.size() <= kLongest,
            "an answer holds status words and no more than fits");
    const uint8_t first = answer[answer.size() - 2];
    require(first == 0x90 || first == 0x98 || (first >= 0x61 && first <= 0x6F),
            "status words are those of a card");
    const bool refused = first != 0x90 && first != 0x61;
    require(!refused || answer.size() == 2, "a refusal brings nothing else");
}

// All profiles, as the ISD-R of a card that begins anew lists them.
wire::Bytes profiles_of(handset::Euicc& euicc) {
    Card& card = euicc.card();
    card.reset();
    const uint8_t channel = card.open_channel().value_or(0);
    require(card.select_application(channel, {euicc.isd_r_aid().data, 5}), "the ISD-R is there");
    wire::Bytes listed = card.transmit(channel, {kListProfiles, sizeof kListProfiles}, UINT16_MAX);
    require(handset::is_der({listed.data(), listed.size() - 2}), "what the ISD-R answers reads");
    return listed;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    constexpr int kCommandsMax = 64;
    static const Ground ground;
    const handset::EuiccProfile profile;
    Input input(data, size);
    {
        handset::EventLoop loop;
        handset::Core core(loop, ground.path(), {}, {}, {});
        handset::Euicc euicc(core, profile);
        for (int i = 0; i < kCommandsMax && !input.empty(); ++i) {
            const uint8_t channel = input.u8() % Card::kChannels;
            const wire::Bytes command = input.short_block();
            if (euicc.card().is_open(channel))
                check(euicc.card().transmit(channel, command, kLongest));
        }
        const wire::Bytes profiles = profiles_of(euicc);
        handset::Euicc again(core, profile);
        require(profiles_of(again) == profiles, "an eUICC that is made anew has the same profiles");
    }
    std::filesystem::remove_all(ground.at("cards"));
    return 0;
}
