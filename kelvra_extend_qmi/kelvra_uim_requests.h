// What the tool asks of the UIM service: the power of a card slot, the EID of the embedded eUICC, the cards'
// states, and one APDU over a logical channel. Every request recovers the client when the modem has
// restarted, makes one when there is none, waits at most 3 s for the answer, and drops the client when the
// service is gone or a third send of its client has failed. Main thread only; slots count from 1.
#pragma once

#include <cstdint>

/// The result of a request that never reached the QMI library, or that the service refused.
constexpr int kUimRequestFailed = -1;

struct KelvraUimPowerRequest {
    uint32_t power_up;  // 0: down
    uint32_t slot;
    uint32_t ignore_hotswap;  // of a power-up: whether the modem ignores the hot-swap switch
};

/// Returns 0, kUimRequestFailed without a client or memory, or the QMI library's error. What the service
/// answers does not matter.
int kelvra_uim_request_uicc_power_ex(const KelvraUimPowerRequest* power);

constexpr int kEidLen = 16;

/// Fills `eid`, with zeros for what did not arrive of it, or leaves it alone when the EID cannot be had.
void kelvra_uim_request_eid(const uint8_t* slot, uint8_t eid[kEidLen]);

constexpr int kCardSlots = 2;

/// The cards' states: 0 absent, 1 present, 2 error; 3 for both when the service tells none, 0 for a slot that
/// it does not mention and for both when the exchange failed. False without a client or memory. A third card
/// is fatal.
bool kelvra_uim_get_card_status(int8_t states[kCardSlots]);

/// Selects the ISD-R, the eUICC's profile manager, on a new logical channel. *channel is its number, 0 on
/// failure. Returns 0, kUimRequestFailed or the QMI library's error.
int kelvra_uim_open_channel(uint8_t slot, uint8_t* channel);

struct KelvraUimApdu {
    uint8_t slot;
    uint8_t channel;
    uint8_t length;
    uint8_t bytes[255];
};

constexpr int kApduResponseMax = 63;

struct KelvraUimApduResponse {
    uint8_t length;  // bytes kept of the response; what follows them is 0
    uint8_t bytes[kApduResponseMax];
};

/// Sends one APDU. `response` is filled on success only. Returns as kelvra_uim_open_channel does.
int kelvra_uim_send_apdu(const KelvraUimApdu* apdu, KelvraUimApduResponse* response);

/// Closes a logical channel and ends its application. Returns as kelvra_uim_open_channel does.
int kelvra_uim_close_channel(uint8_t slot, uint8_t channel);
