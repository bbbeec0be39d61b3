#include "host/workbench/workbench.h"

#include <algorithm>
#include <stdexcept>

#include "host/configuration/document_paths.h"
#include "host/runtime/persistence.h"
#include "host/runtime/text.h"
#include "host/workbench/channel_texts.h"
#include "host/workbench/node_descriptions.h"
#include "sdk/unsaved_work.h"

namespace NWorkbench {
namespace {

constexpr wchar_t kChannelKey[] = L"CANChannel";  // of a block that belongs to a channel

NRuntime::Settings ReadSettings(IUnknown& block) {
  const auto persistent = NRuntime::Query<NSdk::IPersistentObject>(&block);
  const auto writer = NRuntime::Make<NRuntime::SettingsWriter>();
  if (!persistent || FAILED(persistent->Save(writer.Get()))) return {};
  return writer->Written();
}

void WriteSettings(IUnknown& block, NRuntime::Settings settings) {
  const auto persistent = NRuntime::Query<NSdk::IPersistentObject>(&block);
  const auto reader = NRuntime::Make<NRuntime::SettingsReader>(std::move(settings));
  if (persistent && FAILED(persistent->Load(reader.Get()))) {
    throw std::runtime_error("the block refuses its settings");
  }
}

std::string ProgIdOf(IUnknown& block) {
  const auto persistent = NRuntime::Query<NSdk::IPersistentObject>(&block);
  NRuntime::ReceivedText progId;
  if (!persistent || FAILED(persistent->GetProgId(progId.Out()))) return {};
  return NRuntime::ToUtf8(progId.Text());
}

}  // namespace

std::vector<NConfiguration::Block::Setting> SettingsOf(IUnknown& block) {
  std::vector<NConfiguration::Block::Setting> settings;
  const NRuntime::Settings read = ReadSettings(block);
  for (const auto& [key, value] : read.Entries()) {
    settings.emplace_back(NRuntime::ToUtf8(key), NRuntime::ToUtf8(value));
  }
  return settings;
}

std::uint32_t UnsavedStateOf(const PlacedBlock& block) {
  const auto work = NRuntime::Query<NSdk::IWorkCopy>(block.object);
  std::uint32_t state = 0;
  return work && work->GetUnsavedState(&state) == S_OK ? state : 0;
}

Workbench::Workbench(WorkbenchOptions options, WorkbenchEvents& events)
    : mOptions(std::move(options)), mEvents(events) {}

Workbench::~Workbench() { CloseHost(); }

// ---- configuration

void Workbench::New(const NConfiguration::Document& settings) {
  CloseHost();
  mFile.clear();
  NConfiguration::Document document = settings;
  document.channels = {NewChannel(1)};
  document.devices.clear();
  document.blocks.clear();
  mDocument = std::move(document);
  OpenHost({});
  mSaved = Capture();
}

void Workbench::Open(const std::filesystem::path& file) {
  NConfiguration::Document document = NConfiguration::Load(file);
  CloseHost();
  mFile = std::filesystem::absolute(file);
  OpenDocument(std::move(document));
}

void Workbench::TakeUp(const NConfiguration::Document& document, const std::filesystem::path& file,
                       bool isModified) {
  CloseHost();
  mFile = file;
  OpenDocument(document);
  if (isModified) mSaved.reset();
}

void Workbench::OpenDocument(NConfiguration::Document document) {
  ++mFileTurn;
  const auto blocks = std::move(document.blocks);
  document.blocks.clear();
  mDocument = std::move(document);
  OpenHost(blocks);
  mSaved = Capture();
}

void Workbench::Save(const std::filesystem::path& file) {
  const std::filesystem::path path = std::filesystem::absolute(file);
  NConfiguration::Document document = Capture();
  const auto to = NConfiguration::FolderOf(path);
  const auto from = mFile.empty() ? to : NConfiguration::FolderOf(mFile);
  if (from != to) document = NConfiguration::Moved(std::move(document), from, to);
  NConfiguration::Save(document, path);
  ++mFileTurn;
  document.blocks.clear();
  mDocument = std::move(document);
  mFile = path;
  TellConfiguration();
  for (PlacedBlock& block : mBlocks) {
    if (block.object) block.stored.settings = SettingsOf(*block.object);
  }
  mSaved = Capture();
}

NConfiguration::Document Workbench::Capture() const {
  NConfiguration::Document document = mDocument;
  document.blocks = CaptureBlocks();
  return document;
}

std::vector<NConfiguration::Block> Workbench::CaptureBlocks() const {
  std::vector<NConfiguration::Block> blocks;
  for (const PlacedBlock& placed : mBlocks) {
    blocks.push_back(placed.stored);
    if (placed.object) blocks.back().settings = SettingsOf(*placed.object);
  }
  return blocks;
}

void Workbench::Change(const NConfiguration::Document& document) {
  const bool reload = document.variant != mDocument.variant || document.language != mDocument.language;
  const auto blocks = CaptureBlocks();
  if (reload) CloseHost();
  mDocument = document;
  mDocument.blocks.clear();
  if (reload) return OpenHost(blocks);
  TellConfiguration();
  mApplication->SetNumberBase(mDocument.numberBase);
  mEvents.OnSetupChanged();
}

void Workbench::SetNumberBase(std::uint32_t base) {
  mDocument.numberBase = base;
  mApplication->SetNumberBase(base);
  mEvents.OnSetupChanged();
}

void Workbench::SetLargeIcons(bool large) {
  mDocument.largeIcons = large;
  mEvents.OnSetupChanged();
}

void Workbench::ReadDatabasesAgain() {
  TellConfiguration();
  mEvents.OnSetupChanged();
}

const std::vector<std::filesystem::path>& Workbench::NodeDescriptions() const {
  if (!mNodeDescriptions)
    mNodeDescriptions =
        mModule ? ReadNodeDescriptions(*mModule->PlugIn()) : std::vector<std::filesystem::path>();
  return *mNodeDescriptions;
}

void Workbench::TellConfiguration() {
  mApplication->SetConfiguration(HostConfiguration());
  mNodeDescriptions.reset();
}

void Workbench::SetWindows(const NConfiguration::Window& own,
                           std::map<std::string, NConfiguration::Window> inner) {
  mDocument.window = own;
  mDocument.windows = std::move(inner);
}

NConfiguration::Document Workbench::ForUse() const {
  NConfiguration::Document document = mDocument;
  const auto folder = mFile.empty() ? std::filesystem::current_path() : NConfiguration::FolderOf(mFile);
  return NConfiguration::Resolved(std::move(document), folder);
}

// ---- module and blocks

void Workbench::OpenHost(const std::vector<NConfiguration::Block>& blocks) {
  const NRuntime::ApplicationSettings settings = {mDocument.variant, mDocument.language,
                                                  mDocument.numberBase};
  mApplication = NRuntime::Make<NRuntime::Application>(settings, HostConfiguration());
  mApplication->SetMeasuringQuery([this] { return IsMeasuring(); });
  mIsChanging = true;
  LoadModule();
  mSetup = NRuntime::Make<NRuntime::Setup>(*mApplication, [this] { TakeNewBlocks(); });
  for (const NConfiguration::Block& block : blocks) AddStoredBlock(block);
  mApplication->TellOpened();
  mApplication->TellChanged();
  mIsChanging = false;
  mEvents.OnSetupChanged();
}

void Workbench::LoadModule() {
  mModuleFault.clear();
  mNodeDescriptions.reset();
  try {
    mModule = std::make_unique<NRuntime::Module>(mOptions.module);
    mModule->Initialise(*mApplication);
    mExtensions = NRuntime::Query<NSdk::IPlugInExtensions>(mModule->PlugIn());
  } catch (const std::runtime_error& error) {
    mModule.reset();
    mModuleFault = error.what();
    mEvents.OnTrouble(mModuleFault);
  }
}

// Everything that the module has made goes before the module does.
void Workbench::CloseHost() {
  Stop();
  for (const PlacedBlock& block : mBlocks) {
    if (block.object) mEvents.OnBlockLeaving(*block.object);
  }
  mBlocks.clear();
  const auto setup = std::move(mSetup);  // what it tells while it is emptied concerns nobody any more
  if (setup) setup->Clear();
  mExtensions.Reset();
  mModule.reset();
  mApplication.Reset();
}

// A block that cannot be made keeps its place in the configuration, so that nothing is lost.
void Workbench::AddStoredBlock(NConfiguration::Block block) {
  mBlocks.push_back({nullptr, std::move(block)});
  const NConfiguration::Block stored = mBlocks.back().stored;
  NRuntime::Settings settings;
  for (const auto& [key, value] : stored.settings) {
    settings.Set(NRuntime::ToWide(key), NRuntime::ToWide(value));
  }
  try {
    if (!mModule) throw std::runtime_error("there is no module that could make it");
    const auto object = mModule->Create(stored.progId.c_str());
    mBlocks.back().object = object;
    if (FAILED(mSetup->AddBlock(object.Get()))) throw std::runtime_error("it refuses its place in the host");
    WriteSettings(*object, std::move(settings));
  } catch (const std::runtime_error& error) {
    const auto object = std::move(mBlocks.back().object);
    mBlocks.back() = {nullptr, stored};
    if (object) mSetup->RemoveBlock(object.Get());
    mEvents.OnTrouble("block \"" + stored.progId + "\": " + error.what());
  }
}

// The setup has changed by a command of the module, or a block has told that it has changed.
void Workbench::TakeNewBlocks() {
  if (!mSetup) return;
  for (const auto& object : mSetup->Blocks()) {
    if (Find(object.Get())) continue;
    mBlocks.push_back({object, {ProgIdOf(*object), {}, std::nullopt}});
    if (mInsertChannel != 0) SetChannel(*object, mInsertChannel);
    mBlocks.back().stored.settings = SettingsOf(*object);
  }
  mEvents.OnSetupChanged();
}

PlacedBlock* Workbench::Find(const IUnknown* block) {
  const auto found = std::find_if(mBlocks.begin(), mBlocks.end(),
                                  [&](const PlacedBlock& each) { return each.object.Get() == block; });
  return block && found != mBlocks.end() ? &*found : nullptr;
}

NSdk::BlockCategory Workbench::CategoryOf(const PlacedBlock& block) const {
  const std::wstring progId = NRuntime::ToWide(block.stored.progId);
  for (const auto& type : mApplication->BlockTypes().Types()) {
    if (type.progId == progId) return type.category;
  }
  return NSdk::kBlockCategoryMeasurement;
}

std::wstring Workbench::NameOf(const PlacedBlock& block) const {
  NRuntime::ReceivedText name;
  const auto named = NRuntime::Query<NSdk::IPlugInBlock>(block.object);
  if (named && SUCCEEDED(named->GetName(name.Out())) && !name.Text().empty()) return name.Text();
  const std::string* stored = block.stored.Find("Name");
  return NRuntime::ToWide(stored && !stored->empty() ? *stored : block.stored.progId);
}

std::wstring Workbench::CaptionOf(const PlacedBlock& block) const {
  NRuntime::ReceivedText caption;
  const auto captioned = NRuntime::Query<NSdk::IPlugInBlock>(block.object);
  const bool answered = captioned && SUCCEEDED(captioned->GetCaption(caption.Out()));
  return answered && !caption.Text().empty() ? caption.Text() : NameOf(block);
}

std::uint32_t Workbench::ChannelOf(const PlacedBlock& block) const {
  std::string text;
  if (block.object) {
    const NRuntime::Settings settings = ReadSettings(*block.object);
    if (const std::wstring* value = settings.Find(kChannelKey)) text = NRuntime::ToUtf8(*value);
  } else if (const std::string* value = block.stored.Find(NRuntime::ToUtf8(kChannelKey))) {
    text = *value;
  }
  return static_cast<std::uint32_t>(std::strtoul(text.c_str(), nullptr, 10));
}

void Workbench::SetChannel(IUnknown& block, std::uint32_t channel) const {
  NRuntime::Settings settings = ReadSettings(block);
  if (!settings.Find(kChannelKey)) return;
  settings.Set(kChannelKey, std::to_wstring(channel));
  WriteSettings(block, std::move(settings));
}

NRuntime::ComPtr<IUnknown> Workbench::CommandContext() const {
  return NRuntime::ComPtr<IUnknown>::Own(new NRuntime::SetupContext(*mSetup));
}

void Workbench::Execute(NSdk::IAction& action, std::uint32_t channel) {
  mInsertChannel = channel;
  const NRuntime::ComPtr<NSdk::IAction> kept(&action);
  const HRESULT result = kept->Execute(CommandContext().Get());
  mInsertChannel = 0;
  if (FAILED(result)) mEvents.OnTrouble("the module could not carry out the command");
}

void Workbench::Remove(std::size_t position) {
  if (position >= mBlocks.size() || IsMeasuring()) return;
  const NRuntime::ComPtr<IUnknown> object = mBlocks[position].object;
  if (object) mEvents.OnBlockLeaving(*object);
  mBlocks.erase(mBlocks.begin() + static_cast<std::ptrdiff_t>(position));
  if (object) {
    mSetup->RemoveBlock(object.Get());
  } else {
    mEvents.OnSetupChanged();
  }
}

// ---- measurement

void Workbench::Start() {
  if (mSession || mIsChanging) return;
  const NConfiguration::Document document = ForUse();
  mTrace.Clear();
  mLoads.clear();
  mFloodWatch = {};
  for (const auto& channel : document.channels) mLoads.emplace(channel.number, BusLoad(BitRateOf(channel)));
  NRuntime::MeasurementObserver& observer = *this;
  try {
    mSession = std::make_unique<Session>(mOptions.makeLoop(), document, mOptions.libraries, observer);
  } catch (const std::runtime_error& error) {
    return mEvents.OnCannotStart(error.what());
  }
  mSession->Prepare([this](const std::string& fault) { StartSession(fault); });
  if (IsJoining()) mEvents.OnMeasurementChanged();
}

void Workbench::StartSession(const std::string& fault) {
  mIsChanging = true;
  mStopIsWanted = false;
  try {
    if (!fault.empty()) throw std::runtime_error(fault);
    const auto blocks = mSetup->Blocks();
    mSession->Start(blocks);
  } catch (const std::runtime_error& error) {
    mSession->Stop();
    EndSession();
    return mEvents.OnCannotStart(error.what());
  }
  mIsChanging = false;
  mEvents.OnMeasurementChanged();
  if (mStopIsWanted) Stop();
}

void Workbench::Stop() {
  mStopIsWanted = true;
  if (!mSession || mIsChanging) return;
  mIsChanging = true;
  mSession->Stop();
  EndSession();
}

// It may be one of the measurement's own tasks that ends it.
void Workbench::EndSession() {
  mEnded.push_back(std::move(mSession));
  mIsChanging = false;
  mEvents.OnMeasurementChanged();
}

void Workbench::Tidy(const std::function<bool(NRuntime::IoLoop&)>& isInTask) {
  std::erase_if(mEnded,
                [&](const auto& session) { return !session->IsSearching() && !isInTask(session->Loop()); });
}

void Workbench::EndLoadSpan() {
  for (auto& [number, load] : mLoads) load.EndSpan(Elapsed());
  if (mSession && mFloodWatch.HasEnded(Elapsed())) mSession->Loop().SetFlooded(false);
}

void Workbench::OnFrame(const NRuntime::SeenFrame& seen) {
  mTrace.Add(seen);
  const auto load = mLoads.find(seen.channel);
  if (load != mLoads.end()) load->second.Add(seen);
  const bool isReceived = seen.direction == NSdk::kCanReceived;
  if (mSession && isReceived && mFloodWatch.Add(seen.time)) mSession->Loop().SetFlooded(true);
}

void Workbench::OnTrouble(std::uint32_t channel, const std::string& text) {
  mEvents.OnTrouble("CAN " + std::to_string(channel) + ": " + text);
}

void Workbench::OnEnd() { Stop(); }

}  // namespace NWorkbench
