#include "cli/WorkerChannel.h"

#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

namespace cli {

namespace {

constexpr std::size_t frameHeadBytes = 1 + sizeof(std::uint64_t);  // kind, length of the text

bool sendAll(int socket, const char* bytes, std::size_t count) {
  while (count > 0) {
    const auto sent = ::send(socket, bytes, count, MSG_NOSIGNAL);
    if (sent < 0 && errno == EINTR) continue;
    if (sent <= 0) return false;
    bytes += sent;
    count -= static_cast<std::size_t>(sent);
  }
  return true;
}

/// How many bytes came; none when the other end is gone.
std::size_t receiveSome(int socket, char* bytes, std::size_t room) {
  for (;;) {
    const auto got = ::recv(socket, bytes, room, 0);
    if (got < 0 && errno == EINTR) continue;
    return got > 0 ? static_cast<std::size_t>(got) : 0;
  }
}

}  // namespace

bool sendFrame(int socket, FrameKind kind, const std::string& text) {
  const std::uint64_t length = text.size();
  std::string head(frameHeadBytes, static_cast<char>(kind));
  std::memcpy(head.data() + 1, &length, sizeof length);
  return sendAll(socket, head.data(), head.size()) && sendAll(socket, text.data(), text.size());
}

bool sendTask(int socket, std::uint64_t task) {
  std::array<char, sizeof task> bytes{};
  std::memcpy(bytes.data(), &task, sizeof task);
  return sendAll(socket, bytes.data(), bytes.size());
}

std::optional<std::uint64_t> receiveTask(int socket) {
  std::array<char, sizeof(std::uint64_t)> bytes{};
  for (std::size_t have = 0; have < bytes.size();) {
    const auto got = receiveSome(socket, bytes.data() + have, bytes.size() - have);
    if (got == 0) return std::nullopt;
    have += got;
  }
  std::uint64_t task = 0;
  std::memcpy(&task, bytes.data(), sizeof task);
  return task;
}

bool FrameReader::receive(int socket) {
  std::array<char, 65536> bytes{};
  const auto got = receiveSome(socket, bytes.data(), bytes.size());
  received_.append(bytes.data(), got);
  return got > 0;
}

std::optional<Frame> FrameReader::next() {
  if (received_.size() - taken_ >= frameHeadBytes) {
    std::uint64_t length = 0;
    std::memcpy(&length, received_.data() + taken_ + 1, sizeof length);
    if (received_.size() - taken_ - frameHeadBytes >= length) {
      Frame frame{static_cast<FrameKind>(received_[taken_]), received_.substr(taken_ + frameHeadBytes, length)};
      taken_ += frameHeadBytes + length;
      return frame;
    }
  }
  received_.erase(0, std::exchange(taken_, 0));
  return std::nullopt;
}

int FrameBuffer::sync() {
  const auto text = str();
  str({});
  return text.empty() || sendFrame(socket_, kind_, text) ? 0 : -1;
}

}  // namespace cli
