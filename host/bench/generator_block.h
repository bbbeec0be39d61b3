#pragma once

#include <filesystem>
#include <string>

#include "host/runtime/application.h"
#include "host/runtime/com.h"
#include "host/runtime/module.h"
#include "host/runtime/persistence.h"
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

/// A generator block of the module, from its creation to its end.
class GeneratorBlock {
 public:
  /// Creates the block, gives it its place in the host and its settings. Throws std::runtime_error when the
  /// module has no such block or it refuses.
  GeneratorBlock(const NRuntime::Module& module, NRuntime::Application& application,
                 const NRuntime::Settings& settings, GeneratorListener& listener);
  ~GeneratorBlock();
  GeneratorBlock(const GeneratorBlock&) = delete;
  GeneratorBlock& operator=(const GeneratorBlock&) = delete;

  /// Throws std::runtime_error, one line that names the file and what is wrong with it.
  void LoadSequence(const std::filesystem::path& path);

  /// As IGenerator has them. Throws std::runtime_error when the block refuses.
  void ToggleSequence();
  void ToggleCyclic();

  /// GeneratorActivity bits; 0 when the block does not say.
  std::uint32_t Activity() const;
  /// Items of a list that would be sent.
  std::uint32_t CountEnabled(NSdk::GeneratorList list) const;
  /// An item for a message to the user: `item 3 of the sequence: PDO, Node-ID 1, ...`
  std::string DescribeItem(NSdk::GeneratorList list, std::uint32_t position) const;

  const NRuntime::ComPtr<IUnknown>& Object() const { return mObject; }

 private:
  class Events;

  NRuntime::ComPtr<IUnknown> mObject;
  NRuntime::ComPtr<NSdk::IPlugInBlock> mBlock;
  NRuntime::ComPtr<NSdk::IGenerator> mGenerator;
  NRuntime::ComPtr<Events> mEvents;
};

}  // namespace NBench
