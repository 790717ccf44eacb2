#pragma once
// A folder that goes with the test.

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>

namespace zq::test {

class CaptureScratch {
 public:
  CaptureScratch() {
    std::string pattern = (std::filesystem::temp_directory_path() / "deckhand-capture-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no scratch folder");
    path_ = pattern;
  }
  ~CaptureScratch() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  CaptureScratch(const CaptureScratch&) = delete;
  CaptureScratch& operator=(const CaptureScratch&) = delete;

  std::string path() const { return path_.string(); }
  std::string file(const std::string& name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
};

}  // namespace zq::test
