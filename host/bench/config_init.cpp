#include <stdexcept>

#include "host/bench/config.h"
#include "host/bench/generator_block.h"
#include "host/configuration/document_paths.h"
#include "host/runtime/text.h"
#include "sdk/class_ids.h"

namespace NBench {
namespace {

class Unobserved final : public NRuntime::MeasurementObserver, public GeneratorListener {
  void OnFrame(const NRuntime::SeenFrame&) override {}
  void OnTrouble(std::uint32_t, const std::string&) override {}
  void OnItemSent(NSdk::GeneratorList, std::uint32_t) override {}
  void OnItemFailed(NSdk::GeneratorList, std::uint32_t) override {}
  void OnTransferEnded(NSdk::GeneratorList, std::uint32_t, std::uint32_t) override {}
  void OnActivityChanged() override {}
};

// The settings that a block would have kept.
NConfiguration::Block Saved(const char* progId, const NRuntime::ComPtr<IUnknown>& object) {
  const auto persistent = NRuntime::Query<NSdk::IPersistentObject>(object);
  const auto writer = NRuntime::Make<NRuntime::SettingsWriter>();
  if (!persistent || FAILED(persistent->Save(writer.Get()))) {
    throw std::runtime_error(std::string("block \"") + progId + "\" does not tell its settings");
  }
  NConfiguration::Block block = {progId};
  for (const auto& [key, value] : writer->Written().Entries()) {
    block.settings.emplace_back(NRuntime::ToUtf8(key), NRuntime::ToUtf8(value));
  }
  return block;
}

}  // namespace

ExitStatus InitConfig(const ConfigInitOptions& options) {
  std::error_code ignored;
  if (!options.force && std::filesystem::exists(options.file, ignored)) {
    throw std::runtime_error(NRuntime::PathText(options.file) + ": this file is there; --force replaces it");
  }
  HostOptions hostOptions = options.host;
  hostOptions.configuration = std::filesystem::absolute(options.file).lexically_normal();
  Unobserved unobserved;
  std::string fault;
  Host host(hostOptions, unobserved, [&](const std::string& text) { fault = text; });
  GeneratorBlock generator(host.Application(), host.Setup(), GeneratorSettings(hostOptions), unobserved);
  if (options.sequence) generator.LoadSequence(*options.sequence);
  if (!fault.empty()) throw std::runtime_error(fault);
  NConfiguration::Document document =
      NConfiguration::Moved(static_cast<const NConfiguration::Document&>(options.host),
                            std::filesystem::current_path(), NConfiguration::FolderOf(options.file));
  document.blocks = {Saved(NSdk::kProgIdCANopenIG, generator.Object()),
                     Saved(NSdk::kProgIdCANopenScanner, host.Module().Create(NSdk::kProgIdCANopenScanner))};
  NConfiguration::Save(document, options.file);
  return kOk;
}

}  // namespace NBench
