#include "host/bench/option_list.h"

#include <CLI/CLI.hpp>

namespace NBench {

void OptionList::Flag(const std::string& name, bool& given) { mApp.add_flag(name, given); }

void OptionList::Value(const std::string& name, std::string& value) { mApp.add_option(name, value); }

void OptionList::Value(const std::string& name, std::optional<std::string>& value) {
  mApp.add_option(name, value);
}

void OptionList::Values(const std::string& name, std::vector<std::string>& values) {
  mApp.add_option(name, values)->allow_extra_args(false);
}

void OptionList::Required(const std::string& name, std::string& value) {
  mApp.add_option(name, value)->required();
}

void OptionList::Required(const std::string& name, std::vector<std::string>& values) {
  mApp.add_option(name, values)->required();
}

void OptionList::Remove(const std::string& name) { mApp.remove_option(mApp.get_option(name)); }

OptionList OptionList::Word(const std::string& name, std::function<void()> onChosen) {
  mApp.require_subcommand(0, 1);
  CLI::App* const word = mApp.add_subcommand(name);
  word->callback(std::move(onChosen));
  return OptionList(*word);
}

}  // namespace NBench
