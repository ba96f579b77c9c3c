#pragma once
// What a worker process and the process that started it say to each other, over a pair of connected sockets.

#include <cstdint>
#include <optional>
#include <sstream>
#include <string>

namespace cli {

enum class FrameKind : char { output = 'o', messages = 'm', done = 'd' };

struct Frame {
  FrameKind kind = FrameKind::done;
  std::string text;  ///< of done: the exit status in decimal digits
};

/// Both return false when the other end is gone. A signal does not end them, nor does one come of a lost other end.
bool sendFrame(int socket, FrameKind kind, const std::string& text);
bool sendTask(int socket, std::uint64_t task);
/// Waits for the next task; nothing when there are no more.
std::optional<std::uint64_t> receiveTask(int socket);

/// Puts frames together from what a socket gives.
class FrameReader {
 public:
  /// Takes what is there, waiting for the first byte. False when the other end is gone.
  bool receive(int socket);
  /// The next whole frame.
  std::optional<Frame> next();

 private:
  std::string received_;
  std::size_t taken_ = 0;  ///< bytes at the front that were handed out
};

/// A stream's buffer that sends what was printed as one frame at each flush.
class FrameBuffer final : public std::stringbuf {
 public:
  FrameBuffer(int socket, FrameKind kind) : socket_(socket), kind_(kind) {}

 protected:
  int sync() override;

 private:
  int socket_;
  FrameKind kind_;
};

}  // namespace cli
