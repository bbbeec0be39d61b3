#include "host/bench/describe_options.h"

#include "host/bench/describe.h"
#include "host/runtime/text.h"

namespace NBench {
namespace {

constexpr std::uint32_t kLastNode = 127;

constexpr char kDescribeHelp[] = R"(Prints the object dictionary that a device description (EDS or DCF) gives.

Usage: ostrel-bench describe FILE.eds|FILE.dcf [OPTIONS]

What is wrong with the file is told on standard error, FILE:LINE and what was
assumed in each line; the rest is read all the same.

  --node NUMBER      Node-ID to calculate $NODEID formulas with (default: that of
                     a DCF; without one they are printed as they are)
  --json             One JSON document, warnings included, and nothing else

Columns: index and sub-index in hexadecimal, access (rw, ro, wo, const, rwr,
rww), P for what may stand in a PDO, the range of the value and the value that a
DCF sets or the default.

Exit status: 0 printed, warnings or not, 1 trouble with the output, 2 nothing of
the file can be used.

Examples:
  ostrel-bench describe pump.eds
  ostrel-bench describe pump.eds --node 5 --json > pump.json
)";

class DescribeCommand final : public Command {
 public:
  void AddOptions(OptionList& options) override;
  std::string Help() const override { return kDescribeHelp; }
  ExitStatus Run() const override { return Describe(Check()); }

 private:
  DescribeOptions Check() const;

  std::string mFile;
  std::optional<std::string> mNode;
  bool mJson = false;
};

void DescribeCommand::AddOptions(OptionList& options) {
  options.Required("FILE", mFile);
  options.Value("--node", mNode);
  options.Flag("--json", mJson);
}

DescribeOptions DescribeCommand::Check() const {
  DescribeOptions options;
  options.file = NRuntime::ToPath(mFile);
  options.json = mJson;
  if (!mNode) return options;
  options.nodeId = ParseNumber(*mNode, 1, kLastNode);
  if (!options.nodeId) Refuse("--node", *mNode, "a node-ID from " + Range(1, kLastNode) + " is wanted");
  return options;
}

}  // namespace

std::unique_ptr<Command> MakeDescribeCommand() { return std::make_unique<DescribeCommand>(); }

}  // namespace NBench
