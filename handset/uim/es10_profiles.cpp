// Profiles: listed, enabled, disabled, deleted, named, and reset.
#include <algorithm>

#include "es10.h"
#include "usim.h"

namespace handset {
namespace {

constexpr uint32_t kSearch = 0xA0;
constexpr uint32_t kTagList = 0x5C;
constexpr uint32_t kIdentifier = 0xA0;
constexpr uint32_t kRefresh = 0x81;
constexpr uint32_t kResetOptions = 0x82;

constexpr uint32_t kInfoList = 0xA0;
constexpr uint32_t kInfoError = 0x81;
constexpr uint8_t kIncorrectValues = 1;
constexpr uint32_t kInfo = 0xE3;

// What is told of a profile.
constexpr uint32_t kAid = 0x4F;
constexpr uint32_t kIccid = 0x5A;
constexpr uint32_t kNickname = 0x90;
constexpr uint32_t kProvider = 0x91;
constexpr uint32_t kName = 0x92;
constexpr uint32_t kClass = 0x95;
constexpr uint32_t kNotificationConfiguration = 0xB6;
constexpr uint32_t kState = 0x9F70;
constexpr uint32_t kDefaultTags[] = {kIccid, kAid, kState, kNickname, kProvider, kName, kClass};

constexpr size_t kNicknameMax = 64;
constexpr uint8_t kAllEvents = kNotifyEnable | kNotifyDisable | kNotifyDelete;

bool matches(const StoredProfile& profile, const DerObject& criterion) {
    switch (criterion.tag) {
        case kIccid:
            return criterion.value.copy() == iccid_bytes(profile.iccid);
        case kAid:
            return criterion.value.copy() == profile.aid;
        default:
            return criterion.value.size == 1 &&
                   *criterion.value.data == static_cast<uint8_t>(profile.profile_class);
    }
}

EuiccMemory::Chosen choose(const EuiccMemory& memory, const DerObject& identifier) {
    const auto& profiles = memory.profiles();
    const auto found = std::find_if(profiles.begin(), profiles.end(), [&](const StoredProfile& profile) {
        return matches(profile, identifier);
    });
    if (found == profiles.end())
        return std::nullopt;
    return static_cast<size_t>(found - profiles.begin());
}

bool is_identifier(const std::optional<DerObject>& object) {
    return object && (object->tag == kIccid || object->tag == kAid);
}

void put_configuration(DerWriter& writer, const std::string& address) {
    DerWriter entry;
    entry.bits(0x80, kAllEvents).text(0x81, address);
    writer.object(kNotificationConfiguration, der(0x30, entry.data()));
}

void put_info(DerWriter& writer, uint32_t tag, const StoredProfile& profile, const std::string& address) {
    switch (tag) {
        case kIccid:
            writer.object(tag, iccid_bytes(profile.iccid));
            break;
        case kAid:
            writer.object(tag, profile.aid);
            break;
        case kState:
            writer.number(tag, profile.enabled ? 1 : 0);
            break;
        case kNickname:
            if (!profile.nickname.empty())
                writer.text(tag, profile.nickname);
            break;
        case kProvider:
            writer.text(tag, profile.provider);
            break;
        case kName:
            writer.text(tag, profile.name);
            break;
        case kClass:
            writer.number(tag, static_cast<uint8_t>(profile.profile_class));
            break;
        case kNotificationConfiguration:
            if (profile.profile_class != ProfileClass::kTest)
                put_configuration(writer, address);
            break;
        default:
            break;
    }
}

// The tags of a list, which stand one behind the other without anything between.
std::optional<std::vector<uint32_t>> tags_in(wire::View list) {
    std::vector<uint32_t> tags;
    for (size_t i = 0; i < list.size; ++i) {
        uint32_t tag = list.data[i];
        if ((tag & 0x1F) == 0x1F) {
            if (++i == list.size)
                return std::nullopt;
            tag = tag << 8 | list.data[i];
        }
        tags.push_back(tag);
    }
    return tags;
}

// Enabling and disabling have one form of request. Its refresh flag may be missing, and then holds.
Es10Answer switch_profile(Es10& es10, wire::View request,
                          Es10Result (EuiccMemory::*change)(EuiccMemory::Chosen)) {
    const auto inside = find_der(request, kIdentifier);
    const auto identifier = inside ? single_der(*inside) : std::nullopt;
    const auto flag = find_der(request, kRefresh);
    if (!is_identifier(identifier) || (flag && flag->size != 1))
        return std::nullopt;
    const Es10Result result = (es10.memory.*change)(choose(es10.memory, *identifier));
    if (result == kEs10Ok)
        es10.changed(!flag || *flag->data != 0);
    return es10::result(result);
}

}  // namespace

Es10Answer es10::profiles_info(Es10& es10, wire::View request) {
    std::optional<DerObject> criterion;
    if (const auto search = find_der(request, kSearch)) {
        criterion = single_der(*search);
        if (!criterion || (!is_identifier(criterion) && criterion->tag != kClass))
            return DerWriter().number(kInfoError, kIncorrectValues).take();
    }
    std::vector<uint32_t> tags(std::begin(kDefaultTags), std::end(kDefaultTags));
    if (const auto list = find_der(request, kTagList)) {
        const auto listed = tags_in(*list);
        if (!listed)
            return DerWriter().number(kInfoError, kIncorrectValues).take();
        tags = *listed;
    }
    DerWriter infos;
    for (const StoredProfile& profile : es10.memory.profiles()) {
        if (criterion && !matches(profile, *criterion))
            continue;
        DerWriter info;
        for (const uint32_t tag : tags)
            put_info(info, tag, profile, es10.profile.notification_address);
        infos.object(kInfo, info.data());
    }
    return der(kInfoList, infos.data());
}

Es10Answer es10::enable_profile(Es10& es10, wire::View request) {
    return switch_profile(es10, request, &EuiccMemory::enable);
}

Es10Answer es10::disable_profile(Es10& es10, wire::View request) {
    return switch_profile(es10, request, &EuiccMemory::disable);
}

Es10Answer es10::delete_profile(Es10& es10, wire::View request) {
    const auto identifier = single_der(request);
    if (!is_identifier(identifier))
        return std::nullopt;
    return result(es10.memory.remove(choose(es10.memory, *identifier)));
}

Es10Answer es10::set_nickname(Es10& es10, wire::View request) {
    const auto iccid = find_der(request, kIccid);
    const auto nickname = find_der(request, kNickname);
    if (!iccid || !nickname)
        return std::nullopt;
    const auto text = utf8(*nickname, kNicknameMax);
    if (!text)
        return result(kEs10Undefined);
    return result(es10.memory.set_nickname(choose(es10.memory, {kIccid, *iccid}), *text));
}

// The channels stay open: the one who asked is still to close his own.
Es10Answer es10::memory_reset(Es10& es10, wire::View request) {
    const auto options = find_der(request, kResetOptions);
    if (!options || options->size != 2)
        return std::nullopt;
    const Es10Result reset = es10.memory.reset(options->data[1]);
    if (reset == kEs10Ok)
        es10.changed(false);
    return result(reset);
}

}  // namespace handset
