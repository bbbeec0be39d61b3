#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "host/buses/bus_factory.h"
#include "host/buses/candump.h"
#include "host/runtime/application.h"
#include "host/runtime/measurement.h"
#include "host/runtime/module.h"
#include "host/runtime/setup.h"
#include "tests/host/virtual_loop.h"

namespace NTest {

using NRuntime::ComPtr;

class Dialogs final : public NRuntime::Implements<NSdk::IUserDialogs> {
 public:
  HRESULT STDMETHODCALLTYPE ShowMessage(const wchar_t*, const wchar_t* text, std::uint32_t) override {
    messages.emplace_back(text);
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE SelectNodes(const wchar_t*, const std::uint8_t* candidates, std::uint32_t count,
                                        std::uint8_t* chosen) override {
    offered.assign(candidates, candidates + count);
    for (std::uint32_t position = 0; position < count; ++position) {
      chosen[position] = std::find(picked.begin(), picked.end(), candidates[position]) != picked.end();
    }
    return picked.empty() ? S_FALSE : S_OK;
  }

  std::vector<std::wstring> messages;
  std::vector<std::uint8_t> picked;
  std::vector<std::uint8_t> offered;
};

// A host with the module, on two CAN channels unless told otherwise.
class Host : private NRuntime::MeasurementObserver {
 public:
  explicit Host(NSdk::HostVariant variant, std::uint32_t channels = 2, std::uint32_t language = 1,
                const std::filesystem::path& database = {}, const std::filesystem::path& file = OSTREL_MODULE)
      : application(NRuntime::Make<NRuntime::Application>(
            NRuntime::ApplicationSettings{variant, language, 10}, Configuration(channels, database))),
        measurement(loop, Channels(channels), *this),
        module(file) {
    application->AddService<NSdk::IUserDialogs>(ComPtr<NSdk::IUserDialogs>(dialogs.Get()));
    application->SetMeasuringQuery([this] { return measurement.IsRunning(); });
    module.Initialise(*application);
  }
  ~Host() override {
    measurement.Stop();
    setup->Clear();
  }

  void Execute(const wchar_t* name) {
    const auto command = application->Commands().FindCommand(name);
    ASSERT_TRUE(command) << name;
    EXPECT_EQ(command->Execute(NRuntime::Make<NRuntime::SetupContext>(*setup).Get()), S_OK);
    loop.RunFor(std::chrono::milliseconds(0));
  }
  std::uint32_t State(const wchar_t* name) {
    std::uint32_t state = 99;
    const auto command = application->Commands().FindCommand(name);
    if (command) command->GetState(&state);
    return state;
  }
  std::vector<std::string> TakeFrames() { return std::exchange(mFrames, {}); }

  NTest::VirtualLoop loop;
  NBuses::BusFactory buses{loop};
  ComPtr<Dialogs> dialogs = NRuntime::Make<Dialogs>();
  ComPtr<NRuntime::Application> application;
  NRuntime::Measurement measurement;
  NRuntime::Module module;
  ComPtr<NRuntime::Setup> setup = NRuntime::Make<NRuntime::Setup>(*application);

 private:
  static NRuntime::ConfigurationData Configuration(std::uint32_t channels,
                                                   const std::filesystem::path& database) {
    NRuntime::ConfigurationData configuration;
    if (!database.empty()) configuration.databases.push_back({database, 1});
    for (std::uint32_t channel = 1; channel <= channels; ++channel)
      configuration.canChannels.push_back(channel);
    return configuration;
  }
  std::vector<NRuntime::CanChannel> Channels(std::uint32_t count) {
    std::vector<NRuntime::CanChannel> channels;
    for (std::uint32_t channel = 1; channel <= count; ++channel) {
      channels.push_back({channel, buses.Make("virtual:bus" + std::to_string(channel))});
    }
    return channels;
  }
  void OnFrame(const NRuntime::SeenFrame& seen) override {
    mFrames.push_back(NBuses::InterfaceName(seen.channel) + " " + NBuses::FrameText(seen.frame));
  }
  void OnTrouble(std::uint32_t, const std::string& text) override { ADD_FAILURE() << text; }

  std::vector<std::string> mFrames;
};

}  // namespace NTest
