#include "common/help_manager.h"

namespace NCommon {
namespace {

std::filesystem::path& Slot() {
  static std::filesystem::path file;
  return file;
}

}  // namespace

void SetHelpFile(std::filesystem::path file) { Slot() = std::move(file); }
const std::filesystem::path& HelpFile() { return Slot(); }

}  // namespace NCommon
