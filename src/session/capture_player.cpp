#include "session/capture_player.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>

#include "link/replay.h"

namespace {

// The receiver's time from one epoch to the next: across midnight or the week's end it runs on;
// a jump back or far ahead (a gap in the recording, captures joined) plays at once.
double epoch_gap_s(const epoch_mark_t& from, const epoch_mark_t& to) {
  if (from.cycle_s != to.cycle_s) return 0;
  double gap = to.time_s - from.time_s;
  if (gap < 0) gap += to.cycle_s;
  return gap > capture_player_t::longest_gap_s ? 0 : gap;
}

std::string file_name(const std::string& path) {
  const auto slash = path.rfind('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

}  // namespace

std::string clock_text(double time_s) {
  const auto s = static_cast<int>(std::floor(std::fmod(time_s, day_s)));
  char text[40];
  std::snprintf(text, sizeof text, "%02d:%02d:%02d", s / 3600, s / 60 % 60, s % 60);
  return text;
}

std::string speed_text(double speed) {
  if (speed == capture_player_t::max_speed) return "max";
  char text[16];
  std::snprintf(text, sizeof text, "%gx", speed);
  return text;
}

capture_player_t::capture_player_t(main_queue_t& queue, link_status_events_t& link, std::function<void()> reset)
    : queue_(queue), link_(link), reset_(std::move(reset)) {}

capture_player_t::~capture_player_t() {
  *alive_ = false;
  close();
}

bool capture_player_t::open(const std::string& path) {
  close();
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return false;
  struct stat info {};
  if (::fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
    ::close(fd);
    return false;
  }
  fd_ = fd;
  size_ = static_cast<std::uint64_t>(info.st_size);
  name_ = file_name(path);
  link_.link_up("file " + name_);
  restart_at(0);
  show_status();
  return true;
}

void capture_player_t::close() {
  if (fd_ >= 0) ::close(fd_);
  fd_ = -1;
  playing_ = false;
  ++generation_;
}

void capture_player_t::play() {
  if (!is_open() || ended()) return;
  playing_ = true;
  set_speed(speed_);
}

void capture_player_t::pause() {
  playing_ = false;
  ++generation_;
  show_status();
}

void capture_player_t::step() {
  if (!is_open()) return;
  playing_ = false;
  ++generation_;
  deliver_epoch();
  show_status();
}

// The pace starts again from now, so a change of speed or a resume never plays a burst to catch up.
void capture_player_t::set_speed(double speed) {
  speed_ = speed;
  start_wall_s_ = queue_.now_s();
  receiver_s_ = 0;
  ++generation_;
  if (playing_) schedule(0);
  show_status();
}

void capture_player_t::seek(std::uint64_t offset) {
  if (!is_open()) return;
  offset = std::min(offset, size_);
  // Read from one byte before, to tell whether offset starts a line.
  const auto from = offset > 0 ? offset - 1 : 0;
  const auto skip = static_cast<std::size_t>(offset - from);
  std::vector<std::uint8_t> window;
  const auto n = read_at(from, window);
  const bool line_start = offset == 0 || (n > 0 && window[0] == '\n');
  const auto at = n > skip ? resume_point({window.data() + skip, n - skip}, line_start) : 0;
  reset_();
  link_.link_up("file " + name_);
  restart_at(std::min(offset + at, size_));
  if (playing_) set_speed(speed_);
  show_status();
}

std::string capture_player_t::time_text() const {
  return have_epoch_ ? clock_text(epoch_.time_s) : std::string();
}

std::string capture_player_t::time_at(std::uint64_t offset) const {
  if (!is_open()) return {};
  std::vector<std::uint8_t> window;
  const auto n = read_at(offset, window);
  epoch_scanner_t scanner;
  std::vector<epoch_mark_t> marks;
  scanner.feed({window.data(), n}, marks);
  return marks.empty() ? std::string() : clock_text(marks.front().time_s);
}

std::string capture_player_t::status_text() const {
  const auto file = "file " + name_;
  if (ended()) return file + " end";
  if (!playing_) return file + " paused";
  return file + " " + speed_text(speed_) + (have_epoch_ ? " " + time_text() : std::string());
}

void capture_player_t::schedule(double delay_s) {
  auto task = [this, alive = std::weak_ptr<bool>(alive_), generation = generation_] {
    const auto still_alive = alive.lock();
    if (still_alive && *still_alive && generation == generation_) tick();
  };
  if (delay_s > 0) {
    queue_.post_after(delay_s, std::move(task));
  } else {
    queue_.post(std::move(task));
  }
}

// Delivers every epoch whose time has come; at max speed, a batch per turn of the queue, so the
// screens stay responsive while a large capture plays.
void capture_player_t::tick() {
  std::uint64_t delivered = 0;
  while (playing_ && !ended()) {
    if (speed_ == max_speed) {
      if (delivered >= batch) {
        schedule(0);
        break;
      }
    } else if (have_epoch_ && find_next_mark() && marks_.front().offset == offset_) {
      const auto due = start_wall_s_ + (receiver_s_ + epoch_gap_s(epoch_, marks_.front())) / speed_;
      if (const auto now = queue_.now_s(); due > now) {
        schedule(due - now);
        break;
      }
    }
    const auto before = offset_;
    deliver_epoch();
    delivered += offset_ - before;
  }
  if (ended()) playing_ = false;
  show_status();
}

// The bytes of one epoch: from offset_ up to the start of the next; nothing at the end of the file.
void capture_player_t::deliver_epoch() {
  if (ended()) return;
  if (find_next_mark() && marks_.front().offset == offset_) {
    if (have_epoch_) receiver_s_ += epoch_gap_s(epoch_, marks_.front());
    epoch_ = marks_.front();
    have_epoch_ = true;
    marks_.pop_front();
  }
  deliver(find_next_mark() ? marks_.front().offset : scanned_);
}

// Scans ahead until an epoch at or after offset_ is known; false when none lies within the
// lookahead or before the end of the file.
bool capture_player_t::find_next_mark() {
  while (marks_.empty() && scanned_ < size_ && scanned_ - offset_ < lookahead) {
    const auto n = read_at(scanned_, buffer_);
    if (n == 0) {
      size_ = scanned_;  // the file was cut short under us
      break;
    }
    found_.clear();
    scanner_.feed({buffer_.data(), n}, found_);
    marks_.insert(marks_.end(), found_.begin(), found_.end());
    scanned_ += n;
  }
  return !marks_.empty();
}

void capture_player_t::deliver(std::uint64_t end) {
  while (offset_ < end) {
    const auto n = read_at(offset_, buffer_);
    const auto take = static_cast<std::size_t>(std::min<std::uint64_t>(n, end - offset_));
    if (take == 0) {
      size_ = offset_;
      return;
    }
    replay_chunks({buffer_.data(), take}, replay_default_chunk, link_);
    offset_ += take;
  }
}

void capture_player_t::restart_at(std::uint64_t offset) {
  offset_ = offset;
  scanned_ = offset;
  scanner_.restart(offset);
  marks_.clear();
  have_epoch_ = false;
}

void capture_player_t::show_status() {
  link_.link_status(status_text());
  notify();
}

std::size_t capture_player_t::read_at(std::uint64_t offset, std::vector<std::uint8_t>& into) const {
  into.resize(block);
  std::size_t got = 0;
  while (got < block) {
    const auto n = ::pread(fd_, into.data() + got, block - got, static_cast<off_t>(offset + got));
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) break;
    got += static_cast<std::size_t>(n);
  }
  return got;
}
