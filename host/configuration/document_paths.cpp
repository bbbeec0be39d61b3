#include "host/configuration/document_paths.h"

#include <algorithm>

#include "host/buses/bus_name.h"
#include "host/runtime/text.h"

namespace NConfiguration {
namespace {

using std::filesystem::path;

// Folders may be reached by links; ".." behind one leads elsewhere than the text of the path says.
path WithoutLinks(const path& folder) {
  std::error_code error;
  path found = std::filesystem::weakly_canonical(folder, error);
  return error ? folder.lexically_normal() : found;
}

template <class Change>
std::string ChangeLog(const std::string& word, Change change) {
  NBuses::BusName name = NBuses::ParseBusName(word);
  if (name.kind != "replay" || name.address.empty()) return word;
  name.address = NRuntime::PathText(change(NRuntime::ToPath(name.address)));
  return NBuses::BusWord(name);
}

template <class Change>
Document ChangePaths(Document document, Change change) {
  for (Channel& channel : document.channels) {
    channel.bus = ChangeLog(channel.bus, change);
    for (path& database : channel.databases) database = change(database);
  }
  for (Device& device : document.devices) {
    std::string& description = device.device.description;
    if (!description.empty()) description = NRuntime::PathText(change(NRuntime::ToPath(description)));
  }
  return document;
}

}  // namespace

path FolderOf(const path& file) { return std::filesystem::absolute(file).lexically_normal().parent_path(); }

path ResolvePath(const path& folder, const path& file) {
  const path asItStands = folder / file;
  std::error_code ignored;
  if (std::filesystem::exists(asItStands, ignored)) return asItStands.lexically_normal();
  std::string text = NRuntime::PathText(file);
  std::replace(text.begin(), text.end(), '\\', '/');
  return (folder / NRuntime::ToPath(text)).lexically_normal();
}

Document Resolved(Document document, const path& folder) {
  return ChangePaths(std::move(document), [&](const path& file) { return ResolvePath(folder, file); });
}

Document Moved(Document document, const path& from, const path& to) {
  const path start = WithoutLinks(from), end = WithoutLinks(to);
  if (start == end) return document;
  return ChangePaths(std::move(document), [&](const path& file) {
    if (file.is_absolute()) return file;
    const path whole = ResolvePath(start, file);
    const path way = whole.lexically_relative(end);
    return way.empty() ? whole : way;
  });
}

}  // namespace NConfiguration
