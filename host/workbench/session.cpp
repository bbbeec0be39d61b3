#include "host/workbench/session.h"

#include <utility>

#include "host/configuration/document_objects.h"

namespace NWorkbench {

Session::Session(std::unique_ptr<NRuntime::IoLoop> loop, const NConfiguration::Document& document,
                 const std::filesystem::path& libraries, NRuntime::MeasurementObserver& observer)
    : mLoop(std::move(loop)),
      mBuses(*mLoop),
      mDevices(NConfiguration::MakeDevices(*mLoop, mBuses, document, libraries)),
      mMeasurement(*mLoop, MakeChannels(document), observer) {
  for (const auto& device : mDevices) mAdapters.push_back(&device->Adapter());
}

std::vector<NRuntime::CanChannel> Session::MakeChannels(const NConfiguration::Document& document) {
  auto channels = NConfiguration::MakeChannels(mBuses, document.channels);
  for (const auto& channel : channels) mAdapters.push_back(channel.adapter.get());
  return channels;
}

void Session::Prepare(std::function<void(const std::string& fault)> done) {
  mDone = std::move(done);
  mAwaited = mAdapters.size() + 1;  // this call itself
  for (NRuntime::CanAdapter* const adapter : mAdapters) {
    adapter->Prepare([this, search = mSearches](const std::string& fault) { OnPrepared(fault); });
  }
  OnPrepared({});
}

void Session::OnPrepared(const std::string& fault) {
  if (!mDone || (--mAwaited != 0 && fault.empty())) return;
  std::exchange(mDone, nullptr)(fault);
}

void Session::Start(const std::vector<NRuntime::ComPtr<IUnknown>>& blocks) {
  try {
    mMeasurement.Start(blocks);
    for (const auto& device : mDevices) device->PowerOn();
  } catch (...) {
    Stop();
    throw;
  }
}

void Session::Stop() {
  mDone = nullptr;
  mMeasurement.Stop();
  for (const auto& device : mDevices) device->PowerOff();
  for (NRuntime::CanAdapter* const adapter : mAdapters) adapter->Close();
}

}  // namespace NWorkbench
