#include "host/configuration/json_tree.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <iterator>
#include <limits>

namespace NConfiguration {
namespace {

using Json = nlohmann::json;

// Walks over a text and lets others see how far it has come.
class WatchedIterator {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = const char&;

  WatchedIterator(const char* at, const char** progress) : mAt(at), mProgress(progress) {}

  reference operator*() const { return *mAt; }
  WatchedIterator& operator++() {
    *mProgress = ++mAt;
    return *this;
  }
  WatchedIterator operator++(int) {
    const WatchedIterator before = *this;
    ++*this;
    return before;
  }
  bool operator==(const WatchedIterator& other) const { return mAt == other.mAt; }
  bool operator!=(const WatchedIterator& other) const { return mAt != other.mAt; }

 private:
  const char* mAt;
  const char** mProgress;
};

// The library's words without its number, the words around them and the text that it has read so far, which
// may be long.
std::string Reason(const Json::exception& error) {
  constexpr int kNumberOverflow = 406;
  if (error.id == kNumberOverflow) return "a number is out of range";
  std::string text = error.what();
  const std::size_t dash = text.find(" - ");
  if (dash != std::string::npos) text.erase(0, dash + 3);
  const std::size_t read = text.find("; last read: '");
  if (read != std::string::npos) {
    const std::size_t end = text.rfind("'; expected ");
    text.erase(read, end == std::string::npos || end < read ? std::string::npos : end + 1 - read);
  }
  return text;
}

// Takes the parser's events and builds the tree. The parser does not recurse, so that what it reads is
// limited by what is taken here.
class Builder final : public nlohmann::json_sax<Json> {
 public:
  explicit Builder(std::string_view text) : mText(text), mProgress(text.data()), mCounted(text.data()) {}

  JsonTree Read();

  bool null() override { return Add(Make(JsonKind::Null)); }
  bool boolean(bool value) override;
  bool number_integer(number_integer_t value) override { return AddNumber(value); }
  bool number_unsigned(number_unsigned_t value) override;
  bool number_float(number_float_t, const string_t&) override { return AddNumber(std::nullopt); }
  bool string(string_t& value) override;
  bool binary(binary_t&) override { return false; }  // JSON has none
  bool start_object(std::size_t) override { return Open(JsonKind::Object); }
  bool key(string_t& value) override;
  bool end_object() override { return Close(); }
  bool start_array(std::size_t) override { return Open(JsonKind::List); }
  bool end_array() override { return Close(); }
  bool parse_error(std::size_t position, const std::string&, const Json::exception& error) override;

 private:
  JsonValue Make(JsonKind kind);
  bool Add(JsonValue value);
  bool AddNumber(std::optional<std::int64_t> number);
  bool CheckText(const std::string& text);
  bool Open(JsonKind kind);
  bool Close();
  bool Refuse(std::string reason);
  std::uint32_t Line();

  const std::string_view mText;
  const char* mProgress;  // how far the parser has come
  const char* mCounted;   // how far lines are counted
  std::uint32_t mLine = 1;
  std::vector<JsonValue> mOpen;
  JsonTree mTree;
};

JsonTree Builder::Read() {
  const char* const begin = mText.data();
  Json::sax_parse(WatchedIterator(begin, &mProgress), WatchedIterator(begin + mText.size(), &mProgress),
                  this);
  if (mTree.fault) mTree.root = {};
  return std::move(mTree);
}

// Of the token that was read last. The parser may have read one character more to find its end.
std::uint32_t Builder::Line() {
  const char* const end = mProgress == mText.data() ? mProgress : mProgress - 1;
  if (end > mCounted) {
    mLine += static_cast<std::uint32_t>(std::count(mCounted, end, '\n'));
    mCounted = end;
  }
  return mLine;
}

JsonValue Builder::Make(JsonKind kind) {
  JsonValue value;
  value.kind = kind;
  value.line = Line();
  return value;
}

bool Builder::Add(JsonValue value) {
  if (mOpen.empty()) {
    mTree.root = std::move(value);
    return true;
  }
  JsonValue& parent = mOpen.back();
  if (parent.values.size() == kMostEntries) {
    return Refuse("more than " + std::to_string(kMostEntries) + " entries in one list or object");
  }
  parent.values.push_back(std::move(value));
  return true;
}

bool Builder::boolean(bool value) {
  JsonValue made = Make(JsonKind::Boolean);
  made.boolean = value;
  return Add(std::move(made));
}

bool Builder::AddNumber(std::optional<std::int64_t> number) {
  JsonValue made = Make(JsonKind::Number);
  made.number = number;
  return Add(std::move(made));
}

bool Builder::number_unsigned(number_unsigned_t value) {
  if (value > static_cast<number_unsigned_t>(std::numeric_limits<std::int64_t>::max())) {
    return AddNumber(std::nullopt);
  }
  return AddNumber(static_cast<std::int64_t>(value));
}

bool Builder::string(string_t& value) {
  if (!CheckText(value)) return false;
  JsonValue made = Make(JsonKind::Text);
  made.text = std::move(value);
  return Add(std::move(made));
}

bool Builder::key(string_t& value) {
  if (!CheckText(value)) return false;
  std::vector<std::string>& keys = mOpen.back().keys;
  if (std::find(keys.begin(), keys.end(), value) != keys.end()) {
    return Refuse("the key \"" + value + "\" stands twice in one object");
  }
  keys.push_back(std::move(value));
  return true;
}

// Whatever takes the text ends it at a character of the code 0.
bool Builder::CheckText(const std::string& text) {
  if (text.size() > kLongestText) {
    return Refuse("a text of more than " + std::to_string(kLongestText >> 10) + " KiB");
  }
  return text.find('\0') == std::string::npos || Refuse("a text with the character \\u0000");
}

bool Builder::Open(JsonKind kind) {
  if (mOpen.size() == kDeepestNesting) {
    return Refuse("lists and objects are nested more than " + std::to_string(kDeepestNesting) + " deep");
  }
  mOpen.push_back(Make(kind));
  return true;
}

bool Builder::Close() {
  JsonValue value = std::move(mOpen.back());
  mOpen.pop_back();
  return Add(std::move(value));
}

bool Builder::Refuse(std::string reason) {
  mTree.fault = Fault{Line(), 0, {}, std::move(reason)};
  return false;
}

bool Builder::parse_error(std::size_t position, const std::string&, const Json::exception& error) {
  const std::size_t at = std::min(position == 0 ? 0 : position - 1, mText.size());
  const std::string_view before = mText.substr(0, at);
  const std::size_t lineStart = before.rfind('\n') + 1;  // 0 when there is none
  const auto isFirstByte = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; };
  const auto line = std::count(before.begin(), before.end(), '\n') + 1;
  const auto column =
      std::count_if(before.begin() + static_cast<std::ptrdiff_t>(lineStart), before.end(), isFirstByte) + 1;
  mTree.fault =
      Fault{static_cast<std::uint32_t>(line), static_cast<std::uint32_t>(column), {}, Reason(error)};
  return false;
}

}  // namespace

JsonTree ReadJson(std::string_view text) { return Builder(text).Read(); }

std::string_view NameOf(JsonKind kind) {
  switch (kind) {
    case JsonKind::Null:
      return "null";
    case JsonKind::Boolean:
      return "true or false";
    case JsonKind::Number:
      return "a number";
    case JsonKind::Text:
      return "a text";
    case JsonKind::List:
      return "a list";
    case JsonKind::Object:
      return "an object";
  }
  return "";
}

}  // namespace NConfiguration
