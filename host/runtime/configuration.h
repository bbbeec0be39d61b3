#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "host/runtime/com.h"
#include "sdk/host_application.h"
#include "sdk/setup.h"

namespace NRuntime {

/// What the host is set up with.
struct ConfigurationData {
  struct Database {
    std::filesystem::path file;
    std::uint32_t channel = NSdk::kUnknownChannel;
  };

  std::filesystem::path path;              ///< empty: never saved
  std::vector<std::uint32_t> canChannels;  ///< numbers, in the host's order
  std::vector<Database> databases;
};

/// The configuration as the plug-ins see it, and its networks: the simulation setup has one for each CAN
/// channel.
class Configuration final : public Implements<NSdk::IConfigurationService, NSdk::ISimulationSetup> {
 public:
  explicit Configuration(ConfigurationData data) : mData(std::move(data)) {}

  HRESULT STDMETHODCALLTYPE GetItemCount(std::uint32_t kind, std::uint32_t* count) override;
  HRESULT STDMETHODCALLTYPE GetPath(wchar_t** path) override;
  HRESULT STDMETHODCALLTYPE GetCanChannel(std::uint32_t index, std::uint32_t* channel) override;
  HRESULT STDMETHODCALLTYPE GetDatabase(std::uint32_t index, wchar_t** path, std::uint32_t* channel) override;

  HRESULT STDMETHODCALLTYPE GetNetworkCount(std::uint32_t* count) override;
  HRESULT STDMETHODCALLTYPE GetNetwork(std::uint32_t position, wchar_t** name,
                                       std::uint32_t* channel) override;

  void Replace(ConfigurationData data) { mData = std::move(data); }
  const ConfigurationData& Data() const { return mData; }

 private:
  ConfigurationData mData;
};

}  // namespace NRuntime
