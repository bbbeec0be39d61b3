#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace NBench {

/// What a command takes, as it declares it. Names that begin with dashes are options, others operands. The
/// library behind it takes a compiler ten seconds wherever it is included: in two files.
class OptionList {
 public:
  explicit OptionList(CLI::App& app) : mApp(app) {}

  void Flag(const std::string& name, bool& given);
  void Value(const std::string& name, std::string& value);
  void Value(const std::string& name, std::optional<std::string>& value);
  /// One value each time that it is given.
  void Values(const std::string& name, std::vector<std::string>& values);
  /// Operands without which the command line is refused: one, or one at least.
  void Required(const std::string& name, std::string& value);
  void Required(const std::string& name, std::vector<std::string>& values);
  void Remove(const std::string& name);
  /// A word of which one at most may follow the command, with options of its own.
  OptionList Word(const std::string& name, std::function<void()> onChosen);

 private:
  CLI::App& mApp;
};

}  // namespace NBench
