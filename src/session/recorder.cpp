#include "session/recorder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace {

constexpr mode_t file_mode = 0644;
constexpr int max_sequence = 1000;  // rotated files started within one second

}  // namespace

recorder_t::recorder_t(main_queue_t& queue, console_t& console) : queue_(queue), console_(console) {}

recorder_t::~recorder_t() {
  *alive_ = false;
  if (recording()) {
    flush();
    close_file();
  }
}

bool recorder_t::start(const std::string& path, record_rotation_t rotation) {
  if (recording()) stop();
  path_ = path;
  rotation_ = rotation;
  ++generation_;
  if (!open_file(console_.utc_now())) return false;
  schedule_flush();
  return true;
}

void recorder_t::stop() {
  if (!recording()) return;
  if (!flush()) return;
  close_file();
  console_.print(console_.date() + "  recording stopped: " + std::to_string(file_bytes_) + " bytes in " + file_);
  notify();
}

// A rotated file never replaces one that exists: it takes the next sequence number instead.
bool recorder_t::open_file(std::time_t utc) {
  period_ = rotation_.seconds > 0 ? utc / rotation_.seconds : 0;
  std::string name = path_;
  int fd = -1;
  if (rotation_.rotates()) {
    for (int sequence = 1; fd < 0 && sequence <= max_sequence; ++sequence) {
      name = rotated_file_name(path_, utc, sequence);
      fd = ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, file_mode);
      if (fd < 0 && errno != EEXIST) break;
    }
  } else {
    fd = ::open(name.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, file_mode);
  }
  if (fd < 0) {
    console_.print(console_.date() + "  cannot record to " + name + ": " + std::strerror(errno));
    notify();
    return false;
  }
  notify();
  fd_ = fd;
  file_ = name;
  file_bytes_ = 0;
  console_.print(console_.date() + "  recording to " + file_);
  return true;
}

void recorder_t::close_file() {
  ::close(fd_);
  fd_ = -1;
}

void recorder_t::received(std::span<const std::uint8_t> bytes) {
  if (!recording() || bytes.empty()) return;
  // A chunk is never split between two files: the new file starts with a whole chunk.
  const auto utc = console_.utc_now();
  const bool period_over = rotation_.seconds > 0 && utc / rotation_.seconds != period_;
  const bool full = rotation_.bytes > 0 && file_bytes_ > 0 && file_bytes_ + bytes.size() > rotation_.bytes;
  if (period_over || full) {
    if (!flush()) return;
    close_file();
    if (!open_file(utc)) return;
  }
  held_.insert(held_.end(), bytes.begin(), bytes.end());
  file_bytes_ += bytes.size();
  if (held_.size() >= buffer_limit) flush();
}

// Writes what is held; false when the recording had to stop.
bool recorder_t::flush() {
  const auto* at = held_.data();
  auto left = held_.size();
  while (left > 0) {
    const auto n = ::write(fd_, at, left);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) {
      fail(std::strerror(errno));
      return false;
    }
    at += n;
    left -= static_cast<std::size_t>(n);
  }
  held_.clear();
  // A file unlinked under us takes everything written to it along when it is closed.
  struct stat info {};
  if (::fstat(fd_, &info) == 0 && info.st_nlink == 0) {
    fail("the file was removed");
    return false;
  }
  // On the disk, not only in the system's cache: a power loss loses at most the last second.
  // Devices and pipes cannot be synchronised, and need not be.
  if (::fdatasync(fd_) != 0 && errno != EINVAL && errno != EROFS) {
    fail(std::strerror(errno));
    return false;
  }
  notify();
  return true;
}

void recorder_t::fail(const std::string& why) {
  held_.clear();
  close_file();
  console_.print(console_.date() + "  recording stopped: " + file_ + ": " + why);
  notify();
}

void recorder_t::schedule_flush() {
  queue_.post_after(flush_interval_s, [this, alive = std::weak_ptr<bool>(alive_), generation = generation_] {
    const auto still_alive = alive.lock();
    if (!still_alive || !*still_alive || generation != generation_ || !recording()) return;
    if (flush()) schedule_flush();
  });
}
