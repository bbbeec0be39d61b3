#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <system_error>
#include <thread>

namespace NTest {

/// A new folder for one test alone, removed at its end: tests run side by side, each in a process of its own.
class TestFolder {
 public:
  TestFolder() {
    std::random_device random;
    do {
      mPath = std::filesystem::temp_directory_path() / ("ostrel test " + std::to_string(random()));
    } while (!std::filesystem::create_directories(mPath));
  }
  TestFolder(const TestFolder&) = delete;
  TestFolder& operator=(const TestFolder&) = delete;
  ~TestFolder() {
    std::error_code error;
    for (int turn = 0; turn < 100; ++turn) {
      std::filesystem::remove_all(mPath, error);
      if (!error) return;
      // Wine closes the files of a program a moment after its end.
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    ADD_FAILURE() << error.message();
  }

  const std::filesystem::path& Path() const { return mPath; }
  operator const std::filesystem::path&() const { return mPath; }
  friend std::filesystem::path operator/(const TestFolder& folder, const std::filesystem::path& name) {
    return folder.mPath / name;
  }

 private:
  std::filesystem::path mPath;
};

/// Writes the bytes as they are, and makes the folders that are missing; the file's path.
inline std::filesystem::path WriteFile(const std::filesystem::path& file, const std::string& contents) {
  std::filesystem::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary) << contents;
  return file;
}

/// All bytes of a file; none where it cannot be read.
inline std::string ReadFile(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

}  // namespace NTest
