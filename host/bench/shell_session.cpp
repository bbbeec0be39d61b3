#include "host/bench/shell_session.h"

#include <algorithm>

#include "host/bench/frame_words.h"
#include "host/bench/generator_block.h"
#include "host/buses/candump.h"

namespace NBench {
namespace {

constexpr NRuntime::Time kLongestSettling = std::chrono::seconds(1);

std::string Seconds(NRuntime::Time duration) {
  const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(duration).count();
  std::string text = std::to_string(ms / 1000);
  if (ms % 1000 != 0) text += '.' + std::to_string(1000 + ms % 1000).substr(1);
  return text + " s";
}

}  // namespace

// A generator block, and what it tells of itself.
class ShellSession::Generator final : private GeneratorListener {
 public:
  Generator(ShellSession& session, const NRuntime::Settings& settings)
      : mSession(session), mBlock(session.mHost.Application(), session.mHost.Setup(), settings, *this) {}

  GeneratorBlock& Block() { return mBlock; }
  bool Does(std::uint32_t activity) const { return (mBlock.Activity() & activity) != 0; }
  std::uint32_t TakeItemsSent() { return std::exchange(mItemsSent, 0); }

  bool cyclicIsWanted = false;  // with the next run

 private:
  void OnItemSent(NSdk::GeneratorList list, std::uint32_t) override {
    if (list == NSdk::kSequenceList) ++mItemsSent;
  }
  void OnItemFailed(NSdk::GeneratorList list, std::uint32_t position) override {
    mSession.AddError("not transmitted: " + mBlock.DescribeItem(list, position));
  }
  void OnTransferEnded(NSdk::GeneratorList list, std::uint32_t position, std::uint32_t result) override {
    const std::string item = mBlock.DescribeItem(list, position);
    if (result == NSdk::kTransferRefused) {
      mSession.AddError("SDO transfer not started, its node-ID or COB-IDs cannot be used (" + item + ")");
    } else if (result == NSdk::kTransferAborted) {
      mSession.AddError("SDO transfer aborted (" + item + ")");
    }
  }
  void OnActivityChanged() override { mSession.mHost.Loop().Stop(); }

  ShellSession& mSession;
  GeneratorBlock mBlock;
  std::uint32_t mItemsSent = 0;
};

ShellSession::ShellSession(const ShellOptions& options, Wishes& wishes, ShellOutput output)
    : mWishes(wishes),
      mOutput(std::move(output)),
      mHost(options.host, *this, [this](const std::string& text) { AddError(text); }),
      mScan(mHost, [this](NRuntime::Time) { mHost.Loop().Stop(); }) {
  for (const GeneratorOption& option : options.generators) {
    mNames.push_back(option.name);
    mGenerators.push_back(std::make_unique<Generator>(*this, option.settings));
    GeneratorBlock& block = mGenerators.back()->Block();
    if (block.ReloadSequence()) continue;
    const std::string reason = block.WhyNotLoaded(options.host.configuration);
    if (!reason.empty()) mOutput.complain(option.name + ": " + reason);
  }
}

ShellSession::~ShellSession() { mHost.Measurement().Stop(); }

// ---- measurement

void ShellSession::Start() {
  if (IsMeasuring()) throw ShellFailure("the measurement runs already");
  std::vector<NRuntime::ComPtr<IUnknown>> blocks;
  for (const auto& generator : mGenerators) blocks.push_back(generator->Block().Object());
  for (const auto& block : mScan.Blocks()) blocks.push_back(block);
  try {
    mHost.Measurement().Start(blocks);
    mHost.PowerOnDevices();
  } catch (const std::runtime_error& error) {
    mHost.Measurement().Stop();
    mHost.PowerOffDevices();
    throw ShellFailure(error.what());
  }
}

void ShellSession::Stop() {
  NeedMeasurement();
  mHost.Measurement().Stop();
  mHost.PowerOffDevices();
  for (const auto& generator : mGenerators) generator->cyclicIsWanted = false;
}

void ShellSession::NeedMeasurement() {
  if (!IsMeasuring()) throw ShellFailure("no measurement runs; start begins one");
}

// ---- generators

void ShellSession::Use(std::size_t position) {
  if (position >= mGenerators.size())
    throw std::runtime_error("there is no such generator; blocks lists them");
  mInUse = position;
}

void ShellSession::Load(const std::filesystem::path& sequence) {
  if (Chosen().Block().Activity() != 0)
    throw ShellFailure("the generator is sending; nothing is loaded meanwhile");
  Chosen().Block().LoadSequence(sequence);
}

std::uint32_t ShellSession::Run() {
  NeedMeasurement();
  Generator& generator = Chosen();
  if (generator.Does(NSdk::kSequenceRunning)) throw ShellFailure("the sequence runs already");
  if (generator.Block().CountEnabled(NSdk::kSequenceList) == 0 && !generator.cyclicIsWanted) {
    throw ShellFailure("nothing to send: the sequence has no enabled items");
  }
  generator.TakeItemsSent();
  if (std::exchange(generator.cyclicIsWanted, false)) generator.Block().ToggleCyclic();
  generator.Block().ToggleSequence();
  try {
    WaitUntil([&] { return !generator.Does(NSdk::kSequenceRunning); }, std::nullopt);
  } catch (...) {
    if (generator.Does(NSdk::kSequenceRunning)) generator.Block().ToggleSequence();
    throw;
  }
  return generator.TakeItemsSent();
}

// The block begins it with a sequence and takes no request back: until then the wish stays here.
void ShellSession::SetCyclic(bool on) {
  NeedMeasurement();
  Generator& generator = Chosen();
  const bool runs = generator.Does(NSdk::kCyclicRunning);
  generator.cyclicIsWanted = false;
  if (!on) {
    if (runs) generator.Block().ToggleCyclic();
    return;
  }
  if (generator.Block().CountEnabled(NSdk::kCyclicList) == 0) {
    throw ShellFailure("nothing to send: the cyclic list has no enabled items");
  }
  if (runs) return;
  generator.cyclicIsWanted = true;
  mOutput.print("cyclic transmission begins with the next run\n");
}

std::vector<NRuntime::Settings> ShellSession::Settings() const {
  std::vector<NRuntime::Settings> settings;
  for (const auto& generator : mGenerators) settings.push_back(generator->Block().Settings());
  return settings;
}

// ---- network

void ShellSession::Nmt(const NmtOrder& order) {
  NeedMeasurement();
  if (!Execute(mHost, order)) throw ShellFailure("the module refuses the command");
}

void ShellSession::Sleep(NRuntime::Time duration) {
  WaitUntil([] { return false; }, duration);
}

void ShellSession::WaitForNode(std::uint32_t nodeId, std::uint32_t state, NRuntime::Time patience) {
  NeedMeasurement();
  const auto isThere = [&] {
    const std::vector<ScannedNode> nodes = mScan.Scanner().Nodes();
    return std::any_of(nodes.begin(), nodes.end(), [&](const ScannedNode& node) {
      return node.id == nodeId && node.alive && node.state == state;
    });
  };
  if (WaitUntil(isThere, patience)) return;
  throw ShellFailure("node " + std::to_string(nodeId) + " was not in this state within " + Seconds(patience));
}

bool ShellSession::WaitUntil(const std::function<bool()>& done, std::optional<NRuntime::Time> duration) {
  NRuntime::AsioLoop& loop = mHost.Loop();
  bool over = false;
  const auto alarm = loop.MakeAlarm([&] {
    over = true;
    loop.Stop();
  });
  if (duration) alarm->SetFor(loop.Now() + *duration);
  while (!done()) {
    if (over) return false;
    if (mWishes.interrupted || mWishes.terminated) throw ShellFailure("interrupted");
    loop.Run();
  }
  return true;
}

void ShellSession::Settle() {
  NRuntime::AsioLoop& loop = mHost.Loop();
  const NRuntime::Time end = loop.Now() + kLongestSettling;
  do {
    bool last = false;
    loop.Post([&] {
      last = true;
      loop.Stop();
    });
    while (!last) loop.Run();
  } while (mHost.Measurement().IsSending() && loop.Now() < end);
}

// ---- what is heard

void ShellSession::OnFrame(const NRuntime::SeenFrame& seen) {
  if (!mTrace) return;
  const std::string line = NBuses::ConsoleLine(seen.channel, seen.frame);
  mOutput.print(NBuses::ConsoleTime(seen.time) + WithWords(line, seen.frame) + '\n');
}

void ShellSession::OnTrouble(std::uint32_t channel, const std::string& text) {
  AddError("CAN channel " + std::to_string(channel) + ": " + text);
}

void ShellSession::AddError(std::string text) {
  std::replace(text.begin(), text.end(), '\n', ' ');
  ++mErrors;
  mOutput.complain(text);
  mHost.Loop().Stop();
}

}  // namespace NBench
