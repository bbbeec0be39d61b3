#include <stdexcept>

#include "host/bench/config.h"
#include "host/bench/console.h"
#include "host/bench/description.h"
#include "host/bench/generator_block.h"
#include "host/bench/node_words.h"
#include "host/bench/unobserved.h"
#include "host/devices/described_objects.h"
#include "host/runtime/library_objects.h"
#include "host/runtime/persistence.h"
#include "host/runtime/text.h"
#include "sdk/generator.h"

namespace NBench {
namespace {

using NRuntime::ComPtr;
using NRuntime::ReceivedText;

std::string Utf8(const ReceivedText& text) { return NRuntime::ToUtf8(text.Text()); }

// Goes through all that a configuration names and tells on standard error what is wrong with it. What can be
// used all the same is a warning.
class Checker {
 public:
  Checker(std::filesystem::path file, HostOptions options)
      : mFile(std::move(file)), mOptions(std::move(options)) {}

  /// Whether it can be used.
  bool Check();

 private:
  // Does it, and takes what it throws for a fault.
  template <class Action>
  void Try(const std::string& place, Action action);
  void Fault(const std::string& place, const std::string& text);
  void Warn(const std::string& place, const std::string& text);

  void CheckBus(const std::string& place, const std::string& bus);
  void CheckDatabase(const std::string& place, const std::filesystem::path& database);
  void CheckDevice(const std::string& place, const DeviceOption& device);
  void CheckBlocks();
  void CheckBlock(Host& host, const std::string& place, const NConfiguration::Block& block);

  const std::filesystem::path mFile;
  const HostOptions mOptions;
  NRuntime::AsioLoop mLoop;
  NBuses::BusFactory mBuses{mLoop};
  ComPtr<NSdk::IDatabaseManager> mDatabases = NRuntime::MakeDatabaseManager(ProgramFolder());
  std::string mMessage;  // the module's last one
  bool mGood = true;
};

std::string Place(const std::string& list, std::size_t position) {
  return '/' + list + '/' + std::to_string(position);
}

void Checker::Warn(const std::string& place, const std::string& text) {
  const std::string line = NRuntime::PathText(mFile) + ": " + place + ": " + text;
  WriteError(NRuntime::ToUtf8(Printable(line)));
}

void Checker::Fault(const std::string& place, const std::string& text) {
  mGood = false;
  Warn(place, text);
}

template <class Action>
void Checker::Try(const std::string& place, Action action) {
  try {
    action();
  } catch (const std::runtime_error& error) {
    Fault(place, error.what());
  }
}

bool Checker::Check() {
  for (std::size_t position = 0; position < mOptions.channels.size(); ++position) {
    const ChannelOption& channel = mOptions.channels[position];
    const std::string place = Place("channels", position);
    Try(place + "/bus", [&] { CheckBus(place + "/bus", channel.bus); });
    for (std::size_t database = 0; database < channel.databases.size(); ++database) {
      CheckDatabase(place + Place("databases", database), channel.databases[database]);
    }
  }
  for (std::size_t position = 0; position < mOptions.devices.size(); ++position) {
    const std::string place = Place("devices", position) + "/description";
    Try(place, [&] { CheckDevice(place, mOptions.devices[position]); });
  }
  CheckBlocks();
  return mGood;
}

void Checker::CheckBus(const std::string& place, const std::string& bus) {
  mBuses.Make(bus);
  const NBuses::BusName name = NBuses::ParseBusName(bus);
  std::error_code ignored;
  if (name.kind == "replay" && !std::filesystem::is_regular_file(NRuntime::ToPath(name.address), ignored)) {
    Fault(place, name.address + ": no such file");
  }
}

void Checker::CheckDatabase(const std::string& place, const std::filesystem::path& database) {
  ComPtr<NSdk::ICanDatabase> opened;
  if (mDatabases->OpenFile(NRuntime::WidePathText(database).c_str(), opened.Out()) != S_OK) {
    ReceivedText reason;
    mDatabases->GetFailure(reason.Out());
    Fault(place, Utf8(reason));
    return;
  }
  std::uint32_t count = 0;
  opened->GetErrorCount(&count);
  for (std::uint32_t position = 0; position < count; ++position) {
    ReceivedText text;
    if (SUCCEEDED(opened->GetError(position, nullptr, text.Out()))) Warn(place, "warning: " + Utf8(text));
  }
}

void Checker::CheckDevice(const std::string& place, const DeviceOption& device) {
  const std::string& description = device.device.description;
  if (description.empty()) return;
  NDevices::LoadDescribedObjects(ProgramFolder(), description, device.device.nodeId);
  const DeviceDescription loaded = LoadDescription(NRuntime::ToPath(description), device.device.nodeId);
  for (const DescriptionWarning& warning : loaded.warnings) Warn(place, "warning: " + warning.text);
}

// Blocks need a host, and a host the rest.
void Checker::CheckBlocks() {
  if (!mGood) return;
  Unobserved unobserved;
  try {
    Host host(mOptions, unobserved, [this](const std::string& text) { mMessage = text; });
    for (std::size_t position = 0; position < mOptions.blocks.size(); ++position) {
      const std::string place = Place("blocks", position);
      Try(place, [&] { CheckBlock(host, place, mOptions.blocks[position]); });
    }
  } catch (const std::runtime_error& error) {
    mGood = false;
    Complain(error.what());
  }
}

void Checker::CheckBlock(Host& host, const std::string& place, const NConfiguration::Block& block) {
  const ComPtr<IUnknown> object = host.Module().Create(block.progId.c_str());
  const auto attached = NRuntime::Query<NSdk::IPlugInBlock>(object);
  const auto persistent = NRuntime::Query<NSdk::IPersistentObject>(object);
  if (!attached || !persistent) throw std::runtime_error('"' + block.progId + "\" is no block");
  const auto site = NRuntime::Make<NRuntime::BlockSite>(host.Application());
  attached->Attach(site.Get());
  NRuntime::Settings settings;
  TakeSettings(block, settings);
  const auto reader = NRuntime::Make<NRuntime::SettingsReader>(settings);
  if (FAILED(persistent->Load(reader.Get()))) Fault(place + "/settings", "the block refuses its settings");
  mMessage = "the sequence file cannot be loaded";
  const auto generator = NRuntime::Query<NSdk::IGenerator>(object);
  if (generator && FAILED(generator->ReloadSequence())) {
    const std::string reason = WhyNotLoaded(*generator, settings, mOptions.configuration);
    Fault(place + "/settings", mMessage + (reason.empty() ? "" : ": " + reason));
  }
  attached->Detach();
}

std::string Count(std::size_t count, const std::string& noun) {
  return std::to_string(count) + ' ' + noun + (count == 1 ? "" : "s");
}

std::string Summary(const HostOptions& options) {
  std::size_t databases = 0;
  for (const ChannelOption& channel : options.channels) databases += channel.databases.size();
  return Count(options.channels.size(), "channel") + ", " + Count(databases, "database") + ", " +
         Count(options.devices.size(), "device") + ", " + Count(options.blocks.size(), "block");
}

}  // namespace

ExitStatus CheckConfig(const std::filesystem::path& file,
                       const std::optional<std::filesystem::path>& module) {
  const NConfiguration::LoadedDocument loaded = NConfiguration::Inspect(file);
  for (const std::string& fault : loaded.faults) WriteError(fault);
  if (!loaded.faults.empty()) return kBadInput;
  HostTexts texts;
  texts.configuration = NRuntime::PathText(file);
  HostOptions options = CheckHost(texts);
  options.module = module;
  if (!Checker(file, options).Check()) return kBadInput;
  Output output;
  output.Write(NRuntime::PathText(file) + ": good, " + Summary(options) + '\n');
  return output.End() ? kOk : kFailed;
}

}  // namespace NBench
