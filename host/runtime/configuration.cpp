#include "host/runtime/configuration.h"

#include "host/runtime/text.h"

namespace NRuntime {

HRESULT Configuration::GetItemCount(std::uint32_t kind, std::uint32_t* count) {
  if (kind != NSdk::kConfigurationCanChannel) return E_INVALIDARG;
  return HandOut(static_cast<std::uint32_t>(mData.canChannels.size()), count);
}

HRESULT Configuration::GetPath(wchar_t** path) {
  if (!path) return E_POINTER;
  return mData.path.empty() ? S_FALSE : HandOutText(WidePathText(mData.path), path);
}

HRESULT Configuration::GetCanChannel(std::uint32_t index, std::uint32_t* channel) {
  if (!channel) return E_POINTER;
  if (index == 0 || index > mData.canChannels.size()) return S_FALSE;
  return HandOut(mData.canChannels[index - 1], channel);
}

HRESULT Configuration::GetDatabase(std::uint32_t index, wchar_t** path, std::uint32_t* channel) {
  if (!path || !channel) return E_POINTER;
  if (index == 0 || index > mData.databases.size()) return S_FALSE;
  const ConfigurationData::Database& database = mData.databases[index - 1];
  const HRESULT result = HandOutText(WidePathText(database.file), path);
  if (SUCCEEDED(result)) *channel = database.channel;
  return result;
}

HRESULT Configuration::GetNetworkCount(std::uint32_t* count) {
  return HandOut(static_cast<std::uint32_t>(mData.canChannels.size()), count);
}

HRESULT Configuration::GetNetwork(std::uint32_t position, wchar_t** name, std::uint32_t* channel) {
  if (!name || !channel) return E_POINTER;
  if (position >= mData.canChannels.size()) return E_INVALIDARG;
  const std::uint32_t number = mData.canChannels[position];
  const HRESULT result = HandOutText(L"CAN " + std::to_wstring(number), name);
  if (SUCCEEDED(result)) *channel = number;
  return result;
}

}  // namespace NRuntime
