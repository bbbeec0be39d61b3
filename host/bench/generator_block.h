#pragma once

#include <filesystem>
#include <string>

#include "host/bench/host.h"
#include "host/bench/inserted_block.h"
#include "host/runtime/application.h"
#include "host/runtime/com.h"
#include "host/runtime/persistence.h"
#include "host/runtime/setup.h"
#include "sdk/generator.h"

namespace NBench {

/// Hears of what a generator does.
class GeneratorListener {
 public:
  virtual ~GeneratorListener() = default;
  virtual void OnItemSent(NSdk::GeneratorList list, std::uint32_t position) = 0;
  virtual void OnItemFailed(NSdk::GeneratorList list, std::uint32_t position) = 0;
  /// A transfer ended; `result` is a GeneratorTransferResult.
  virtual void OnTransferEnded(NSdk::GeneratorList list, std::uint32_t position, std::uint32_t result) = 0;
  virtual void OnActivityChanged() = 0;
};

/// Gives a block of the configuration what it kept.
void TakeSettings(const NConfiguration::Block& block, NRuntime::Settings& settings);
/// Settings of the generator block that the host's configuration holds, else those of a new one, sending on
/// the host's channel.
NRuntime::Settings GeneratorSettings(const HostOptions& options);
/// These, and behind them those of the configuration's further generator blocks.
std::vector<NRuntime::Settings> AllGeneratorSettings(const HostOptions& options);

/// Why a generator has not loaded the sequence that its settings remember, in one line without the file:
/// "line 2, column 1: unexpected end of input". Empty: it does not say. The way to the sequence starts from
/// the configuration's file, if there is one.
std::string WhyNotLoaded(NSdk::IGenerator& generator, const NRuntime::Settings& settings,
                         const std::filesystem::path& configuration);

/// A generator block of the module, as long as it is in the setup.
class GeneratorBlock {
 public:
  /// Inserts the block by the module's command and gives it its settings. Throws std::runtime_error when the
  /// module has no such command or block, or it refuses.
  GeneratorBlock(const NRuntime::Application& application, NRuntime::Setup& setup,
                 const NRuntime::Settings& settings, GeneratorListener& listener);
  ~GeneratorBlock();
  GeneratorBlock(const GeneratorBlock&) = delete;
  GeneratorBlock& operator=(const GeneratorBlock&) = delete;

  /// Throws std::runtime_error, one line that names the file and what is wrong with it.
  void LoadSequence(const std::filesystem::path& path);
  /// Loads the file that the settings remember. False: none is remembered, or it cannot be loaded, of which
  /// the module has a message.
  bool ReloadSequence();
  /// Why not, as far as the block says.
  std::string WhyNotLoaded(const std::filesystem::path& configuration) const {
    return NBench::WhyNotLoaded(*mGenerator, Settings(), configuration);
  }
  /// Empty: none was loaded.
  std::filesystem::path SequenceFile() const;
  /// As a configuration keeps them.
  NRuntime::Settings Settings() const;

  /// As IGenerator has them. Throws std::runtime_error when the block refuses.
  void ToggleSequence();
  void ToggleCyclic();

  /// GeneratorActivity bits; 0 when the block does not say.
  std::uint32_t Activity() const;
  /// Items of a list that would be sent.
  std::uint32_t CountEnabled(NSdk::GeneratorList list) const;
  /// An item for a message to the user: `item 3 of the sequence: PDO, Node-ID 1, ...`
  std::string DescribeItem(NSdk::GeneratorList list, std::uint32_t position) const;

  const NRuntime::ComPtr<IUnknown>& Object() const { return mInserted.Object(); }

 private:
  class Events;

  InsertedBlock mInserted;
  NRuntime::ComPtr<NSdk::IGenerator> mGenerator;
  NRuntime::ComPtr<Events> mEvents;
};

}  // namespace NBench
