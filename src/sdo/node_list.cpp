#include "sdo/node_list.h"

#include <algorithm>

#include "channels/database_library.h"
#include "com/task_text.h"
#include "common/host_library.h"
#include "common/text.h"
#include "sdk/description_loader.h"

namespace NSdo {
namespace {

using namespace CODESCRLDR;

constexpr std::uint16_t kFirstListed = 0x1000;  // below lie definitions of data types
constexpr std::uint16_t kFirstTpdo = 0x1800;
constexpr std::uint16_t kLastTpdo = 0x18FF;
constexpr std::uint8_t kCobIdOfPdo = 1;

constexpr const wchar_t* kAccessTexts[] = {L"ReadWrite", L"WriteOnly",        L"ReadOnly",
                                           L"Const",     L"RW Process input", L"RW Process output"};

// Text and domain types (CiA 301, 7.4.7.1).
bool HasVariableLength(std::uint32_t dataType) {
  constexpr std::uint32_t kTypes[] = {9, 10, 11, 14, 15};
  return std::find(std::begin(kTypes), std::end(kTypes), dataType) != std::end(kTypes);
}

std::wstring LabelOf(ZCOObject& object) {
  NCom::TaskText name;
  AccessType access = kAccessUnknown;
  object.GetName(name.Receive());
  object.GetAccessType(&access);
  if (access >= std::size(kAccessTexts)) return name.Text();
  return L"(" + std::wstring(kAccessTexts[access]) + L") " + name.Text();
}

NodeObject Describe(ZCOObject& object) {
  NodeObject described;
  std::uint32_t dataType = 0;
  std::uint32_t readOnly = 0;
  object.GetIndex(&described.index, &described.subindex);
  object.GetDataType(&dataType);
  object.IsReadOnly(&readOnly);
  described.variableLength = HasVariableLength(dataType);
  if (!described.variableLength) object.GetSize(&described.size);
  described.writable = readOnly == 0;
  described.label = LabelOf(object);
  NCom::ComPtr<ZCOObjectValue> value;
  NCom::TaskText text;
  if (object.GetValue(value.Receive()) == S_OK && SUCCEEDED(value->GetText(text.Receive()))) {
    described.value = text.Text();
  }
  return described;
}

void TakeTpdo(ZCOObject& object, const NodeObject& described, DatabaseNode& node) {
  if (described.subindex != kCobIdOfPdo || described.index < kFirstTpdo || described.index > kLastTpdo)
    return;
  NCom::ComPtr<ZCOObjectValue> value;
  std::int64_t cobId = -1;
  if (object.GetValue(value.Receive()) != S_OK || FAILED(value->GetNumber(&cobId)) || cobId < 0) return;
  node.tpdos.push_back({static_cast<std::uint32_t>(cobId), std::uint32_t{described.index} - kFirstTpdo});
}

template <class Action>
void ForEach(ZCOObjectList& list, Action action) {
  std::uint32_t count = 0;
  list.GetCount(&count);
  for (std::uint32_t position = 0; position < count; ++position) {
    NCom::ComPtr<ZCOObject> object;
    if (list.GetAt(position, object.Receive()) == S_OK) action(*object);
  }
}

void TakeObject(ZCOObject& object, DatabaseNode& node) {
  std::uint16_t index = 0;
  object.GetIndex(&index, nullptr);
  if (index < kFirstListed) return;
  NCom::ComPtr<ZCOObjectList> subObjects;
  std::uint32_t count = 0;
  object.GetSubObjects(subObjects.Receive());
  if (subObjects) subObjects->GetCount(&count);
  if (count == 0) {
    node.objects.push_back(Describe(object));
    return;
  }
  ForEach(*subObjects, [&](ZCOObject& subObject) {
    node.objects.push_back(Describe(subObject));
    TakeTpdo(subObject, node.objects.back(), node);
  });
}

void LoadDescription(const NCommon::HostLibrary& library, DatabaseNode& node) {
  NCom::ComPtr<ZCODescrLdr> loader;
  const auto create = library.Find<DllCreateCODescrLdrFunction>(kCreateLoaderName);
  if (!create || FAILED(create(NSdk::IidOf<ZCODescrLdr>(), loader.ReceiveVoid()))) return;
  loader->SetNodeId(node.nodeId);
  const std::uint32_t result = loader->Load(NCommon::PathToWide(node.description).c_str());
  if (result != kLoaded && result <= kLastError) return;
  NCom::ComPtr<ZCOObjectList> objects;
  if (FAILED(loader->GetObjects(objects.Receive())) || !objects) return;
  ForEach(*objects, [&](ZCOObject& object) { TakeObject(object, node); });
}

// False: it is no CANopen node.
bool Identify(NSdk::ICanDatabaseNode& source, DatabaseNode& node) {
  constexpr double kLargest = 0xFFFFFFFF;
  NCom::TaskText name;
  double nodeId = 0;
  source.GetName(name.Receive());
  node.name = name.Text();
  if (node.name.empty() || source.GetNumber(L"CO_ID", &nodeId) != S_OK) return false;
  if (!(nodeId >= 1 && nodeId <= kLargest)) return false;
  node.nodeId = static_cast<std::uint32_t>(nodeId);
  return true;
}

void FindDescription(NSdk::ICanDatabaseNode& source, const std::filesystem::path& folder,
                     DatabaseNode& node) {
  NCom::TaskText value;
  if (source.GetText(L"CO_DCF", value.Receive()) != S_OK || value.Text().empty()) return;
  const std::filesystem::path path = ResolveDescription(folder, value.Text());
  std::error_code ignored;
  if (std::filesystem::is_regular_file(path, ignored)) node.description = path;
}

void TakeNodes(NSdk::ICanDatabase& database, const std::filesystem::path& folder,
               const NCommon::HostLibrary& loaderLibrary, std::vector<DatabaseNode>& nodes) {
  std::uint32_t count = 0;
  database.GetNodeCount(&count);
  for (std::uint32_t position = 0; position < count; ++position) {
    NCom::ComPtr<NSdk::ICanDatabaseNode> source;
    DatabaseNode node;
    if (database.GetNodeAt(position, source.Receive()) != S_OK || !Identify(*source, node)) continue;
    FindDescription(*source, folder, node);
    if (!node.description.empty()) LoadDescription(loaderLibrary, node);
    nodes.push_back(std::move(node));
  }
}

}  // namespace

// Databases come from Windows, where the backslash parts folders.
std::filesystem::path ResolveDescription(const std::filesystem::path& folder, const std::wstring& value) {
  constexpr auto kSeparator = std::filesystem::path::preferred_separator;
  const bool isName = value.find(L"..") == std::wstring::npos && value.find(L'\\') == std::wstring::npos &&
                      value.find(static_cast<wchar_t>(kSeparator)) == std::wstring::npos;
  if (isName) return folder / NCommon::WideToPath(value).filename();
  const std::filesystem::path asItStands = folder / NCommon::WideToPath(value);
  std::error_code ignored;
  if (std::filesystem::exists(asItStands, ignored)) return asItStands.lexically_normal();
  std::wstring slashes = value;
  std::replace(slashes.begin(), slashes.end(), L'\\', L'/');
  return (folder / NCommon::WideToPath(slashes)).lexically_normal();
}

HRESULT BuildDatabaseNodeList(std::uint32_t channel, std::vector<DatabaseNode>& nodes) {
  std::vector<DatabaseNode> built;
  const NCommon::HostLibrary loaderLibrary(L"codescrldr");
  const auto manager = NChannels::MakeDatabaseManager();
  std::uint32_t assigned = 0;
  NCom::TaskText path;
  for (std::uint32_t index = 1; manager && manager->GetDatabaseInfo(index, path.Receive(), &assigned) == S_OK;
       ++index) {
    if (assigned != channel) continue;
    NCom::ComPtr<NSdk::ICanDatabase> database;
    const HRESULT result = manager->OpenDatabase(index, database.Receive());
    if (FAILED(result)) return result;
    TakeNodes(*database, NCommon::WideToPath(path.Text()).parent_path(), loaderLibrary, built);
  }
  nodes = std::move(built);
  return S_OK;
}

}  // namespace NSdo
