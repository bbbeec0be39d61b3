#include "channels/channel_manager.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "channels/database_library.h"
#include "com/entry.h"
#include "com/implements.h"
#include "com/task_text.h"
#include "common/host_application.h"

namespace NChannels {
namespace {

struct NumericMark {
  const wchar_t* attribute;
  bool Channel::*flag;
};

constexpr NumericMark kNumericMarks[] = {
    {L"J1939PGN", &Channel::j1939},        {L"IsCANopen", &Channel::canopen},
    {L"IsDeviceNet", &Channel::deviceNet}, {L"IsAerospace", &Channel::aerospace},
    {L"IsNMEA", &Channel::nmea},
};

struct TypeName {
  const char* name;  // in lower case
  bool Channel::*flag;
};

constexpr TypeName kTypeNames[] = {
    {"j1939", &Channel::j1939},     {"iso11783", &Channel::j1939},        {"nmea2000", &Channel::nmea},
    {"canopen", &Channel::canopen}, {"canopensafety", &Channel::canopen},
};

std::string Lowered(const std::wstring& text) {
  std::string lowered;
  for (const wchar_t character : text) {
    const bool upper = character >= L'A' && character <= L'Z';
    lowered += character < 0x80 ? static_cast<char>(upper ? character - L'A' + L'a' : character) : '?';
  }
  return lowered;
}

bool Channel::*ProtocolOfType(const std::string& type) {
  const auto found = std::find_if(std::begin(kTypeNames), std::end(kTypeNames),
                                  [&](const TypeName& known) { return type == known.name; });
  return found == std::end(kTypeNames) ? nullptr : found->flag;
}

std::unique_ptr<ZChannelManager>& Slot() {
  static std::unique_ptr<ZChannelManager> manager;
  return manager;
}

}  // namespace

bool Channel::*ProtocolOf(NSdk::ICanAttributes& database) {
  double value = 0;
  for (const NumericMark& mark : kNumericMarks) {
    if (database.GetNumber(mark.attribute, &value) == S_OK) return value > 0 ? mark.flag : nullptr;
  }
  NCom::TaskText type;
  if (database.GetText(L"ProtocolType", type.Receive()) != S_OK) return nullptr;
  return ProtocolOfType(Lowered(type.Text()));
}

std::wstring DisplayName(const Channel& channel) {
  return L"CAN " + std::to_wstring(channel.number) + (channel.canopen ? L" (CANopen)" : L"");
}

// Hears that the assignment of databases has changed. It may outlive the manager in the hands of the host.
class ZChannelManager::Sink final : public NCom::Implements<NSdk::IDatabaseSetupEvents> {
 public:
  HRESULT STDMETHODCALLTYPE OnDatabaseSetupChanged() override {
    NCom::ModuleScope scope;
    needsRefresh = true;
    return S_OK;
  }
  bool needsRefresh = true;
};

ZChannelManager::ZChannelManager() : mSink(NCom::Make<Sink>()) {
  mEvents.Begin<NSdk::IDatabaseSetupEvents>(mSink->Identity());
}

// What is known of a channel follows it to another place when others come or go.
std::uint32_t ZChannelManager::ChannelCount() {
  const auto known = std::exchange(mChannels, {});
  const auto configuration = NCommon::HostService<NSdk::IConfigurationService>();
  std::uint32_t count = 0;
  std::uint32_t number = 0;
  while (configuration && count < mChannels.size() &&
         configuration->GetCanChannel(count + 1, &number) == S_OK) {
    const auto same = std::find_if(known.begin(), known.end(),
                                   [&](const Channel& channel) { return channel.number == number; });
    mChannels[count] = same != known.end() ? *same : Channel{number};
    ++count;
  }
  return count;
}

void ZChannelManager::Refresh() {
  if (!mSink->needsRefresh) return;
  mSink->needsRefresh = false;
  ++mRevision;
  mChannels = {};
  ChannelCount();
  GetCANDbs();
}

std::uint32_t ZChannelManager::Revision() {
  Refresh();
  return mRevision;
}

void ZChannelManager::GetCANDbs() {
  const auto manager = MakeDatabaseManager();
  if (!manager) return;
  std::uint32_t channel = 0;
  for (std::uint32_t index = 1; manager->GetDatabaseInfo(index, nullptr, &channel) == S_OK; ++index) {
    MarkProtocol(*manager, index, channel);
  }
}

void ZChannelManager::MarkProtocol(NSdk::IDatabaseManager& manager, std::uint32_t index,
                                   std::uint32_t channel) {
  NCom::ComPtr<NSdk::ICanDatabase> database;
  if (channel == NSdk::kUnknownChannel || manager.OpenDatabase(index, database.Receive()) != S_OK) return;
  const auto marked = std::find_if(mChannels.begin(), mChannels.end(),
                                   [&](const Channel& entry) { return entry.number == channel; });
  bool Channel::*const flag = ProtocolOf(*database);
  if (marked != mChannels.end() && flag) (*marked).*flag = true;
}

ZChannelManager& TheChannelManager() {
  if (!Slot()) Slot() = std::make_unique<ZChannelManager>();
  return *Slot();
}

void ReleaseChannelManager() {
  Slot().reset();
  ReleaseDatabaseLibrary();
}

}  // namespace NChannels
