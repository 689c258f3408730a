// A port of the handset that looks like a serial port: a link in its folder to a pseudo-terminal. As on a
// serial port, what is sent while nobody has it open is lost, and so is what a reader leaves unread when he
// closes it.
#pragma once

#include <functional>
#include <string>

#include "event_loop.h"
#include "wire.h"

namespace handset {

class Core;

class Terminal {
public:
    using Received = std::function<void(wire::View bytes)>;

    /// The most bytes that one call of Received brings.
    static constexpr size_t kChunk = 1024;

    /// Links `name` in the folder to a new pseudo-terminal. When there is none to be had, it complains and is
    /// one that nobody opens.
    Terminal(Core& core, const std::string& name, Received received);

    /// Removes the link.
    ~Terminal();
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    /// Called when the first has opened it, and when the last has closed it.
    void on_change(std::function<void(bool open)> changed) { changed_ = std::move(changed); }

    /// Whether anybody has it open now.
    bool is_open() const { return !is_deserted(); }

    /// Sends the bytes, or drops all of them when a reader lets too many wait.
    void send(wire::View bytes);

    /// Takes nothing more until resume(): what is written waits, and then its writers.
    void pause();
    void resume();

    /// Whether the terminal itself hands what is sent back as if it had been written.
    bool echoes() const;

    /// The name that it has beside the link in the folder, "/dev/pts/5"; empty when there is no terminal.
    const std::string& device() const { return device_; }

private:
    void look();
    void look_again();
    bool is_deserted() const;
    bool holds_unread() const;
    void open_device();
    bool start_anew(const char* device);
    void ready(uint32_t events);
    bool receive();
    void receive_all();
    void send_unsent();
    void choose_events();

    Core& core_;
    const std::string link_;
    const Received received_;
    std::function<void(bool)> changed_;
    std::string device_;
    int master_ = -1;
    int opening_ = -1;  // tells when somebody has opened or closed the terminal
    EventLoop::Token opening_watch_ = 0;
    EventLoop::Token timer_ = 0;  // looks where there is no watch to be had
    EventLoop::Token again_ = 0;  // looks once more for whom nothing told of
    EventLoop::Token watch_ = 0;  // 0 while nobody has it open: the master would be ready all the time
    bool paused_ = false;
    wire::Bytes unsent_;
};

}  // namespace handset
