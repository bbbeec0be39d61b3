#include "host/bench/shell_configuration.h"

#include "host/configuration/document_paths.h"
#include "host/runtime/text.h"
#include "sdk/class_ids.h"

namespace NBench {
namespace {

bool IsGenerator(const NConfiguration::Block& block) { return block.progId == NSdk::kProgIdCANopenIG; }

// What a block writes replaces what it had; keys that it does not know stay.
void PutSettings(const NRuntime::Settings& settings, NConfiguration::Block& block) {
  NRuntime::Settings merged;
  for (const auto& [key, value] : block.settings) merged.Set(NRuntime::ToWide(key), NRuntime::ToWide(value));
  for (const auto& [key, value] : settings.Entries()) merged.Set(key, value);
  block.settings.clear();
  for (const auto& [key, value] : merged.Entries()) {
    block.settings.emplace_back(NRuntime::ToUtf8(key), NRuntime::ToUtf8(value));
  }
}

// The generators of a document are those of the session, in the same order.
void PutSettings(const std::vector<NRuntime::Settings>& settings, NConfiguration::Document& document) {
  std::size_t next = 0;
  for (NConfiguration::Block& block : document.blocks) {
    if (IsGenerator(block) && next < settings.size()) PutSettings(settings[next++], block);
  }
  for (; next < settings.size(); ++next) {
    PutSettings(settings[next], document.blocks.emplace_back(NConfiguration::Block{NSdk::kProgIdCANopenIG}));
  }
}

// Gives the configuration that the module sees another file.
void Rename(NRuntime::Application& application, const std::filesystem::path& file) {
  void* service = nullptr;
  if (FAILED(application.GetService(NSdk::IidOf<NSdk::IConfigurationService>(), &service))) return;
  const auto open =
      NRuntime::ComPtr<NSdk::IConfigurationService>::Own(static_cast<NSdk::IConfigurationService*>(service));
  const auto* const known = dynamic_cast<const NRuntime::Configuration*>(open.Get());
  if (!known) return;
  NRuntime::ConfigurationData data = known->Data();
  data.path = file;
  const auto renamed = NRuntime::Make<NRuntime::Configuration>(std::move(data));
  application.AddService(NRuntime::ComPtr<NSdk::IConfigurationService>(renamed.Get()));
}

}  // namespace

ShellConfiguration::ShellConfiguration(const HostOptions& options)
    : mDocument(static_cast<const NConfiguration::Document&>(options)),
      mFolder(std::filesystem::current_path()),
      mFile(options.configuration) {
  if (mFile.empty()) return;
  mDocument = NConfiguration::Load(mFile);
  mFolder = NConfiguration::FolderOf(mFile);
}

void ShellConfiguration::Save(ShellSession& session, const std::optional<std::filesystem::path>& file) {
  if (!file && mFile.empty())
    throw ShellFailure("the configuration has no file yet; save FILE.json gives it one");
  const std::filesystem::path target = file ? std::filesystem::absolute(*file).lexically_normal() : mFile;
  const std::filesystem::path folder = NConfiguration::FolderOf(target);
  NRuntime::Application& application = session.GetHost().Application();
  try {
    NConfiguration::Document document = NConfiguration::Moved(mDocument, mFolder, folder);
    Rename(application, target);  // the way to the sequence starts from there
    PutSettings(session.Settings(), document);
    NConfiguration::Save(document, target);
    mDocument = std::move(document);
  } catch (const std::runtime_error& error) {
    Rename(application, mFile);
    throw ShellFailure(error.what());
  }
  mFolder = folder;
  mFile = target;
}

}  // namespace NBench
