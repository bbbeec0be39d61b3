#include "host/buses/open_file.h"

namespace NBuses {

std::FILE* OpenForWriting(const std::filesystem::path& path) { return _wfopen(path.c_str(), L"wb"); }
std::FILE* OpenForReading(const std::filesystem::path& path) { return _wfopen(path.c_str(), L"rb"); }

}  // namespace NBuses
