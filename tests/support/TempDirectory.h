#ifndef QUOLNARIS_TESTS_SUPPORT_TEMPDIRECTORY_H_
#define QUOLNARIS_TESTS_SUPPORT_TEMPDIRECTORY_H_

#include <filesystem>
#include <string>

namespace support {

// A fresh directory that goes with this object, and everything in it.
class TempDirectory {
 public:
  TempDirectory();
  ~TempDirectory();
  TempDirectory(const TempDirectory&) = delete;
  TempDirectory& operator=(const TempDirectory&) = delete;

  const std::filesystem::path& path() const { return directory; }

  // Writes a file, and makes the directories above it. Returns its path.
  std::filesystem::path write(const std::string& name, const std::string& text) const;

  // The contents of a file; throws std::runtime_error if it can't be read.
  std::string read(const std::string& name) const;

  bool has(const std::string& name) const { return std::filesystem::exists(directory / name); }

 private:
  std::filesystem::path directory;
};

// Makes `path` the working directory of this process for the life of this object.
class WorkingDirectory {
 public:
  explicit WorkingDirectory(const std::filesystem::path& path)
      : previous(std::filesystem::current_path()) {
    std::filesystem::current_path(path);
  }
  ~WorkingDirectory() { std::filesystem::current_path(previous); }
  WorkingDirectory(const WorkingDirectory&) = delete;
  WorkingDirectory& operator=(const WorkingDirectory&) = delete;

 private:
  std::filesystem::path previous;
};

}  // namespace support

#endif  // QUOLNARIS_TESTS_SUPPORT_TEMPDIRECTORY_H_
