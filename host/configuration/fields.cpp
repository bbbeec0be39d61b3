#include "host/configuration/fields.h"

#include <algorithm>
#include <charconv>

namespace NConfiguration {
namespace {

std::optional<std::int64_t> ParseHex(std::string_view text) {
  if (!text.starts_with("0x") && !text.starts_with("0X")) return std::nullopt;
  text.remove_prefix(2);
  std::uint32_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, number, 16);
  if (error != std::errc() || stopped != end) return std::nullopt;
  return number;
}

std::string Join(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : ", ") + word;
  return text;
}

}  // namespace

std::string Expected(std::string_view what, const JsonValue& instead) {
  return std::string(what) + " is expected, not " + std::string(NameOf(instead.kind));
}

Fields::Fields(JsonPlace object, std::vector<Fault>& faults)
    : mObject(std::move(object)), mIsObject(mObject.value->kind == JsonKind::Object), mFaults(faults) {
  if (!mIsObject) Complain({}, Expected(NameOf(JsonKind::Object), *mObject.value));
}

void Fields::Complain(std::string_view key, std::string text) {
  const JsonValue* value = key.empty() || !mIsObject ? mObject.value : Take(key).value;
  if (!value) value = mObject.value;
  std::string place = mObject.place;
  if (!key.empty()) place += '/' + std::string(key);
  mFaults.push_back({value->line, 0, std::move(place), std::move(text)});
}

JsonPlace Fields::Take(std::string_view key, Need need) {
  JsonPlace place = {nullptr, mObject.place + '/' + std::string(key)};
  if (!mIsObject) return place;
  if (std::find(mKnown.begin(), mKnown.end(), key) == mKnown.end()) mKnown.emplace_back(key);
  const std::vector<std::string>& keys = mObject.value->keys;
  const auto found = std::find(keys.begin(), keys.end(), key);
  if (found != keys.end()) {
    place.value = &mObject.value->values[static_cast<std::size_t>(found - keys.begin())];
  } else if (need == Need::Required) {
    Complain({}, "the key \"" + std::string(key) + "\" is missing");
  }
  return place;
}

JsonPlace Fields::TakeOf(JsonKind kind, std::string_view key, Need need) {
  JsonPlace place = Take(key, need);
  if (place.value && place.value->kind != kind) {
    Complain(key, Expected(NameOf(kind), *place.value));
    place.value = nullptr;
  }
  return place;
}

JsonPlace Fields::TakeObject(std::string_view key, Need need) { return TakeOf(JsonKind::Object, key, need); }

std::vector<JsonPlace> Fields::TakeList(std::string_view key, Need need) {
  std::vector<JsonPlace> entries;
  const JsonPlace list = TakeOf(JsonKind::List, key, need);
  if (!list.value) return entries;
  for (const JsonValue& value : list.value->values) {
    entries.push_back({&value, list.place + '/' + std::to_string(entries.size())});
  }
  return entries;
}

std::optional<std::int64_t> Fields::InRange(const JsonPlace& place, std::int64_t low, std::int64_t high) {
  const std::optional<std::int64_t> number = place.value->number;
  if (number && *number >= low && *number <= high) return number;
  const std::string range = std::to_string(low) + " to " + std::to_string(high);
  mFaults.push_back({place.value->line, 0, place.place,
                     number ? std::to_string(*number) + " is not in the range " + range
                            : "a whole number from " + range + " is expected"});
  return std::nullopt;
}

std::optional<std::int64_t> Fields::TakeNumber(std::string_view key, std::int64_t low, std::int64_t high,
                                               Need need) {
  const JsonPlace place = TakeOf(JsonKind::Number, key, need);
  return place.value ? InRange(place, low, high) : std::nullopt;
}

std::optional<std::int64_t> Fields::TakeHexNumber(std::string_view key, std::int64_t low, std::int64_t high,
                                                  Need need) {
  const JsonPlace place = Take(key, need);
  if (!place.value) return std::nullopt;
  JsonValue number;
  number.line = place.value->line;
  number.number = place.value->kind == JsonKind::Text ? ParseHex(place.value->text) : place.value->number;
  const bool isNumber = place.value->kind == JsonKind::Number || number.number;
  if (isNumber) return InRange({&number, place.place}, low, high);
  const char* const what = "a number, or a text such as \"0x1C\",";
  const std::string instead = " not \"" + place.value->text + '"';
  Complain(key, place.value->kind == JsonKind::Text ? std::string(what) + " is expected," + instead
                                                    : Expected(what, *place.value));
  return std::nullopt;
}

void Fields::ReadText(std::string_view key, std::size_t longest, std::string& text, Need need) {
  const JsonPlace place = TakeOf(JsonKind::Text, key, need);
  if (!place.value) return;
  if (place.value->text.empty()) {
    Complain(key, "the text is empty");
  } else if (place.value->text.size() > longest) {
    Complain(key, "the text is longer than " + std::to_string(longest) + " bytes");
  } else {
    text = place.value->text;
  }
}

void Fields::ReadFlag(std::string_view key, bool& flag, Need need) {
  const JsonPlace place = TakeOf(JsonKind::Boolean, key, need);
  if (place.value) flag = place.value->boolean;
}

void Fields::Finish() {
  if (!mIsObject) return;
  const JsonValue& object = *mObject.value;
  for (std::size_t position = 0; position < object.keys.size(); ++position) {
    const std::string& key = object.keys[position];
    if (std::find(mKnown.begin(), mKnown.end(), key) != mKnown.end()) continue;
    mFaults.push_back({object.values[position].line, 0, mObject.place,
                       "unknown key \"" + key + "\" (known: " + Join(mKnown) + ")"});
  }
}

}  // namespace NConfiguration
