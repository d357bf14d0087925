#include "link/serial_port_list.h"

#include <filesystem>
#include <system_error>

std::string by_id_path(const std::string& device, const std::string& by_id_dir) {
  namespace fs = std::filesystem;
  std::error_code error;
  const auto target = fs::canonical(device, error);
  if (error) return {};
  for (const auto& entry : fs::directory_iterator(by_id_dir, error)) {
    std::error_code entry_error;
    if (fs::canonical(entry.path(), entry_error) == target && !entry_error) return entry.path().string();
  }
  return {};
}
