// The eUICC itself: what it is, the servers it knows, and that it downloads nothing.
#include <sys/random.h>

#include "es10.h"

namespace handset {
namespace {

constexpr size_t kAddressMax = 128;
constexpr size_t kChallengeSize = 16;
constexpr uint32_t kEid = 0x5A;
constexpr uint32_t kTagList = 0x5C;

constexpr uint32_t kDpAddress = 0x80;
constexpr uint32_t kDsAddress = 0x81;

constexpr uint32_t kVersion = 0x82;
constexpr uint32_t kVerificationKeys = 0xA9;
constexpr uint32_t kSigningKeys = 0xAA;

constexpr uint32_t kError = 0xA1;
constexpr uint32_t kTransaction = 0x80;
constexpr uint8_t kCiKeyUnknown = 7;
constexpr uint8_t kNoSession = 4;
constexpr uint8_t kInvalidTransaction = 5;

constexpr uint32_t kFreeMemory = 512 * 1024;
constexpr uint32_t kFreeWorkingMemory = 16 * 1024;

// It trusts no certificate issuer, so whoever wants to download sees beforehand that it cannot.
void put_no_keys(DerWriter& writer) {
    writer.object(kVerificationKeys, {}).object(kSigningKeys, {});
}

wire::Bytes download_error(wire::View transaction, uint8_t code) {
    DerWriter error;
    error.object(kTransaction, transaction).number(0x02, code);
    return der(kError, error.data());
}

// The transaction's number stands in the signed part of a server's request.
wire::View transaction_of(wire::View request) {
    constexpr size_t kTransactionMax = 16;
    const auto part = find_der(request, 0x30);
    const auto transaction = part && is_der(*part) ? find_der(*part, kTransaction) : std::nullopt;
    return transaction && transaction->size <= kTransactionMax ? *transaction : wire::View();
}

}  // namespace

Es10Answer es10::configured_addresses(Es10& es10, wire::View) {
    DerWriter writer;
    if (!es10.memory.dp_address().empty())
        writer.text(kDpAddress, es10.memory.dp_address());
    if (!es10.profile.ds_address.empty())
        writer.text(kDsAddress, es10.profile.ds_address);
    return writer.take();
}

Es10Answer es10::set_dp_address(Es10& es10, wire::View request) {
    const auto value = find_der(request, kDpAddress);
    if (!value)
        return std::nullopt;
    const auto address = utf8(*value, kAddressMax);
    return result(address ? es10.memory.set_dp_address(*address) : kEs10Undefined);
}

Es10Answer es10::euicc_info_1(Es10&, wire::View) {
    DerWriter writer;
    writer.object(kVersion, es10_version());
    put_no_keys(writer);
    return writer.take();
}

Es10Answer es10::euicc_info_2(Es10& es10, wire::View) {
    constexpr uint8_t kProfileVersion[] = {2, 1, 0};
    constexpr uint8_t kFirmware[] = {1, 0, 0};
    constexpr uint8_t kPlatformVersion[] = {2, 3, 0};
    constexpr uint8_t kProtectionProfile[] = {1, 0, 0};
    constexpr uint8_t kUsimSupport = 0x40;
    constexpr uint8_t kSeveralAndTestProfiles = 0x90;
    constexpr uint8_t kNoBits[] = {0};
    DerWriter resources;
    resources.number(0x81, static_cast<uint32_t>(es10.memory.profiles().size()));
    resources.number(0x82, kFreeMemory).number(0x83, kFreeWorkingMemory);
    DerWriter writer;
    writer.object(0x81, {kProfileVersion, sizeof kProfileVersion}).object(kVersion, es10_version());
    writer.object(0x83, {kFirmware, sizeof kFirmware}).object(0x84, resources.data());
    writer.bits(0x85, kUsimSupport).object(0x87, {kPlatformVersion, sizeof kPlatformVersion});
    writer.bits(0x88, kSeveralAndTestProfiles);
    put_no_keys(writer);
    writer.object(0x99, {kNoBits, sizeof kNoBits});
    writer.object(0x04, {kProtectionProfile, sizeof kProtectionProfile}).text(0x0C, "none");
    return writer.take();
}

Es10Answer es10::euicc_challenge(Es10&, wire::View) {
    wire::Bytes challenge(kChallengeSize);
    if (getrandom(challenge.data(), challenge.size(), 0) != static_cast<ssize_t>(challenge.size()))
        return std::nullopt;
    return DerWriter().object(0x80, challenge).take();
}

Es10Answer es10::euicc_data(Es10& es10, wire::View request) {
    const auto list = find_der(request, kTagList);
    if (!list || list->size != 1 || *list->data != kEid)
        return std::nullopt;
    return DerWriter().object(kEid, es10.profile.eid).take();
}

// There are no rules.
Es10Answer es10::authorisation_table(Es10&, wire::View) {
    return der(0xA0);
}

Es10Answer es10::authenticate_server(Es10&, wire::View request) {
    return download_error(transaction_of(request), kCiKeyUnknown);
}

Es10Answer es10::prepare_download(Es10&, wire::View request) {
    return download_error(transaction_of(request), kNoSession);
}

Es10Answer es10::cancel_session(Es10&, wire::View) {
    return DerWriter().number(0x81, kInvalidTransaction).take();
}

}  // namespace handset
