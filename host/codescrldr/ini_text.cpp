#include "host/codescrldr/ini_text.h"

#include <algorithm>
#include <utility>

namespace NDescriptions {
namespace {

using namespace CODESCRLDR;

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\v' || c == '\f' || c == '\0'; }
char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }
bool IsLess(std::string_view a, std::string_view b) {
  return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                      [](char x, char y) { return Lower(x) < Lower(y); });
}

// A comment behind a value has a blank before it, and behind a '#' too: "Sensor #1" is a name.
std::string_view WithoutComment(std::string_view value) {
  for (std::size_t i = 0; i < value.size(); ++i) {
    if (i > 0 && !IsBlank(value[i - 1])) continue;
    if (value[i] == ';') return value.substr(0, i);
    if (value[i] == '#' && (i + 1 == value.size() || IsBlank(value[i + 1]))) return value.substr(0, i);
  }
  return value;
}

}  // namespace

std::string_view Trimmed(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

bool IsSameWord(std::string_view a, std::string_view b) {
  return a.size() == b.size() &&
         std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) { return Lower(x) == Lower(y); });
}

std::string LowerCase(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(), Lower);
  return lower;
}

std::string Shortened(std::string_view text, std::size_t size) {
  if (text.size() <= size) return std::string(text);
  while (size > 0 && (static_cast<unsigned char>(text[size]) & 0xC0) == 0x80) --size;
  return std::string(text.substr(0, size)) + "...";
}

const IniKey* IniSection::Find(std::string_view key) const {
  const auto found =
      std::find_if(keys.begin(), keys.end(), [&](const IniKey& one) { return IsSameWord(one.key, key); });
  return found == keys.end() ? nullptr : &*found;
}

IniText::IniText(std::string_view text, Findings& findings) : mFindings(findings) {
  while (!text.empty()) {
    const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
    ++mLine;
    ReadLine(Trimmed(text.substr(0, end)));
    const bool isPair = text.substr(end, 2) == "\r\n";
    text.remove_prefix(std::min(text.size(), end + (isPair ? 2 : 1)));
  }
  CloseSection();
}

const IniSection* IniText::Find(std::string_view name) const {
  const auto found = mPositions.find(LowerCase(name));
  return found == mPositions.end() ? nullptr : &mSections[found->second];
}

void IniText::Report(Result code, std::uint32_t line, std::string text) {
  mFindings.Add(code, line, std::move(text));
}

void IniText::ReadLine(std::string_view line) {
  if (line.empty() || line.front() == ';' || line.front() == '#') return;
  if (line.front() == '[') return OpenSection(line);
  ReadKey(line);
}

void IniText::OpenSection(std::string_view line) {
  CloseSection();
  line.remove_prefix(1);
  const std::size_t end = line.find(']');
  if (end == std::string_view::npos) {
    Report(kWarnSyntax, mLine, "\"]\" is missing; the rest of the line is taken for the name of a section");
  }
  mOpen.name = Trimmed(line.substr(0, end));
  mOpen.line = mLine;
  if (mOpen.name.empty()) return Report(kWarnSyntax, mLine, "a section without a name; it is skipped");
  const auto [first, isNew] = mPositions.emplace(LowerCase(mOpen.name), mSections.size());
  mIsDuplicate = !isNew;
  if (isNew) return;
  Report(kWarnDuplicate, mLine,
         "[" + Shortened(mOpen.name) + "] stands in line " + std::to_string(mSections[first->second].line) +
             " already; this one is skipped");
}

void IniText::ReadKey(std::string_view line) {
  if (mOpen.name.empty()) {
    if (mOpen.line == 0 && !mSaidNoSection) {
      Report(kWarnSyntax, mLine, "a line before the first section; it is skipped");
      mSaidNoSection = true;
    }
    return;
  }
  if (mIsDuplicate) return;
  const std::size_t equals = line.find('=');
  const std::string_view key = Trimmed(line.substr(0, equals));
  if (equals == std::string_view::npos || key.empty()) {
    return Report(kWarnSyntax, mLine,
                  "KEY=VALUE is expected, not \"" + Shortened(line) + "\"; the line is skipped");
  }
  mOpen.keys.push_back({key, Trimmed(WithoutComment(Trimmed(line.substr(equals + 1)))), mLine});
}

// Keys that stand twice are found by sorting: a list of objects has many keys.
void IniText::CloseSection() {
  const bool wanted = !mOpen.name.empty() && !mIsDuplicate;
  IniSection section = std::exchange(mOpen, {});
  if (!wanted) return;
  std::vector<const IniKey*> sorted;
  sorted.reserve(section.keys.size());
  for (const IniKey& key : section.keys) sorted.push_back(&key);
  std::stable_sort(sorted.begin(), sorted.end(),
                   [](const IniKey* a, const IniKey* b) { return IsLess(a->key, b->key); });
  std::vector<std::uint32_t> lines;
  for (std::size_t i = 1; i < sorted.size(); ++i) {
    if (IsSameWord(sorted[i]->key, sorted[i - 1]->key)) lines.push_back(sorted[i]->line);
  }
  std::sort(lines.begin(), lines.end());
  std::erase_if(section.keys, [&](const IniKey& key) {
    if (!std::binary_search(lines.begin(), lines.end(), key.line)) return false;
    Report(kWarnDuplicate, key.line,
           "\"" + Shortened(key.key) + "\" stands in [" + Shortened(section.name) +
               "] already; this line is skipped");
    return true;
  });
  mSections.push_back(std::move(section));
}

}  // namespace NDescriptions
