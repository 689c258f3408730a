// The modem's AT channel: a terminal, "at" in the handset's folder, and /dev/smd8 where that may be linked to
// it. What is written to the terminal is logged line by line; nothing is answered.
#pragma once

#include <string>

#include "event_loop.h"

namespace handset {

class Core;

class AtChannel {
public:
    /// Opens the terminal and links to it. Throws Error when there is no terminal to be had; a device that
    /// cannot be linked is only complained about.
    explicit AtChannel(Core& core);

    /// Removes the links that are its own.
    ~AtChannel();
    AtChannel(const AtChannel&) = delete;
    AtChannel& operator=(const AtChannel&) = delete;

private:
    void open_terminal();
    void link_device();
    void receive();
    void log_line();

    Core& core_;
    const std::string device_;
    const std::string link_;  // the name in the folder
    int master_ = -1;
    int terminal_ = -1;  // held open, so that the terminal stays raw and alive between two writers
    EventLoop::Token watch_ = 0;
    std::string line_;
    uint64_t lines_ = 0;
};

}  // namespace handset
