#include "host/bench/generator_block.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <stdexcept>

#include "host/configuration/document_paths.h"
#include "host/runtime/text.h"
#include "sdk/class_ids.h"

namespace NBench {
namespace {

// One item of a list, and the texts that come with it.
class Item {
 public:
  Item(NSdk::IGenerator& generator, NSdk::GeneratorList list, std::uint32_t position)
      : mIsThere(SUCCEEDED(generator.GetItem(list, position, &mItem))) {}
  ~Item() {
    for (wchar_t* text : {mItem.typeName, mItem.attributes, mItem.cycle, mItem.delay}) CoTaskMemFree(text);
  }
  Item(const Item&) = delete;
  Item& operator=(const Item&) = delete;

  bool IsEnabled() const { return mIsThere && mItem.enabled != 0; }
  std::string Describe() const {
    std::string text;
    for (const wchar_t* part : {mItem.typeName, mItem.attributes}) {
      if (part && *part) text += (text.empty() ? "" : ", ") + NRuntime::ToUtf8(std::wstring_view(part));
    }
    return text;
  }

 private:
  NSdk::GeneratorItem mItem;
  bool mIsThere;
};

// What a block without settings has.
NRuntime::Settings NewGenerator() {
  return {{L"Name", L"Generator"}, {L"SvcDelay", L"10"}, {L"SDOTimeout", L"5000"}, {L"SDOBlockSize", L"10"}};
}

[[noreturn]] void RefuseBlock(const std::string& what) {
  throw std::runtime_error(std::string("block \"") + NSdk::kProgIdCANopenIG + "\" " + what);
}

// Faults that the system can name better than a reader of XML.
void CheckIsFile(const std::filesystem::path& path) {
  const std::string name = NRuntime::PathText(path);
  std::error_code error;
  const auto status = std::filesystem::status(path, error);
  if (!std::filesystem::exists(status)) throw std::runtime_error(name + ": no such file");
  if (std::filesystem::is_directory(status)) throw std::runtime_error(name + ": a directory, not a file");
  if (!std::filesystem::is_regular_file(status)) throw std::runtime_error(name + ": not a regular file");
  errno = 0;
  if (!std::ifstream(path, std::ios::binary)) {
    throw std::runtime_error(name + ": cannot be read: " + std::strerror(errno ? errno : EIO));
  }
}

// A reason may span lines, the report of it does not.
std::string OneLine(std::string text) {
  while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.pop_back();
  std::replace(text.begin(), text.end(), '\n', ' ');
  std::erase(text, '\r');
  return text;
}

}  // namespace

class GeneratorBlock::Events final : public NRuntime::Implements<NSdk::IGeneratorEvents> {
 public:
  explicit Events(GeneratorListener& listener) : mListener(&listener) {}

  void Silence() { mListener = nullptr; }

  HRESULT STDMETHODCALLTYPE OnItemSent(std::uint32_t list, std::uint32_t position) override {
    if (mListener) mListener->OnItemSent(static_cast<NSdk::GeneratorList>(list), position);
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE OnItemFailed(std::uint32_t list, std::uint32_t position) override {
    if (mListener) mListener->OnItemFailed(static_cast<NSdk::GeneratorList>(list), position);
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE OnTransferEnded(std::uint32_t list, std::uint32_t position, std::uint32_t result,
                                            std::uint32_t, std::uint32_t) override {
    if (mListener) mListener->OnTransferEnded(static_cast<NSdk::GeneratorList>(list), position, result);
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE OnActivityChanged(std::uint32_t) override {
    if (mListener) mListener->OnActivityChanged();
    return S_OK;
  }

 private:
  GeneratorListener* mListener;  // null: the block is being let go
};

NRuntime::Settings GeneratorSettings(const HostOptions& options) {
  return AllGeneratorSettings(options).front();
}

std::vector<NRuntime::Settings> AllGeneratorSettings(const HostOptions& options) {
  std::vector<NRuntime::Settings> all;
  for (const NConfiguration::Block& block : options.blocks) {
    if (block.progId != NSdk::kProgIdCANopenIG) continue;
    all.push_back(NewGenerator());
    TakeSettings(block, all.back());
  }
  if (all.empty()) all.push_back(NewGenerator());
  all.front().Set(L"CANChannel", std::to_wstring(options.channel));
  return all;
}

void TakeSettings(const NConfiguration::Block& block, NRuntime::Settings& settings) {
  for (const auto& [key, value] : block.settings)
    settings.Set(NRuntime::ToWide(key), NRuntime::ToWide(value));
}

std::string WhyNotLoaded(NSdk::IGenerator& generator, const NRuntime::Settings& settings,
                         const std::filesystem::path& configuration) {
  const auto remembered = [&](const wchar_t* key) {
    const std::wstring* const text = settings.Find(key);
    return NRuntime::ToPath(text ? NRuntime::ToUtf8(*text) : "");
  };
  std::filesystem::path file = remembered(L"LastCOIGSequenceRel");
  if (file.empty() || configuration.empty()) {
    file = remembered(L"LastCOIGSequenceAbs");
  } else {
    file = NConfiguration::ResolvePath(NConfiguration::FolderOf(configuration), file);
  }
  NRuntime::ReceivedText reason;
  if (file.empty()) return {};
  generator.LoadSequence(NRuntime::WidePathText(file).c_str(), reason.Out());
  return OneLine(NRuntime::ToUtf8(reason.Text()));
}

GeneratorBlock::GeneratorBlock(const NRuntime::Application& application, NRuntime::Setup& setup,
                               const NRuntime::Settings& settings, GeneratorListener& listener)
    : mInserted(application, setup, L"Insert.CANopenIG"),
      mGenerator(NRuntime::Query<NSdk::IGenerator>(Object())),
      mEvents(NRuntime::Make<Events>(listener)) {
  const auto persistent = NRuntime::Query<NSdk::IPersistentObject>(Object());
  if (!mGenerator || !persistent) RefuseBlock("is not a generator");
  const auto reader = NRuntime::Make<NRuntime::SettingsReader>(settings);
  if (FAILED(persistent->Load(reader.Get()))) RefuseBlock("refuses its settings");
  mGenerator->SetEvents(mEvents.Get());
}

GeneratorBlock::~GeneratorBlock() {
  mEvents->Silence();
  mGenerator->SetEvents(nullptr);
}

void GeneratorBlock::LoadSequence(const std::filesystem::path& path) {
  CheckIsFile(path);
  const std::wstring absolute = NRuntime::WidePathText(std::filesystem::absolute(path));
  NRuntime::ReceivedText reason;
  if (SUCCEEDED(mGenerator->LoadSequence(absolute.c_str(), reason.Out()))) return;
  const std::string text = OneLine(NRuntime::ToUtf8(reason.Text()));
  throw std::runtime_error(NRuntime::PathText(path) + ": " +
                           (text.empty() ? "the module cannot load it" : text));
}

NRuntime::Settings GeneratorBlock::Settings() const {
  const auto writer = NRuntime::Make<NRuntime::SettingsWriter>();
  if (FAILED(NRuntime::Query<NSdk::IPersistentObject>(Object())->Save(writer.Get()))) {
    RefuseBlock("does not give its settings");
  }
  return writer->Written();
}

bool GeneratorBlock::ReloadSequence() { return mGenerator->ReloadSequence() == S_OK; }

std::filesystem::path GeneratorBlock::SequenceFile() const {
  const NRuntime::Settings settings = Settings();
  const std::wstring* const path = settings.Find(L"LastCOIGSequenceAbs");
  return path ? NRuntime::ToPath(NRuntime::ToUtf8(*path)) : std::filesystem::path();
}

void GeneratorBlock::ToggleSequence() {
  if (FAILED(mGenerator->ToggleSequence())) RefuseBlock("refuses to start the sequence");
}

void GeneratorBlock::ToggleCyclic() {
  if (FAILED(mGenerator->ToggleCyclic())) RefuseBlock("refuses to start cyclic transmission");
}

std::uint32_t GeneratorBlock::Activity() const {
  std::uint32_t activity = 0;
  return SUCCEEDED(mGenerator->GetActivity(&activity)) ? activity : 0;
}

std::uint32_t GeneratorBlock::CountEnabled(NSdk::GeneratorList list) const {
  std::uint32_t count = 0, enabled = 0;
  if (FAILED(mGenerator->GetItemCount(list, &count))) return 0;
  for (std::uint32_t position = 0; position < count; ++position) {
    if (Item(*mGenerator, list, position).IsEnabled()) ++enabled;
  }
  return enabled;
}

std::string GeneratorBlock::DescribeItem(NSdk::GeneratorList list, std::uint32_t position) const {
  const std::string place = "item " + std::to_string(position + 1) + " of the " +
                            (list == NSdk::kSequenceList ? "sequence" : "cyclic list");
  const std::string item = Item(*mGenerator, list, position).Describe();
  return item.empty() ? place : place + ": " + item;
}

}  // namespace NBench
