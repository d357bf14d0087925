#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "core/main_queue.h"
#include "core/observable.h"
#include "link/link_status.h"
#include "session/epoch_scanner.h"

// Plays a capture through a link's receive path at the pace the receiver sent it: the bytes of an
// epoch (from the start of one epoch's first timed sentence or record to the next epoch's) go to the
// link together when the epoch's time comes, at a chosen speed, or as fast as possible. The file is
// read as it plays, a block at a time, so a capture of any size opens at once and plays in constant
// memory. Pause, step one epoch and seek by file offset. Observable: a notice comes after each
// delivery and each change of state. Runs on the main thread.
class capture_player_t final : public observable_t {
public:
  static constexpr double max_speed = 0;                           // as fast as possible
  static constexpr std::size_t block = std::size_t{64} * 1024;     // bytes read at a time
  static constexpr std::size_t lookahead = std::size_t{1} << 20U;  // bytes without an epoch played untimed
  static constexpr std::size_t batch = std::size_t{256} * 1024;    // bytes per queue turn at max speed
  static constexpr double longest_gap_s = 60;  // a longer jump of the receiver's clock plays at once

  // link receives the status text, "up" when a capture opens or seeks, and the bytes. reset runs
  // before a seek, so that what was decoded before it goes.
  capture_player_t(main_queue_t& queue, link_status_events_t& link, std::function<void()> reset);
  ~capture_player_t() override;
  capture_player_t(const capture_player_t&) = delete;
  capture_player_t& operator=(const capture_player_t&) = delete;

  // Opens a capture, paused at its start; false when it cannot be read.
  bool open(const std::string& path);
  void close();
  void play();
  void pause();
  // Delivers the next epoch at once and stays paused.
  void step();
  // 0.5, 1, 2, ... times the receiver's pace, or max_speed.
  void set_speed(double speed);
  // Goes on from the first sentence or frame start at or after offset.
  void seek(std::uint64_t offset);

  bool is_open() const { return fd_ >= 0; }
  bool playing() const { return playing_; }
  bool ended() const { return is_open() && offset_ >= size_; }
  double speed() const { return speed_; }
  std::uint64_t size() const { return size_; }
  // Bytes delivered so far, counted from the start of the file.
  std::uint64_t offset() const { return offset_; }
  const std::string& name() const { return name_; }
  // The time of the epoch last delivered, "12:35:19"; empty before the first.
  std::string time_text() const;
  // The time of the first epoch at or after offset, for a seek bar's tooltip; empty when none is near.
  std::string time_at(std::uint64_t offset) const;
  // "file demo.nmea 2x 12:35:19", "file demo.nmea paused", "file demo.nmea end".
  std::string status_text() const;

private:
  void schedule(double delay_s);
  void tick();
  void deliver_epoch();
  bool find_next_mark();
  void deliver(std::uint64_t end);
  void restart_at(std::uint64_t offset);
  void show_status();
  std::size_t read_at(std::uint64_t offset, std::vector<std::uint8_t>& into) const;

  main_queue_t& queue_;
  link_status_events_t& link_;
  std::function<void()> reset_;
  int fd_ = -1;
  std::string name_;
  std::uint64_t size_ = 0;
  std::uint64_t offset_ = 0;   // the next byte to deliver
  std::uint64_t scanned_ = 0;  // the next byte to scan for epochs
  epoch_scanner_t scanner_;
  std::deque<epoch_mark_t> marks_;  // epochs found at or after offset_
  std::vector<epoch_mark_t> found_;
  std::vector<std::uint8_t> buffer_;
  bool playing_ = false;
  double speed_ = 1;
  // The pace: the epoch last delivered, and since when the clock runs at this speed.
  bool have_epoch_ = false;
  epoch_mark_t epoch_;
  double start_wall_s_ = 0;
  double receiver_s_ = 0;         // the receiver's time played since start_wall_s_
  std::uint64_t generation_ = 0;  // a scheduled tick serves only the state it was scheduled in
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

// "12:35:19" for seconds of a day or of a week.
std::string clock_text(double time_s);
// "0.5x", "2x", "max".
std::string speed_text(double speed);
