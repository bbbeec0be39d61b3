#pragma once
// Where the files are that a configuration names. Its own folder is what relative paths start from.

#include <filesystem>

#include "host/configuration/document.h"

namespace NConfiguration {

/// Folder of a configuration file, absolute.
std::filesystem::path FolderOf(const std::filesystem::path& file);

/// Where the file is that a configuration in `folder` calls `path`. Backslashes separate folders on every
/// system, unless a file of that very name is there.
std::filesystem::path ResolvePath(const std::filesystem::path& folder, const std::filesystem::path& path);
/// The document with every path resolved, for use; logs that buses replay included.
Document Resolved(Document document, const std::filesystem::path& folder);

/// The document for another folder: its relative paths lead to the same files from there. A file that no
/// relative path leads to gets an absolute one.
Document Moved(Document document, const std::filesystem::path& from, const std::filesystem::path& to);

}  // namespace NConfiguration
