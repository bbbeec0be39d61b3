#include "host/buses/open_file.h"

namespace NBuses {

std::FILE* OpenForWriting(const std::filesystem::path& path) { return std::fopen(path.c_str(), "wb"); }
std::FILE* OpenForReading(const std::filesystem::path& path) { return std::fopen(path.c_str(), "rb"); }

}  // namespace NBuses
