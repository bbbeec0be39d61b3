#pragma once
// What the commands of a shell act on: a host with its blocks, measuring or not.

#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/bench/line_source.h"
#include "host/bench/nmt_order.h"
#include "host/bench/node_scan.h"
#include "host/runtime/persistence.h"

namespace NBench {

/// Something was not done as asked, though the command itself was in order.
class ShellFailure : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// A generator block of the session.
struct GeneratorOption {
  std::string name;
  NRuntime::Settings settings;
};

struct ShellOptions {
  HostOptions host;
  std::vector<GeneratorOption> generators;  ///< at least one
};

/// Where a session writes; both take one or more whole lines, line end included.
struct ShellOutput {
  std::function<void(const std::string&)> print;
  std::function<void(const std::string&)> complain;  ///< without line end
};

/// Every method throws ShellFailure when it cannot do what it says, and std::runtime_error when what it is
/// given is at fault. Ctrl+C ends one that waits with a ShellFailure.
class ShellSession final : private NRuntime::MeasurementObserver {
 public:
  ShellSession(const ShellOptions& options, Wishes& wishes, ShellOutput output);
  ~ShellSession() override;

  void Start();
  void Stop();
  bool IsMeasuring() { return mHost.Measurement().IsRunning(); }

  // On the generator in use, which is the first one until another is chosen.
  const std::vector<std::string>& Generators() const { return mNames; }
  void Use(std::size_t position);
  std::size_t InUse() const { return mInUse; }
  void Load(const std::filesystem::path& sequence);
  /// Runs the sequence and waits for its end; gives the number of items that were sent.
  std::uint32_t Run();
  /// Stops cyclic transmission, or lets it begin with the next run.
  void SetCyclic(bool on);
  /// Settings of each generator, as a configuration keeps them.
  std::vector<NRuntime::Settings> Settings() const;

  void Nmt(const NmtOrder& order);
  NodeTable Table() { return mScan.Scanner().Table(); }
  void SetTrace(bool on) { mTrace = on; }
  void Sleep(NRuntime::Time duration);
  /// Waits until the scanner has a node in a state; gives up after `patience`.
  void WaitForNode(std::uint32_t nodeId, std::uint32_t state, NRuntime::Time patience);

  /// Lets what is posted and what is on its way be seen.
  void Settle();
  /// Messages of the module and troubles with a bus so far; each was told.
  std::uint32_t Errors() const { return mErrors; }

  Host& GetHost() { return mHost; }

 private:
  class Generator;

  void OnFrame(const NRuntime::SeenFrame& seen) override;
  void OnTrouble(std::uint32_t channel, const std::string& text) override;
  void AddError(std::string text);

  Generator& Chosen() { return *mGenerators[mInUse]; }
  void NeedMeasurement();
  /// False: the time was over before.
  bool WaitUntil(const std::function<bool()>& done, std::optional<NRuntime::Time> duration);

  Wishes& mWishes;
  ShellOutput mOutput;
  std::uint32_t mErrors = 0;
  bool mTrace = false;
  Host mHost;
  std::vector<std::string> mNames;
  std::vector<std::unique_ptr<Generator>> mGenerators;
  NodeScan mScan;
  std::size_t mInUse = 0;
};

}  // namespace NBench
