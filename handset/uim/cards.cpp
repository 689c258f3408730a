#include "cards.h"

#include <algorithm>
#include <map>
#include <string>

#include "core.h"
#include "profile_section.h"

namespace handset {
namespace {

// Card commands, common requests in the t/l/v form. The value of each answer is one 32-bit number.
constexpr uint32_t kStatusQuery = 39;  // no value; 1 when any slot holds a card, else 0
constexpr uint32_t kStatusGet = 55;    // u32 subscription; 1 when its slot holds a card, else 0
constexpr uint32_t kTypeQuery = 56;    // no value; 1 for one slot, 2 for more, 0 for none
constexpr uint32_t kStatusSet = 57;    // u32 subscription, mode, level; answered like 55, after the change
constexpr uint32_t kHotswap = 80;  // u32 opt, and to start: seconds after push, after pull, count; 1 started

constexpr uint32_t kTestedSlot = 1;

std::string slot_name(uint32_t slot) {
    return "slot " + std::to_string(slot);
}

CommonAnswer number(uint32_t value) {
    wire::Writer writer;
    writer.u32(value);
    return {kModemOk, writer.take()};
}

}  // namespace

void read_profile(Section& section, CardsProfile& cards) {
    if (section.has("slots"))
        cards.slots.clear();
    section.list("slots", CardsProfile::kSlotsMax, [&cards](Section& slot) {
        SlotProfile& profile = cards.slots.emplace_back();
        slot.boolean("present", profile.present);
        slot.integer("error", profile.error);
        read_card(slot, profile.card);
    });
}

Cards::Cards(Core& core, CommonRequests& requests, const CardsProfile& profile)
    : core_(core), profile_(profile) {
    core_.state().clear("cards");
    for (const SlotProfile& slot : profile_.slots) {
        present_.push_back(slot.present);
        core_.state().set("cards", slot_name(slots()), slot.present ? "card" : "empty");
    }
    core_.on_restart([this] { stop_hotswap(); });
    core_.control().add_setting("cards", [this](Section& section) { return read_change(section); });
    for (const bool push : {true, false})
        core_.control().add_event(push ? "push" : "pull", "SLOT", [this, push](const Control::Words& words) {
            if (words.size() != 1)
                throw Error(std::string("event ") + (push ? "push" : "pull") + " takes a slot");
            set_present(number_in(words[0], "a slot", 1, slots()), push);
        });
    add_commands(requests);
}

// slots.N.present, counted from 0 as in the profile.
std::function<void()> Cards::read_change(Section& section) {
    std::map<uint32_t, bool> changes;
    section.object("slots", [&](Section& list) {
        list.each([&](const std::string& index, Section& slot) {
            const uint32_t number = number_in(index, "a slot", 0, slots() - 1) + 1;
            bool is_present = present(number);
            slot.boolean("present", is_present);
            changes[number] = is_present;
        });
    });
    return [this, changes] {
        for (const auto& change : changes)
            set_present(change.first, change.second);
    };
}

void Cards::add_commands(CommonRequests& requests) {
    const auto add = [&requests](uint32_t code, CommonRequests::Handler handler) {
        requests.add(CommonForm::kTlv, code, std::move(handler));
    };
    add(kStatusQuery, [this](const CommonRequest&) {
        return number(std::count(present_.begin(), present_.end(), true) > 0 ? 1 : 0);
    });
    add(kStatusGet, [this](const CommonRequest& request) { return status_of(request); });
    add(kTypeQuery, [this](const CommonRequest&) { return number(std::min(slots(), 2U)); });
    add(kStatusSet, [this](const CommonRequest& request) { return set_status(request); });
    add(kHotswap, [this](const CommonRequest& request) { return hotswap(request); });
}

bool Cards::present(uint32_t slot) const {
    return slot >= 1 && slot <= slots() && present_[slot - 1];
}

void Cards::set_present(uint32_t slot, bool present) {
    if (slot < 1 || slot > slots() || present_[slot - 1] == present)
        return;
    present_[slot - 1] = present;
    core_.state().set("cards", slot_name(slot), present ? "card" : "empty");
    core_.log_event("card of " + slot_name(slot) + (present ? " pushed" : " pulled"));
    for (const auto& action : change_actions_)
        action(slot);
    // A card may go while nobody speaks to the modem.
    core_.flush();
}

CommonAnswer Cards::status_of(const CommonRequest& request) const {
    wire::Reader reader(request.value);
    const uint32_t subscription = reader.u32();
    if (!reader.ok() || subscription >= slots())
        return {kModemMalformed, {}};
    return number(present(subscription + 1) ? 1 : 0);
}

// The level is that of the slot's detect line, which the modem takes for the card itself in both modes.
CommonAnswer Cards::set_status(const CommonRequest& request) {
    wire::Reader reader(request.value);
    const uint32_t subscription = reader.u32();
    reader.u32();
    const uint32_t level = reader.u32();
    if (!reader.ok() || subscription >= slots())
        return {kModemMalformed, {}};
    set_present(subscription + 1, level != 0);
    return status_of(request);
}

CommonAnswer Cards::hotswap(const CommonRequest& request) {
    wire::Reader reader(request.value);
    const uint32_t opt = reader.u32();
    if (!reader.ok() || slots() < kTestedSlot)
        return {kModemMalformed, {}};
    if (opt == 0) {
        stop_hotswap();
        return number(0);
    }
    Hotswap test;
    test.after_push = std::chrono::seconds(reader.u32());
    test.after_pull = std::chrono::seconds(reader.u32());
    test.count = reader.u32();
    if (!reader.ok())
        return {kModemMalformed, {}};
    start_hotswap(test);
    return number(1);
}

void Cards::start_hotswap(const Hotswap& test) {
    stop_hotswap();
    hotswap_ = test;
    show_hotswap();
    if (test.count > 0)
        hotswap_.timer = core_.loop().after(EventLoop::Milliseconds(0), [this] { pull_for_test(); });
}

// A test that is stopped leaves the card where a test finds it.
void Cards::stop_hotswap() {
    if (hotswap_.timer == 0)
        return;
    core_.loop().cancel(hotswap_.timer);
    hotswap_.timer = 0;
    set_present(kTestedSlot, true);
}

void Cards::pull_for_test() {
    set_present(kTestedSlot, false);
    hotswap_.timer = core_.loop().after(hotswap_.after_pull, [this] { push_for_test(); });
}

void Cards::push_for_test() {
    set_present(kTestedSlot, true);
    ++hotswap_.done;
    show_hotswap();
    hotswap_.timer = 0;
    if (hotswap_.done < hotswap_.count)
        hotswap_.timer = core_.loop().after(hotswap_.after_push, [this] { pull_for_test(); });
}

void Cards::show_hotswap() {
    core_.state().set("cards", "hot-swaps",
                      std::to_string(hotswap_.done) + " of " + std::to_string(hotswap_.count));
}

}  // namespace handset
