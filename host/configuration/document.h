#pragma once
// A configuration of a reference host: what it is set up with, as its file holds it.

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/devices/device_word.h"
#include "sdk/host_application.h"

namespace NConfiguration {

/// The two timing registers of a CAN controller.
struct BitTiming {
  std::uint8_t register0 = 0;
  std::uint8_t register1 = 0;

  bool operator==(const BitTiming&) const = default;
};

struct Channel {
  std::uint32_t number = 0;                        ///< 1..255
  std::string bus;                                 ///< KIND[:ADDRESS][,OPTION=VALUE...]
  std::optional<BitTiming> timing{};               ///< empty: the bus has its own
  std::vector<std::filesystem::path> databases{};  ///< DBC files

  bool operator==(const Channel&) const = default;
};

/// A simulated device on the bus of a channel.
struct Device {
  std::uint32_t channel = 0;
  NDevices::DeviceWord device{};

  bool operator==(const Device&) const = default;
};

/// The place of a window on the screen, in pixels.
struct Window {
  std::int32_t x = 0, y = 0;
  std::int32_t width = 0, height = 0;
  bool open = true;
  bool maximized = false;
  bool minimized = false;

  bool operator==(const Window&) const = default;
};

struct Block {
  using Setting = std::pair<std::string, std::string>;

  std::string progId;
  std::vector<Setting> settings{};  ///< by the block's own keys, each once, in its order
  std::optional<Window> window{};

  /// Null: no such key.
  const std::string* Find(const std::string& key) const;

  bool operator==(const Block&) const = default;
};

/// Windows of the host's own, inside its main one.
inline constexpr const char* kSetupWindow = "setup";
inline constexpr const char* kTraceWindow = "trace";
inline constexpr const char* kMessagesWindow = "messages";
inline constexpr const char* kInnerWindows[] = {kSetupWindow, kTraceWindow, kMessagesWindow};

/// Paths, those of logs that are replayed included, are relative to the folder of the file, or absolute. Text
/// is UTF-8.
struct Document {
  NSdk::HostVariant variant = NSdk::kHostHalvard;
  std::uint32_t language = 1;       ///< 1 = English
  std::uint32_t numberBase = 10;    ///< 10 or 16
  std::vector<Channel> channels{};  ///< numbers differ
  std::vector<Device> devices{};    ///< on channels of the list; node-IDs on one channel differ
  std::vector<Block> blocks{};
  std::optional<Window> window{};           ///< of the host itself
  std::map<std::string, Window> windows{};  ///< of kInnerWindows
  bool largeIcons = false;                  ///< on the host's tool bar

  /// The first block of a kind; null: there is none.
  const Block* FindBlock(const std::string& progId) const;

  bool operator==(const Document&) const = default;
};

/// A file as it was read. It is whole when there are no faults; otherwise the document is not for use.
struct LoadedDocument {
  Document document;
  std::vector<std::string> faults;  ///< "FILE:LINE: /channels/0/bus: what is wrong and what is expected"
};

/// Reads a file and tells what is wrong with it, a hundred faults at most. The file is never changed.
LoadedDocument Inspect(const std::filesystem::path& file);
/// Throws std::runtime_error, one line: the first fault.
Document Load(const std::filesystem::path& file);

/// Puts a new file in the place of an old one, or leaves the old one as it is. Throws std::runtime_error, one
/// line that names the file; a document that Load would refuse is refused here.
void Save(const Document& document, const std::filesystem::path& file);

}  // namespace NConfiguration
