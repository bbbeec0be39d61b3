#include "ig/settings_form.h"

#include <algorithm>
#include <iterator>

#include "editors/number_entry.h"

namespace NIg {
namespace {

const NumberField& Bounds(std::uint32_t GeneratorNumbers::*member) {
  return *std::find_if(std::begin(kNumberFields), std::end(kNumberFields),
                       [&](const NumberField& field) { return field.member == member; });
}

}  // namespace

SettingsEntry ShowSettings(const GeneratorNumbers& numbers) {
  return {std::to_string(numbers.serviceDelay), std::to_string(numbers.sdoTimeout),
          std::to_string(numbers.sdoBlockSize), numbers.channel};
}

std::optional<SettingsFault> TakeSettings(const SettingsEntry& entry, bool hasSimulationSetup,
                                          GeneratorNumbers& numbers) {
  const struct {
    SettingsFieldId id;
    const std::string& text;
    std::uint32_t GeneratorNumbers::*member;
  } fields[] = {
      {SettingsFieldId::ServiceDelay, entry.serviceDelay, &GeneratorNumbers::serviceDelay},
      {SettingsFieldId::SdoTimeout, entry.sdoTimeout, &GeneratorNumbers::sdoTimeout},
      {SettingsFieldId::SdoBlockSize, entry.sdoBlockSize, &GeneratorNumbers::sdoBlockSize},
  };
  GeneratorNumbers taken = numbers;
  for (const auto& field : fields) {
    const NumberField& bounds = Bounds(field.member);
    std::wstring message;
    if (!NEditors::CheckRange(field.text, /*hexadecimal=*/false, taken.*field.member, bounds.minimum,
                              bounds.maximum, message)) {
      return SettingsFault{field.id, message};
    }
  }
  if (!entry.channel) return SettingsFault{SettingsFieldId::Channel, {}};
  if (!hasSimulationSetup) taken.channel = *entry.channel;
  numbers = taken;
  return std::nullopt;
}

}  // namespace NIg
