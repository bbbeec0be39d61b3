#include "host/bench/host.h"

#include <algorithm>

#include "host/bench/console.h"
#include "host/configuration/document_objects.h"
#include "host/runtime/text.h"

namespace NBench {
namespace {

constexpr char kModuleName[] = "Ostrel.hpi";

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
      mDevices(NConfiguration::MakeDevices(mLoop, mBuses, options, ProgramFolder())),
      mMeasurement(mLoop, NConfiguration::MakeChannels(mBuses, options.channels), observer),
      mApplication(NRuntime::Make<NRuntime::Application>(
          NRuntime::ApplicationSettings{options.variant, options.language, options.numberBase},
          NConfiguration::DataOf(options, options.configuration))),
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
