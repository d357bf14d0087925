#pragma once

#include <cstdint>
#include <ctime>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "core/console.h"
#include "core/main_queue.h"
#include "core/observable.h"
#include "link/receive_tap.h"
#include "session/record_rotation.h"

// Records the receiver's stream: every chunk the hub decodes goes to a file exactly as received, so
// any tool can open the recording. Bytes wait in memory for at most flush_interval_s, so a crash
// loses at most the last second. A file that cannot be written (disk full, removed under us, a
// folder that is not writable) ends the recording with a dated console line saying why; the link
// goes on. Observable: a notice comes when recording starts or stops, at each flush (the size
// grows) and at each rotation. Runs on the main thread.
class recorder_t final : public receive_tap_t, public observable_t {
public:
  static constexpr double flush_interval_s = 1.0;
  static constexpr std::size_t buffer_limit = std::size_t{64} * 1024;  // bytes held before an early flush

  recorder_t(main_queue_t& queue, console_t& console);
  ~recorder_t() override;

  // Starts a recording at path (or at its rotated names); false, with a console line, when the
  // file cannot be created. A recording under way is stopped first.
  bool start(const std::string& path, record_rotation_t rotation = {});
  // Writes what is held and closes the file.
  void stop();

  void received(std::span<const std::uint8_t> bytes) override;

  bool recording() const { return fd_ >= 0; }
  // The file being written (or last written), and its size so far, held bytes included.
  const std::string& file() const { return file_; }
  std::uint64_t size() const { return file_bytes_; }

private:
  bool open_file(std::time_t utc);
  bool flush();
  void close_file();
  void fail(const std::string& why);
  void schedule_flush();

  main_queue_t& queue_;
  console_t& console_;
  std::string path_;  // as the user gave it; rotated files carry their start time in the name
  record_rotation_t rotation_;
  std::string file_;
  int fd_ = -1;
  std::uint64_t file_bytes_ = 0;
  std::int64_t period_ = 0;  // the rotation period the open file belongs to
  std::vector<std::uint8_t> held_;
  std::uint64_t generation_ = 0;  // counts recordings; a flush timer serves one
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};
