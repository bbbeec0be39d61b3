#include "host/bench/host.h"

#include <algorithm>

#include "host/bench/console.h"
#include "host/runtime/text.h"

namespace NBench {
namespace {

constexpr char kModuleName[] = "Ostrel.hpi";

std::vector<NRuntime::CanChannel> MakeChannels(NBuses::BusFactory& factory,
                                               const std::vector<ChannelOption>& options) {
  std::vector<NRuntime::CanChannel> channels;
  channels.reserve(options.size());
  for (const ChannelOption& option : options) channels.push_back({option.number, factory.Make(option.bus)});
  return channels;
}

const std::string& BusOf(const HostOptions& options, std::uint32_t channel) {
  const auto found = std::find_if(options.channels.begin(), options.channels.end(),
                                  [&](const ChannelOption& option) { return option.number == channel; });
  return found->bus;
}

std::vector<std::unique_ptr<NDevices::DeviceOnBus>> MakeDevices(NRuntime::Loop& loop,
                                                                NBuses::BusFactory& factory,
                                                                const HostOptions& options) {
  std::vector<std::unique_ptr<NDevices::DeviceOnBus>> devices;
  devices.reserve(options.devices.size());
  for (const DeviceOption& option : options.devices) {
    devices.push_back(NDevices::AttachDevice(loop, factory.Make(BusOf(options, option.channel)),
                                             option.device, ProgramFolder()));
  }
  return devices;
}

NRuntime::ConfigurationData MakeConfiguration(const HostOptions& options) {
  NRuntime::ConfigurationData configuration;
  configuration.path = options.configuration;
  for (const ChannelOption& channel : options.channels) {
    configuration.canChannels.push_back(channel.number);
    for (const auto& database : channel.databases) {
      configuration.databases.push_back({database, channel.number});
    }
  }
  return configuration;
}

NodeNames NamesOf(const HostOptions& options) {
  NodeNames names;
  for (const ChannelOption& channel : options.channels) {
    for (const auto& database : channel.databases) names.merge(ReadNodeNames(database, channel.number));
  }
  return names;
}

// Takes the place of the module's message boxes and dialogs.
class TextDialogs final : public NRuntime::Implements<NSdk::IUserDialogs> {
 public:
  TextDialogs(std::function<void(const std::string&)> show,
              std::shared_ptr<const std::vector<std::uint8_t>> picked)
      : mShow(std::move(show)), mPicked(std::move(picked)) {}

  HRESULT STDMETHODCALLTYPE ShowMessage(const wchar_t*, const wchar_t* text, std::uint32_t) override {
    if (!text) return E_POINTER;
    mShow(NRuntime::ToUtf8(std::wstring_view(text)));
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE SelectNodes(const wchar_t*, const std::uint8_t* candidates, std::uint32_t count,
                                        std::uint8_t* chosen) override {
    if (count != 0 && (!candidates || !chosen)) return E_POINTER;
    if (mPicked->empty()) return S_FALSE;
    for (std::uint32_t position = 0; position < count; ++position) {
      chosen[position] = std::find(mPicked->begin(), mPicked->end(), candidates[position]) != mPicked->end();
    }
    return S_OK;
  }

 private:
  std::function<void(const std::string&)> mShow;
  std::shared_ptr<const std::vector<std::uint8_t>> mPicked;
};

}  // namespace

Host::Host(const HostOptions& options, NRuntime::MeasurementObserver& observer,
           std::function<void(const std::string&)> showMessage)
    : mNames(NamesOf(options)),
      mDevices(MakeDevices(mLoop, mBuses, options)),
      mMeasurement(mLoop, MakeChannels(mBuses, options.channels), observer),
      mApplication(NRuntime::Make<NRuntime::Application>(
          NRuntime::ApplicationSettings{options.variant, options.language, options.numberBase},
          MakeConfiguration(options))),
      mSetup(NRuntime::Make<NRuntime::Setup>(*mApplication)),
      mModule(options.module.value_or(ProgramFolder() / kModuleName)) {
  mApplication->AddService<NSdk::IUserDialogs>(
      NRuntime::ComPtr<NSdk::IUserDialogs>::Own(new TextDialogs(std::move(showMessage), mPicked)));
  mApplication->SetMeasuringQuery([this] { return mMeasurement.IsRunning(); });
  mModule.Initialise(*mApplication);
}

void Host::PickNodes(std::vector<std::uint8_t> nodeIds) { *mPicked = std::move(nodeIds); }

void Host::PowerOnDevices() {
  for (const auto& device : mDevices) device->PowerOn();
}

void Host::PowerOffDevices() {
  for (const auto& device : mDevices) device->PowerOff();
}

}  // namespace NBench
