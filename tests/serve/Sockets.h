// Sending to this machine and nowhere else.
#pragma once

#include <cstddef>
#include <cstdint>

namespace serve {

/// A UDP socket with a large buffer. Throws std::runtime_error when there is none.
class LoopbackSender {
public:
    LoopbackSender();
    LoopbackSender(const LoopbackSender&) = delete;
    LoopbackSender& operator=(const LoopbackSender&) = delete;
    ~LoopbackSender();

    void send(std::uint16_t port, const unsigned char* bytes, std::size_t count);

private:
    int socket_;
};

} // namespace serve
