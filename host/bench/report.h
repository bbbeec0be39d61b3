#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/bench/node_words.h"
#include "host/bench/sdo_observer.h"
#include "host/runtime/can_message.h"
#include "host/runtime/loop.h"

namespace NBench {

/// What a run has come to so far.
struct Tally {
  std::uint32_t itemsSent = 0;    ///< of the sequence
  std::uint32_t itemsToSend = 0;  ///< enabled items of the sequence
  std::uint64_t framesSent = 0;
  std::uint64_t transfers = 0;
  std::uint64_t transfersFailed = 0;
  NRuntime::Time elapsed{};
  std::vector<std::string> errors;  ///< one per message of the module or trouble with a bus or file
  std::optional<NodeTable> nodes;   ///< when they were asked for
};

/// What is shown as text.
struct View {
  bool frames = true;      ///< every frame on the bus
  bool transfers = false;  ///< a line for each SDO transfer when it has ended
  bool times = false;      ///< in front: seconds since the start
  bool words = false;      ///< behind: what it means in CANopen
  bool changes = false;    ///< a line for each change of a node
};

/// How a run is shown to the user.
class Report {
 public:
  virtual ~Report() = default;
  /// A frame was on the bus, received or sent.
  virtual void Seen(const NRuntime::SeenFrame& frame) = 0;
  /// An SDO transfer has ended.
  virtual void Transferred(const SdoTransfer& transfer) = 0;
  /// Something about a node is new.
  virtual void Changed(NRuntime::Time time, const NodeChange& change) = 0;
  virtual void Finish(const Tally& tally) = 0;
  /// Nobody reads the report any more.
  virtual bool IsUnread() const = 0;
  /// Why the report is not whole; empty when it is, or when the reader has just left.
  virtual std::string Fault() const = 0;
};

/// `3 of 10 items, 12 frames`: how far a run is.
std::string ProgressText(const Tally& tally);
/// `, 1.250 s, no errors`: how a run went.
std::string RunText(NRuntime::Time elapsed, std::size_t errors);

std::unique_ptr<Report> MakeTextReport(const View& view);
std::unique_ptr<Report> MakeJsonReport();

}  // namespace NBench
