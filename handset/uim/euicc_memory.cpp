#include "euicc_memory.h"

#include <algorithm>

#include "card_store.h"
#include "core.h"
#include "hex_text.h"

namespace handset {
namespace {

constexpr char kName[] = "euicc";
constexpr size_t kNotificationsMax = 200;  // the oldest goes when one more comes

// What is shown of it.
constexpr char kSubject[] = "euicc";
constexpr char kProfilesSubject[] = "profiles";

// The file: TLVs, those of a profile behind its own.
enum StateTlv : uint8_t {
    kTlvWired = 1,
    kTlvAddress = 2,
    kTlvLastSequence = 3,
    kTlvProfile = 4,
    kTlvProfileFile = 5,
    kTlvNotification = 6,
};

void put(wire::Writer& writer, const std::string& text) {
    writer.u8(static_cast<uint8_t>(text.size())).bytes({text.data(), text.size()});
}

std::string text_of(wire::View bytes) {
    return bytes.size == 0 ? std::string() : std::string(bytes.data, bytes.data + bytes.size);
}

std::string take(wire::Reader& reader) {
    return text_of(reader.bytes(reader.u8()));
}

wire::Bytes encode_profile(const StoredProfile& profile) {
    wire::Writer writer;
    writer.u8(profile.enabled ? 1 : 0).u8(static_cast<uint8_t>(profile.profile_class));
    put(writer, text_of(profile.aid));
    for (const std::string* text : {&profile.iccid, &profile.name, &profile.provider, &profile.nickname})
        put(writer, *text);
    return writer.take();
}

StoredProfile decode_profile(wire::Reader& reader) {
    StoredProfile profile;
    profile.enabled = reader.u8() != 0;
    profile.profile_class = static_cast<ProfileClass>(reader.u8());
    const std::string aid = take(reader);
    profile.aid.assign(aid.begin(), aid.end());
    for (std::string* text : {&profile.iccid, &profile.name, &profile.provider, &profile.nickname})
        *text = take(reader);
    return profile;
}

wire::Bytes encode_file(const FilePath& path, wire::View content) {
    wire::Writer writer;
    writer.u8(static_cast<uint8_t>(path.size()));
    for (const uint16_t id : path)
        writer.u16(id);
    writer.bytes(content);
    return writer.take();
}

void decode_file(wire::Reader& reader, CardProfile& card) {
    FilePath path(reader.u8());
    for (uint16_t& id : path)
        id = reader.u16();
    card.files[path] = reader.rest().copy();
}

Notification decode_notification(wire::Reader& reader) {
    Notification notification;
    notification.sequence = reader.u32();
    notification.event = reader.u8();
    notification.iccid = take(reader);
    notification.address = take(reader);
    return notification;
}

std::string shown(const StoredProfile& profile) {
    constexpr const char* kClasses[] = {"test", "provisioning", "operational"};
    std::string line = profile.enabled ? "enabled, " : "disabled, ";
    line += kClasses[static_cast<size_t>(profile.profile_class)];
    for (const std::string* text : {&profile.name, &profile.provider, &profile.nickname}) {
        line += text->empty() ? "" : ", ";
        if (!text->empty())
            append_quoted(line, *text);
    }
    return line;
}

}  // namespace

EuiccMemory::EuiccMemory(Core& core, const EuiccProfile& profile) : core_(core), profile_(profile) {
    const auto kept = load_card_memory(core, kName);
    if (auto state = kept ? decode(*kept) : std::nullopt) {
        state_ = std::move(*state);
        show();
        return;
    }
    State first;
    first.wired = profile.wired;
    first.profiles = profile.profiles;
    first.dp_address = profile.dp_address;
    state_ = first;
    commit(std::move(first));
}

wire::Bytes EuiccMemory::encode(const State& state) {
    wire::Writer writer;
    const uint8_t wired = state.wired ? 1 : 0;
    writer.tlv(kTlvWired, {&wired, 1});
    writer.tlv(kTlvAddress, {state.dp_address.data(), state.dp_address.size()});
    writer.tlv(kTlvLastSequence, wire::Writer().u32(state.last_sequence).take());
    for (const StoredProfile& profile : state.profiles) {
        writer.tlv(kTlvProfile, encode_profile(profile));
        for (const auto& file : profile.card.files)
            writer.tlv(kTlvProfileFile, encode_file(file.first, file.second));
    }
    for (const Notification& notification : state.notifications) {
        wire::Writer value;
        value.u32(notification.sequence).u8(notification.event);
        put(value, notification.iccid);
        put(value, notification.address);
        writer.tlv(kTlvNotification, value.data());
    }
    return writer.take();
}

std::optional<EuiccMemory::State> EuiccMemory::decode(wire::View bytes) {
    State state;
    wire::TlvReader tlvs(bytes);
    bool ok = bytes.size > 0;
    while (const auto tlv = tlvs.next()) {
        wire::Reader reader(tlv->value);
        switch (tlv->type) {
            case kTlvWired:
                state.wired = reader.u8() != 0;
                break;
            case kTlvAddress:
                state.dp_address = text_of(reader.rest());
                break;
            case kTlvLastSequence:
                state.last_sequence = reader.u32();
                break;
            case kTlvProfile:
                state.profiles.push_back(decode_profile(reader));
                ok = ok && state.profiles.back().profile_class <= ProfileClass::kOperational &&
                     state.profiles.back().iccid.size() >= 18;
                break;
            case kTlvProfileFile:
                ok = ok && !state.profiles.empty();
                if (ok)
                    decode_file(reader, state.profiles.back().card);
                break;
            case kTlvNotification:
                state.notifications.push_back(decode_notification(reader));
                break;
            default:
                break;
        }
        ok = ok && reader.ok();
    }
    return ok && tlvs.ok() ? std::optional<State>(std::move(state)) : std::nullopt;
}

Es10Result EuiccMemory::commit(State next) {
    if (!keep_card_memory(core_, kName, encode(next)))
        return kEs10Undefined;
    state_ = std::move(next);
    show();
    return kEs10Ok;
}

void EuiccMemory::show() const {
    std::string list;
    core_.state().clear(kProfilesSubject);
    for (const StoredProfile& profile : state_.profiles) {
        list += (list.empty() ? "" : " ") + profile.iccid;
        core_.state().set(kProfilesSubject, profile.iccid, shown(profile));
    }
    core_.state().set(kSubject, "slot 2 wired", state_.wired ? "yes" : "no");
    core_.state().set(kSubject, "profiles", list.empty() ? "none" : list);
}

bool EuiccMemory::wire(bool wired) {
    State next = state_;
    next.wired = wired;
    return commit(std::move(next)) == kEs10Ok;
}

const StoredProfile* EuiccMemory::enabled() const {
    const auto found = std::find_if(state_.profiles.begin(), state_.profiles.end(),
                                    [](const StoredProfile& profile) { return profile.enabled; });
    return found == state_.profiles.end() ? nullptr : &*found;
}

// Test profiles come and go without notice.
void EuiccMemory::notify(State& state, const StoredProfile& profile, NotificationEvent event) const {
    if (profile.profile_class == ProfileClass::kTest)
        return;
    if (state.notifications.size() == kNotificationsMax)
        state.notifications.erase(state.notifications.begin());
    state.notifications.push_back(
        {++state.last_sequence, event, profile.iccid, profile_.notification_address});
}

Es10Result EuiccMemory::enable(Chosen chosen) {
    if (!chosen)
        return kEs10NotFound;
    State next = state_;
    if (next.profiles[*chosen].enabled)
        return kEs10WrongState;
    for (StoredProfile& profile : next.profiles) {
        if (profile.enabled)
            notify(next, profile, kNotifyDisable);
        profile.enabled = false;
    }
    next.profiles[*chosen].enabled = true;
    notify(next, next.profiles[*chosen], kNotifyEnable);
    return commit(std::move(next));
}

Es10Result EuiccMemory::disable(Chosen chosen) {
    if (!chosen)
        return kEs10NotFound;
    State next = state_;
    if (!next.profiles[*chosen].enabled)
        return kEs10WrongState;
    next.profiles[*chosen].enabled = false;
    notify(next, next.profiles[*chosen], kNotifyDisable);
    return commit(std::move(next));
}

Es10Result EuiccMemory::remove(Chosen chosen) {
    if (!chosen)
        return kEs10NotFound;
    State next = state_;
    const auto profile = next.profiles.begin() + static_cast<std::ptrdiff_t>(*chosen);
    if (profile->enabled)
        return kEs10WrongState;
    notify(next, *profile, kNotifyDelete);
    const std::string iccid = profile->iccid;
    next.profiles.erase(profile);
    const Es10Result result = commit(std::move(next));
    if (result == kEs10Ok)
        drop_card_memory(core_, "profile-" + iccid);
    return result;
}

Es10Result EuiccMemory::set_nickname(Chosen chosen, const std::string& nickname) {
    if (!chosen)
        return kEs10NotFound;
    State next = state_;
    next.profiles[*chosen].nickname = nickname;
    return commit(std::move(next));
}

Es10Result EuiccMemory::set_dp_address(const std::string& address) {
    State next = state_;
    next.dp_address = address;
    return commit(std::move(next));
}

Es10Result EuiccMemory::reset(uint8_t options) {
    const auto spared = [options](const StoredProfile& profile) {
        return !(
            ((options & kResetOperational) != 0 && profile.profile_class == ProfileClass::kOperational) ||
            ((options & kResetTest) != 0 && profile.profile_class == ProfileClass::kTest));
    };
    State next = state_;
    const auto gone = std::stable_partition(next.profiles.begin(), next.profiles.end(), spared);
    const std::vector<StoredProfile> deleted(gone, next.profiles.end());
    next.profiles.erase(gone, next.profiles.end());
    for (const StoredProfile& profile : deleted)
        notify(next, profile, kNotifyDelete);
    const bool clears_address = (options & kResetAddress) != 0 && !next.dp_address.empty();
    if (clears_address)
        next.dp_address.clear();
    if (deleted.empty() && !clears_address)
        return kEs10NothingToDelete;
    const Es10Result result = commit(std::move(next));
    if (result == kEs10Ok && !deleted.empty()) {
        for (const StoredProfile& profile : deleted)
            drop_card_memory(core_, "profile-" + profile.iccid);
        core_.log_event("profiles of the eUICC deleted");
    }
    return result;
}

Es10Result EuiccMemory::remove_notification(uint32_t sequence) {
    State next = state_;
    const auto found =
        std::find_if(next.notifications.begin(), next.notifications.end(),
                     [sequence](const Notification& entry) { return entry.sequence == sequence; });
    if (found == next.notifications.end())
        return kEs10NothingToDelete;
    next.notifications.erase(found);
    return commit(std::move(next));
}

}  // namespace handset
